#pragma once

#include <cstdint>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// The two luma rules of the filters, both needed: weights 77, 151, 28 over 256 for 8-bit pixels and for colours held in
// settings, weights 4915, 9666, 1802 over 16384 for 16-bit pixels. The latter add up to one short of 16384, so that
// white comes out as 16382.

[[nodiscard]] constexpr std::int32_t LumaByte(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return (77 * red + 151 * green + 28 * blue) >> 8;
}

[[nodiscard]] constexpr std::int32_t LumaWord(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return (4915 * red + 9666 * green + 1802 * blue) >> 14;
}

// The rule of the format's depth.
template <typename F>
[[nodiscard]] constexpr std::int32_t LumaOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return F::bits == 8 ? LumaByte(red, green, blue) : LumaWord(red, green, blue);
}

}  // namespace chalkpane
