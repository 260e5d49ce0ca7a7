#pragma once

#include <cstdint>
#include <memory>

#include "apps/chalkpane/strokes/brush_description.h"
#include "apps/chalkpane/strokes/picture_files.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/image/image.h"

namespace chalkpane::app {

// What a brush is made for. Borrows both.
struct BrushScene {
    Image& canvas;
    PictureFiles& pictures;  // of the canvas's depth
    std::int32_t frame = 0;  // that filters with a course in time are at
};

// A new brush with the settings of a description and its chain of filters. It paints once it is prepared.
[[nodiscard]] std::unique_ptr<BasicBrush> MakeBrush(const BrushDescription& description, const BrushScene& scene);

// Stores the settings in the brush's values and those of its sources; the next preparation takes them up.
void ApplySettings(const BrushDescription& description, BasicBrush& brush);

// Makes `brush` ready to paint on the scene's canvas: rebuilds its source from its values, and gives it what is no
// parameter, from the description: colour, pictures, mask. A cutout's file is read from the brush's own values. To be
// called again whenever values have changed. Throws cli::Error for a picture that cannot be read.
void PrepareBrush(BasicBrush& brush, const BrushDescription& description, const BrushScene& scene);

// Before a stroke that goes on with a brush that is prepared: sources that read the canvas get it as it is now.
void RefreshBrush(BasicBrush& brush, const BrushDescription& description, const BrushScene& scene);

// Reads all pictures that a description names, so that what is wrong with one is known before anything is painted.
// Throws cli::Error.
void ReadPictures(const BrushDescription& description, PictureFiles& pictures);

}  // namespace chalkpane::app
