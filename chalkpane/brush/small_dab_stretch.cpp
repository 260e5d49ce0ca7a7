#include "chalkpane/brush/small_dab_stretch.h"

#include <algorithm>

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

void SmallMasks::MeasureRects(const Point2& profileOffset, bool profileKeepsPlaces) {
    offset = profileOffset;
    keepsPlaces = profileKeepsPlaces;
    least = greatest = ofCopy[0].rect;
    for (const SmallMask8& mask : ofCopy) {
        const Rect& rect = mask.rect;
        keepsPlaces = keepsPlaces && rect.Width() > 0 && rect.Height() > 0;
        least = {std::min(least.x0, rect.x0), std::min(least.y0, rect.y0), std::min(least.x1, rect.x1),
                 std::min(least.y1, rect.y1)};
        greatest = {std::max(greatest.x0, rect.x0), std::max(greatest.y0, rect.y0), std::max(greatest.x1, rect.x1),
                    std::max(greatest.y1, rect.y1)};
    }
}

// A mask is moved by whole pixels, by less than one less or more than the way from its offset to the place. On the
// canvas all of it can be held as integers.
SmallDabStretch::SmallDabStretch(const SmallDabTarget& canvas, const SmallMasks& masks)
    : canvas_(canvas), masks_(&masks) {
    constexpr double rounding = 2.0;
    constexpr double last = SmallMask8::side - 1;
    constexpr std::int32_t farthest = 1 << 28;
    if (canvas.origin == nullptr || !masks.keepsPlaces ||
        !Rect(-farthest, -farthest, farthest, farthest).Contains(canvas.rect))
        return;
    const auto& [x, y] = masks.offset;
    low_ = {x + canvas.rect.x0 + rounding - masks.least.x0, y + canvas.rect.y0 + last + rounding - masks.least.y1};
    high_ = {x + canvas.rect.x1 - last - rounding - masks.greatest.x0,
             y + canvas.rect.y1 - rounding - masks.greatest.y1};
}

struct SmallDabStretch::Blocks {
    const SmallDabStretch& stretch;
    std::int32_t opacity;

    [[nodiscard]] bool Holds(double x, double y) const { return stretch.Holds(x, y); }
    [[nodiscard]] const Rect& RectOf(std::size_t copy) const { return stretch.masks_->ofCopy[copy].rect; }
    [[nodiscard]] bool Paint(const Rect& rect, std::size_t copy) const {
        SmallColourOver8Plain(stretch.canvas_, stretch.masks_->ofCopy[copy], rect.x0, rect.y1, opacity);
        return true;
    }
};

void SmallDabStretch::Paint(const SplineSearch& search, std::int32_t opacity, DabProgress& progress) const {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return PaintAvx2(search, opacity, progress);
    PaintPlain(search, opacity, progress);
}

void SmallDabStretch::PaintPlain(const SplineSearch& search, std::int32_t opacity, DabProgress& progress) const {
    FollowDabs(search, masks_->offset, Blocks{*this, opacity}, progress);
}

}  // namespace chalkpane
