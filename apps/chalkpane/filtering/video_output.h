#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "chalkpane/image/image.h"
#include "kel/video/video_writer.h"

namespace chalkpane::app {

// A video made of images, of the size of the first. It appears with Commit, whole or not at all. Everything throws
// cli::Error, and std::bad_alloc when the engine has left anything out for lack of memory.
class VideoOutput {
public:
    // hasAlpha: the images have some; it is kept where such a video keeps it
    VideoOutput(std::filesystem::path file, double framesPerSecond, bool hasAlpha);

    void Write(std::unique_ptr<Image> image);
    void Commit();  // one image at least has been written

private:
    std::filesystem::path m_file;
    double m_framesPerSecond;
    bool m_hasAlpha;
    std::optional<kel::VideoWriter> m_writer;
};

[[nodiscard]] bool IsVideoName(const std::filesystem::path& file);
// Throws cli::Error where a video cannot be written under the name.
void RequireVideoName(const std::filesystem::path& file);

}  // namespace chalkpane::app
