#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/image/image.h"

namespace chalkpane {

// A mask of 8 bits as rows of bytes, the top one first. Those of a narrow mask go on with 0 up to 8, 16 or 32 bytes.
struct MaskRows {
    static constexpr std::int32_t narrow = 32;

    const std::uint8_t* top = nullptr;  // not owned
    std::ptrdiff_t step = 0;            // bytes from a row to the next one below
    std::int32_t width = 0;
    std::int32_t height = 0;

    // The bytes that a row of so many pixels takes.
    [[nodiscard]] static constexpr std::int32_t RoomFor(std::int32_t width) {
        return width <= 8 ? 8 : width <= 16 ? 16 : width <= narrow ? narrow : width;
    }
};

// What each pixel of a canvas bears: the greatest mask value under which dabs of one kind surely leave it as it is, at
// any opacity.
//
// An opaque 8-bit colour over a channel at or below it lifts it by the way to go times a weight of at most 65280 in
// 65536, rounded down: where that is nothing, every smaller weight does nothing as well, and what is nearer to the
// colour bears more. What an eraser leaves is rounded to the nearest, so a channel that is low enough for the weight
// stays, and all below it. So a pixel never bears less than it did: at the rim of a line, where no dab's middle comes,
// pixels bear what the line's dabs do to them long before they have the colour.
// Holds for as long as nobody else writes to the canvas. A megabyte: not for the stack.
class SettledPixels {
public:
    static constexpr std::int32_t side = 1024;
    // Bytes from a row to the next one below; not a power of two, or the rows of a dab would share a few lines of the
    // cache.
    static constexpr std::int32_t rowStep = side + 64;

    // Forgets all. canvas: borrowed; four channels of 8 bits, of `side` pixels a side at most.
    //   pixel  as its four channels lie in memory, alpha 255; 0 for dabs that erase
    void Serve(const Image& canvas, std::uint32_t pixel);

    // The rows of a part of a dab, from the first to the last, that may change under it; not valid where there is none.
    //   dab   where the mask's rectangle lies on the plane
    //   part  of it, and of the canvas
    [[nodiscard]] Rect RestlessRows(const Image& mask, const Rect& dab, const Rect& part) const;
    // Looks at what is on the canvas in a part of it.
    void Look(const Rect& part);

    // The top row first, one row `rowStep` bytes after the other; of a pixel of the canvas.
    [[nodiscard]] const std::uint8_t* At(std::int32_t x, std::int32_t y) const {
        return borne_.data() + std::ptrdiff_t{area_.y1 - y} * rowStep + (x - area_.x0);
    }

private:
    // Narrow masks are looked at beyond the ends of their rows.
    static constexpr std::size_t slack = MaskRows::narrow;

    const Image* canvas_ = nullptr;  // not owned
    Rect area_;
    std::uint32_t pixel_ = 0;
    std::array<std::uint8_t, std::size_t{rowStep} * side + slack> borne_{};
};

// True: every pixel bears what the mask has there. For the rows of a mask those of `borne` are as far apart as
// `SettledPixels` has them.
[[nodiscard]] bool BearMaskPlain(const std::uint8_t* borne, const MaskRows& mask);
[[nodiscard]] bool BearMaskAvx2(const std::uint8_t* borne, const MaskRows& mask);
[[nodiscard]] bool BearRow(const std::uint8_t* borne, const std::uint8_t* mask, std::ptrdiff_t count);
[[nodiscard]] bool BearRowPlain(const std::uint8_t* borne, const std::uint8_t* mask, std::ptrdiff_t count);
// What pixels of 4 channels bear under the colour of `pixel`, or an eraser.
void FindBorne(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne, std::ptrdiff_t count);
void FindBornePlain(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne, std::ptrdiff_t count);
// Need AVX2, and are there where `builtWithAvx2`.
[[nodiscard]] bool BearRowAvx2(const std::uint8_t* borne, const std::uint8_t* mask, std::ptrdiff_t count);
void FindBorneAvx2(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne, std::ptrdiff_t count);

}  // namespace chalkpane
