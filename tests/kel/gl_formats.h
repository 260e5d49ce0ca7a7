#pragma once

#include <cstdint>

namespace kel::testing {

// What a module says of its pixels, by OpenGL's numbers.
inline constexpr std::int32_t rgba = 6408;
inline constexpr std::int32_t unsignedByte = 0x1401;

}  // namespace kel::testing
