#include "kel/video/video_size.h"

#include "cli/error.h"
#include "kel/video/video_file.h"

namespace kel {

std::optional<double> ReadVideoPixels(const std::filesystem::path& file) {
    try {
        const VideoFile video(file);
        return static_cast<double>(video.Codec().width) * static_cast<double>(video.Codec().height);
    } catch (const cli::Error&) {
        return std::nullopt;
    }
}

}  // namespace kel
