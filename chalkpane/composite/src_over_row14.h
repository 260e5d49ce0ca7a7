#pragma once

#include <cstddef>
#include <cstdint>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

// A 14-bit colour over a 14-bit target, through a mask, no clip, no blend mode. Both versions give the same words.
//
//   target, source  4 channels a pixel, `count` pixels, not overlapping
//   mask            advances by `maskStep` words a pixel
//   opacity         0 .. 16383
void SrcOverRow14Plain(std::uint16_t* target, const std::uint16_t* source, const std::uint16_t* mask,
                       std::ptrdiff_t maskStep, std::ptrdiff_t count, std::int32_t opacity);
// Needs AVX2, and is there where `builtWithAvx2`. The mask has one word a pixel.
void SrcOverRow14Avx2(std::uint16_t* target, const std::uint16_t* source, const std::uint16_t* mask,
                      std::ptrdiff_t count, std::int32_t opacity);
// The fastest that runs here.
void SrcOverRow14(std::uint16_t* target, const std::uint16_t* source, const std::uint16_t* mask,
                  std::ptrdiff_t maskStep, std::ptrdiff_t count, std::int32_t opacity);

// One pixel of it. Sums above full scale keep their low bits.
inline void OverPixel14(std::uint16_t* target, const std::uint16_t* source, std::int32_t mask, std::int32_t opacity) {
    const std::int32_t a = Scale14(Scale14(source[3], mask), opacity);
    const std::int32_t rest = PixelFormat14::fullScale - a;
    for (int c = 0; c < 3; ++c)
        target[c] = static_cast<std::uint16_t>(Scale14(source[c], a) + Scale14(target[c], rest));
    target[3] = static_cast<std::uint16_t>(Scale14(target[3], rest) + a);
}

}  // namespace chalkpane
