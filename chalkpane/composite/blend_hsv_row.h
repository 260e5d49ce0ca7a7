#pragma once

#include <cstdint>

namespace chalkpane::blend {

// What an HSV mode takes from the source; the rest is the destination's.
enum class HsvMode : std::uint8_t { Hue, Saturation, Value, HueAndSaturation };

// Rows of the HSV modes, with the operations of `PixelFormulas` in its order on four pixels at once. Need AVX2, and are
// there where `builtWithAvx2`. They return how many pixels, from the left, they did: whole fours.
std::int32_t BlendHsvRowAvx2(HsvMode mode, const std::uint8_t* source, const std::uint8_t* destination,
                             std::uint8_t* output, std::int32_t count);
std::int32_t BlendHsvRowAvx2(HsvMode mode, const std::uint16_t* source, const std::uint16_t* destination,
                             std::uint16_t* output, std::int32_t count);

}  // namespace chalkpane::blend
