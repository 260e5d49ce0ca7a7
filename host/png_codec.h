#pragma once

#include <cstdint>
#include <vector>

#include "host/picture.h"

namespace kel {

// A PNG file's bytes. Both throw Error with the reason alone.
[[nodiscard]] Picture DecodePng(const std::vector<std::uint8_t>& bytes);
[[nodiscard]] std::vector<std::uint8_t> EncodePng(const Picture& picture);

}  // namespace kel
