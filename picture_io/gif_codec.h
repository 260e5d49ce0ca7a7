#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"
#include "picture_io/picture_info.h"

namespace picture_io {

// Both throw Error with the reason alone.

// The first picture, clear where it leaves its screen empty. `info` takes whether it has clear pixels.
[[nodiscard]] Picture DecodeGif(const std::vector<std::uint8_t>& bytes, PictureInfo& info);

// The bytes of a GIF with one picture. Its colours are kept where they are 256 at most, a clear pixel counting as one;
// otherwise the nearest of as many are taken. A pixel is clear or opaque: what shows through more than it covers is
// clear.
[[nodiscard]] std::vector<std::uint8_t> EncodeGif(const Picture& picture);

}  // namespace picture_io
