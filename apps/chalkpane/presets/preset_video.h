#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/strokes/picture_files.h"
#include "chalkpane/image/image.h"
#include "cli/memory_budget.h"
#include "kel/video/video_reader.h"

namespace chalkpane::app {

// A video from a preset whose parameters have keys, picture by picture. A frame looks the same whichever others are
// made.
class PresetVideo {
public:
    PresetVideo() = default;
    virtual ~PresetVideo() = default;
    PresetVideo(const PresetVideo&) = delete;
    PresetVideo& operator=(const PresetVideo&) = delete;
    PresetVideo(PresetVideo&&) = delete;
    PresetVideo& operator=(PresetVideo&&) = delete;

    // The values are taken where the preset's clock stands.
    [[nodiscard]] virtual std::unique_ptr<Image> Make(std::int32_t frame) = 0;
};

struct VideoSource {
    std::filesystem::path file;        // a picture or a video for filters, strokes for a brush
    std::filesystem::path presetFile;  // what messages call the preset
    std::optional<Depth> depth{};      // none: the source's own
    std::uint64_t memory = cli::MemoryBudget::HalfOfTheMachine();  // bytes, for strokes and all that they name
    PictureFiles::ReadNotification beforeReading{};                // of the pictures that strokes and brushes name
    std::unique_ptr<kel::VideoReader> video{};  // `file`, where it is one; its last frame stays to the end
};

// Filters over a picture, or the strokes of a file painted anew by a brush, as the preset's kind says. Reads all files.
// Throws cli::Error for what cannot be read or takes too much memory. `clock` is the preset's, not owned.
[[nodiscard]] std::unique_ptr<PresetVideo> MakeVideo(Preset preset, VideoSource source, const FrameRateClock& clock);

}  // namespace chalkpane::app
