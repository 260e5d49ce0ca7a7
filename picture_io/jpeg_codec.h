#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"

namespace picture_io {

// A JPEG file's bytes; pictures read from one are opaque, and writing leaves alpha out. Both throw Error with the
// reason alone.
[[nodiscard]] Picture DecodeJpeg(const std::vector<std::uint8_t>& bytes);
[[nodiscard]] std::vector<std::uint8_t> EncodeJpeg(const Picture& picture);

}  // namespace picture_io
