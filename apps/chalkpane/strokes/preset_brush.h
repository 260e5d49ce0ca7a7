#pragma once

#include <cstdint>
#include <string>

#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/strokes/picture_files.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "chalkpane/brush/basic_brush.h"

namespace chalkpane::app {

// A brush with the values and the filters of a preset, which paints the strokes of a file in place of their own
// brushes. From these it takes pictures and masks, and their colours unless the preset sets one.
class PresetBrush {
public:
    // shownName: what messages call the preset. Throws cli::Error for a preset of another kind.
    PresetBrush(Preset preset, std::string shownName);

    [[nodiscard]] BasicBrush& Brush() { return m_brush; }
    // All of it, as it was read.
    [[nodiscard]] PresetView View();

    // Reads all pictures that the preset names. Throws cli::Error for one that cannot be read.
    void ReadPictures(PictureFiles& pictures);
    // Before the strokes are painted: everything becomes what it is at the current frame of the preset's clock.
    void TakeFrame(StrokesFile& file, const Image& canvas, std::int32_t frame);

private:
    Preset m_preset;  // has the brush's first values, to which its source clings until it is prepared
    std::string m_shownName;
    BasicBrush m_brush;
};

// The brush that paints all strokes of a file, as a preset: its settings, filters and colour. Throws cli::Error when
// the strokes have several brushes; a preset holds one.
[[nodiscard]] Preset PresetOfStrokes(const StrokesFile& file, Image& canvas, PictureFiles& pictures);

}  // namespace chalkpane::app
