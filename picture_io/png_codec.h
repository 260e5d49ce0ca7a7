#pragma once

#include <cstdint>
#include <vector>

#include "picture_io/picture.h"

namespace picture_io {

// From a PNG file's bytes. Throws Error with the reason alone.
[[nodiscard]] Picture DecodePng(const std::vector<std::uint8_t>& bytes);

}  // namespace picture_io
