#pragma once

#include <cstddef>
#include <cstdint>

namespace chalkpane {

// The most used loop of all: an 8-bit colour over an 8-bit target, through a mask, no clip, no blend mode. Both
// versions give the same bytes.
//
//   target, source  4 channels a pixel, `count` pixels, not overlapping
//   mask            advances by `maskStep` bytes a pixel
//   opacity         0 .. 255
void SrcOverRow8Plain(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask,
                      std::ptrdiff_t maskStep, std::ptrdiff_t count, std::int32_t opacity);
// Needs AVX2, and is there where `builtWithAvx2`. The mask has one byte a pixel.
void SrcOverRow8Avx2(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask, std::ptrdiff_t count,
                     std::int32_t opacity);
// The fastest that runs here.
void SrcOverRow8(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask, std::ptrdiff_t maskStep,
                 std::ptrdiff_t count, std::int32_t opacity);

// The same over rows.
struct PixelBlock8 {
    std::uint8_t* target = nullptr;  // the first row's first pixel
    std::ptrdiff_t targetStep = 0;   // bytes from one row to the next
    const std::uint8_t* source = nullptr;
    std::ptrdiff_t sourceStep = 0;
    const std::uint8_t* mask = nullptr;  // a byte a pixel
    std::ptrdiff_t maskStep = 0;         // bytes from one row to the next
    std::ptrdiff_t width = 0;            // of all three
    std::ptrdiff_t height = 0;
    std::int32_t opacity = 0;  // 0 .. 255
};
// Needs AVX-512, and is there where `builtWithAvx512`.
void SrcOverBlock8Avx512(const PixelBlock8& block);
void SrcOverBlock8(const PixelBlock8& block);

// And for a source of one opaque colour.
struct ColourBlock8 {
    std::uint8_t* target = nullptr;  // the first row's first pixel
    std::ptrdiff_t targetStep = 0;   // bytes from one row to the next
    const std::uint8_t* mask = nullptr;
    std::ptrdiff_t maskStep = 0;  // bytes from one row to the next; a byte a pixel
    std::ptrdiff_t width = 0;     // of both, from 1
    std::ptrdiff_t height = 0;
    std::uint32_t pixel = 0;   // as its four channels lie in memory, alpha 255
    std::int32_t opacity = 0;  // 0 .. 255
};
void ColourOverBlock8Plain(const ColourBlock8& block);
// Needs AVX2, and is there where `builtWithAvx2`.
void ColourOverBlock8Avx2(const ColourBlock8& block);
// Needs AVX-512, and is there where `builtWithAvx512`.
void ColourOverBlock8Avx512(const ColourBlock8& block);
void ColourOverBlock8(const ColourBlock8& block);

// One pixel of it.
inline void OverPixel8(std::uint8_t* target, const std::uint8_t* source, std::int32_t mask, std::int32_t opacity) {
    const std::int32_t alpha = source[3];
    const std::int32_t w = (((mask + (mask >> 7)) * (alpha + (alpha >> 7))) >> 8) * opacity;
    const std::int32_t v = 65536 - w;
    for (int c = 0; c < 3; ++c) target[c] = static_cast<std::uint8_t>((source[c] * w + target[c] * v) >> 16);
    target[3] = static_cast<std::uint8_t>((target[3] * v + w * 255) >> 16);
}

}  // namespace chalkpane
