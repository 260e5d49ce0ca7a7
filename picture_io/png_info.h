#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "picture_io/picture_info.h"

namespace picture_io {

// What a PNG says besides its pixels. What cannot be understood is left out. The EXIF block is as it stands there.
[[nodiscard]] PictureInfo ReadPngInfo(std::span<const std::uint8_t> png);

// The information as chunks, which stand behind the header.
[[nodiscard]] std::vector<std::uint8_t> PngChunksOf(const PictureInfo& info);

// What the chunks of text say, in UTF-8, for formats that know comments only: a comment as it is, anything else behind
// its keyword, such as "Author: A. B.". A text that cannot be unpacked is left out.
[[nodiscard]] std::vector<std::string> CommentsOf(std::span<const std::uint8_t> texts);

}  // namespace picture_io
