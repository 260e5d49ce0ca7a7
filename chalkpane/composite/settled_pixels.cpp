#include "chalkpane/composite/settled_pixels.h"

#include <algorithm>
#include <bit>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/composite/borne_masks.h"

namespace chalkpane {

void SettledPixels::Serve(const Image& canvas, std::uint32_t pixel) {
    canvas_ = &canvas;
    area_ = canvas.Bounds();
    pixel_ = pixel;
    borne_.fill(0);
}

Rect SettledPixels::RestlessRows(const Image& mask, const Rect& dab, const Rect& part) const {
    if (!mask.IsMask() || mask.GetDepth() != Depth::Eight) return part;
    const auto isBorne = [&](std::int32_t y) {
        const auto* const row =
            reinterpret_cast<const std::uint8_t*>(mask.Address(mask.x0 + (part.x0 - dab.x0), mask.y0 + (y - dab.y0)));
        return BearRow(At(part.x0, y), row, part.Width());
    };
    Rect rows = part;
    while (rows.y0 <= rows.y1 && isBorne(rows.y0)) ++rows.y0;
    if (rows.y0 > rows.y1) return {};
    while (rows.y0 < rows.y1 && isBorne(rows.y1)) --rows.y1;
    return rows;
}

void SettledPixels::Look(const Rect& part) {
    for (std::int32_t y = part.y0; y <= part.y1; ++y)
        FindBorne(reinterpret_cast<const std::uint8_t*>(canvas_->Address(part.x0, y)), pixel_,
                  borne_.data() + (At(part.x0, y) - borne_.data()), part.Width());
}

bool BearRow(const std::uint8_t* borne, const std::uint8_t* mask, std::ptrdiff_t count) {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return BearRowAvx2(borne, mask, count);
    return BearRowPlain(borne, mask, count);
}

bool BearMaskPlain(const std::uint8_t* borne, const MaskRows& mask) {
    for (std::ptrdiff_t row = 0; row < mask.height; ++row)
        if (!BearRowPlain(borne + row * SettledPixels::rowStep, mask.top + row * mask.step, mask.width)) return false;
    return true;
}

bool BearRowPlain(const std::uint8_t* borne, const std::uint8_t* mask, std::ptrdiff_t count) {
    return std::equal(mask, mask + count, borne, [](std::uint8_t m, std::uint8_t most) { return m <= most; });
}

void FindBorne(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne, std::ptrdiff_t count) {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return FindBorneAvx2(pixels, pixel, borne, count);
    FindBornePlain(pixels, pixel, borne, count);
}

void FindBornePlain(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne, std::ptrdiff_t count) {
    const auto colour = std::bit_cast<std::array<std::uint8_t, 4>>(pixel);
    const bool erases = pixel == 0;
    const BorneMasks& masks = erases ? borneByEraser : borneByColour;
    for (std::ptrdiff_t i = 0; i < count; ++i, pixels += 4) {
        std::int32_t farthest = 0;
        bool isBeyond = false;
        for (std::size_t c = 0; c < 4; ++c) {
            const std::int32_t distance = erases ? pixels[c] : colour[c] - pixels[c];
            isBeyond = isBeyond || distance < 0;
            farthest = std::max(farthest, distance);
        }
        borne[i] = static_cast<std::uint8_t>(isBeyond ? 0 : masks[static_cast<std::size_t>(farthest)]);
    }
}

}  // namespace chalkpane
