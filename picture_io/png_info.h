#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "picture_io/picture_info.h"

namespace picture_io {

// What a PNG says besides its pixels. What cannot be understood is left out. The EXIF block is as it stands there.
[[nodiscard]] PictureInfo ReadPngInfo(std::span<const std::uint8_t> png);

// A whole PNG with the information put in, and without the chunk that names the usual colours where there is a profile.
[[nodiscard]] std::vector<std::uint8_t> WithPngInfo(std::vector<std::uint8_t> png, const PictureInfo& info);

}  // namespace picture_io
