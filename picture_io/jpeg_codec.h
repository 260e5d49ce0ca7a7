#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"
#include "picture_io/picture_info.h"

namespace picture_io {

// A JPEG file's bytes; pictures read from one are opaque, and writing leaves alpha out. Both throw Error with the
// reason alone.

// The pixels as they are stored. `info` takes what the file says besides; the EXIF block is as it stands there.
[[nodiscard]] Picture DecodeJpeg(const std::vector<std::uint8_t>& bytes, PictureInfo& info);

// isGrey: red, green and blue are alike everywhere, and one channel is written
[[nodiscard]] std::vector<std::uint8_t> EncodeJpeg(const Picture& picture, const WriteOptions& options, bool isGrey);

}  // namespace picture_io
