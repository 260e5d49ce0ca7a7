#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace picture_io {

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    [[nodiscard]] double Pixels() const { return static_cast<double>(width) * static_cast<double>(height); }
};

// How large a PNG or a JPEG says it is, from its first bytes; whether the rest of it is well nobody asks. Nothing for
// other files, and for what is no regular file or not there: their reader tells.
[[nodiscard]] std::optional<PictureSize> ReadPictureSize(const std::filesystem::path& file);

}  // namespace picture_io
