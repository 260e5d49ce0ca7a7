#include "chalkpane/brush/dab_stretch.h"

#include <algorithm>
#include <cmath>

namespace chalkpane {

// A copy is moved by whole pixels, by less than one less or more than the way from its offset to the place.
void CopyRects::Take(const RoundBrushProfile& profile) {
    constexpr double rounding = 2.0;
    offset = profile.Offset();
    keepsPlaces = profile.KeepsPlaces() && profile.BaseMask() != nullptr;
    double farthest = 0.0;
    for (std::size_t copy = 0; keepsPlaces && copy < ofCopy.size(); ++copy) {
        const Image* const mask = profile.Shifted(copy / 8, copy % 8);
        keepsPlaces = mask != nullptr && mask->Width() > 0 && mask->Height() > 0;
        if (!keepsPlaces) return;
        ofCopy[copy] = mask->Bounds();
        const auto& [x0, y0, x1, y1] = ofCopy[copy];
        farthest = std::max({farthest, std::abs(x0 - offset.x), std::abs(x1 - offset.x), std::abs(y0 - offset.y),
                             std::abs(y1 - offset.y)});
    }
    reach = static_cast<std::int32_t>(farthest + rounding) + 1;
    if (keepsPlaces) TakeMasks(profile);
}

void CopyRects::TakeMasks(const RoundBrushProfile& profile) {
    masks = {};
    std::size_t room = 0;
    for (std::size_t copy = 0; copy < masks.size(); ++copy) {
        const Image& mask = *profile.Shifted(copy / 8, copy % 8);
        if (!mask.IsMask() || mask.GetDepth() != Depth::Eight) return;
        if (mask.Width() <= MaskRows::narrow)
            room += static_cast<std::size_t>(MaskRows::RoomFor(mask.Width())) * static_cast<std::size_t>(mask.Height());
    }
    padded_.assign(room, 0);
    std::uint8_t* next = padded_.data();
    for (std::size_t copy = 0; copy < masks.size(); ++copy) {
        const Image& mask = *profile.Shifted(copy / 8, copy % 8);
        const bool isNarrow = mask.Width() <= MaskRows::narrow;
        MaskRows& rows = masks[copy] = {reinterpret_cast<const std::uint8_t*>(mask.origin), mask.rowBytes, mask.Width(),
                                        mask.Height()};
        if (!isNarrow) continue;
        rows.step = MaskRows::RoomFor(mask.Width());
        rows.top = next;
        for (std::int32_t y = mask.y1; y >= mask.y0; --y, next += rows.step)
            std::ranges::copy(mask.Row8(y).first(static_cast<std::size_t>(mask.Width())), next);
    }
}

}  // namespace chalkpane
