#include "chalkpane/brush/settled_stretch.h"

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

struct SettledStretch::Passed {
    const SettledTiles& tiles;
    const CopyRects& rects;

    [[nodiscard]] bool Holds(double x, double y) const {
        const Rect& area = tiles.Area();
        return x >= area.x0 && x < area.x1 && y >= area.y0 && y < area.y1 &&
               tiles.HoldMiddle(static_cast<std::int32_t>(x - area.x0), static_cast<std::int32_t>(y - area.y0));
    }
    [[nodiscard]] const Rect& RectOf(std::size_t copy) const { return rects.ofCopy[copy]; }
    void Paint(const Rect& /*rect*/, std::size_t /*copy*/) const {}
};

void SettledStretch::Pass(const SplineSearch& search, DabProgress& progress) const {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return PassAvx2(search, progress);
    PassPlain(search, progress);
}

void SettledStretch::PassPlain(const SplineSearch& search, DabProgress& progress) const {
    FollowDabs(search, rects_->offset, Passed{*tiles_, *rects_}, progress);
}

}  // namespace chalkpane
