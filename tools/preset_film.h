#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "image/image.h"
#include "tools/frame_rate_clock.h"
#include "tools/preset.h"

namespace chalkpane::tools {

// A film from a preset whose parameters have keys, picture by picture. A frame looks the same whichever others are
// made.
class PresetFilm {
public:
    PresetFilm() = default;
    virtual ~PresetFilm() = default;
    PresetFilm(const PresetFilm&) = delete;
    PresetFilm& operator=(const PresetFilm&) = delete;
    PresetFilm(PresetFilm&&) = delete;
    PresetFilm& operator=(PresetFilm&&) = delete;

    // The values are taken where the preset's clock stands.
    [[nodiscard]] virtual std::unique_ptr<Image> Make(std::int32_t frame) = 0;
};

struct FilmSource {
    std::filesystem::path file;         // a picture for filters, a file of strokes for a brush
    std::filesystem::path presetFile;   // what messages call the preset
    std::optional<std::int32_t> depth;  // 0: 8 bits; 1: 14; none: the source's own
};

// Filters over a picture, or the strokes of a file painted anew by a brush, as the preset's kind says. Reads all files.
// Throws shared::Error for what cannot be read. `clock` is the preset's, not owned.
[[nodiscard]] std::unique_ptr<PresetFilm> MakeFilm(Preset preset, const FilmSource& source,
                                                   const FrameRateClock& clock);

}  // namespace chalkpane::tools
