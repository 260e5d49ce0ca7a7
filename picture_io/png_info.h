#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "picture_io/picture_info.h"

namespace picture_io {

// What a PNG says besides its pixels. What cannot be understood is left out. The EXIF block is as it stands there.
[[nodiscard]] PictureInfo ReadPngInfo(std::span<const std::uint8_t> png);

// The information as chunks, which stand behind the header.
[[nodiscard]] std::vector<std::uint8_t> PngChunksOf(const PictureInfo& info);

}  // namespace picture_io
