#include "chalkpane/brush/settled_stretch.h"

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

struct SettledStretch::Passed {
    const SettledTiles& tiles;
    const CopyRects& rects;

    const SettledPixels* pixels;
    mutable bool isInCell = false;

    [[nodiscard]] bool Holds(double x, double y) const {
        const Rect& area = tiles.Area();
        if (!(x >= area.x0 && x < area.x1 && y >= area.y0 && y < area.y1)) return false;
        isInCell = tiles.HoldMiddle(static_cast<std::int32_t>(x - area.x0), static_cast<std::int32_t>(y - area.y0));
        return isInCell || pixels != nullptr;
    }
    [[nodiscard]] const Rect& RectOf(std::size_t copy) const { return rects.ofCopy[copy]; }
    [[nodiscard]] bool Paint(const Rect& rect, std::size_t copy) const {
        return isInCell ||
               (tiles.Area().Contains(rect) && BearMaskPlain(pixels->At(rect.x0, rect.y1), rects.masks[copy]));
    }
};

void SettledStretch::Pass(const SplineSearch& search, DabProgress& progress) const {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return PassAvx2(search, progress);
    PassPlain(search, progress);
}

void SettledStretch::PassPlain(const SplineSearch& search, DabProgress& progress) const {
    FollowDabs(search, rects_->offset, Passed{*tiles_, *rects_, PixelsToAsk()}, progress);
}

}  // namespace chalkpane
