#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/image/image.h"

namespace chalkpane {

// The smallest dabs there are, of which a fine pen sets tens of thousands: their rows and columns cost more than their
// pixels, so they are painted as one block, whatever their size.
struct SmallMask8 {
    static constexpr std::int32_t side = 4;

    // The top row first. A mask value m as the weight m + (m >> 7), for each of the four channels of a pixel; 0 beyond
    // the mask.
    using Row = std::array<std::uint16_t, std::size_t{4} * side>;
    std::array<Row, side> rows{};
    Rect rect;  // the mask's own

    // False: the mask is larger, or none of 8 bits.
    bool Take(const Image& mask);
};

// Where small dabs go: a canvas of four channels of 8 bits, and one opaque colour.
struct SmallDabTarget {
    std::uint8_t* origin = nullptr;  // of pixel (x0, y1)
    std::ptrdiff_t rowBytes = 0;     // from one row to the row below
    Rect rect;
    std::uint32_t pixel = 0;  // as its four channels lie in memory, alpha 255

    // Null in `origin`: the canvas is of another kind.
    static SmallDabTarget Of(const Image& canvas, std::uint32_t pixel);

    [[nodiscard]] std::uint8_t* At(std::int32_t x, std::int32_t y) const {
        return origin + (rect.y1 - y) * rowBytes + 4 * std::ptrdiff_t{x - rect.x0};
    }

    // True: the whole block of a mask at that place lies in the canvas.
    [[nodiscard]] bool Holds(const Rect& mask) const {
        constexpr std::int32_t last = SmallMask8::side - 1;
        return mask.x0 >= rect.x0 && mask.x0 <= rect.x1 - last && mask.y1 - last >= rect.y0 && mask.y1 <= rect.y1;
    }
};

// One colour over the canvas where it holds the mask's rectangle as it was moved: `left` and `top` of it. Both versions
// give the same bytes, which are those of the rows of `BrushPaster`.
//
//   opacity   0 .. 255
void SmallColourOver8Plain(const SmallDabTarget& target, const SmallMask8& mask, std::int32_t left, std::int32_t top,
                           std::int32_t opacity);
// Needs AVX2, and is there where `builtWithAvx2`.
void SmallColourOver8Avx2(const SmallDabTarget& target, const SmallMask8& mask, std::int32_t left, std::int32_t top,
                          std::int32_t opacity);
void SmallColourOver8(const SmallDabTarget& target, const SmallMask8& mask, std::int32_t left, std::int32_t top,
                      std::int32_t opacity);

}  // namespace chalkpane
