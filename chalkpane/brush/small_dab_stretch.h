#pragma once

#include <array>
#include <cstdint>

#include "chalkpane/brush/dab_stretch.h"
#include "chalkpane/brush/spline_search.h"
#include "chalkpane/composite/small_dab.h"
#include "chalkpane/transform/matrix3.h"

namespace chalkpane {

// The shifted copies of a profile's mask, where all of them are small.
struct SmallMasks {
    std::array<SmallMask8, 64> ofCopy;  // 8 * j + i
    // The least and the greatest that the copies' rectangles begin and end at.
    Rect least;
    Rect greatest;
    Point2 offset;             // from a dab's place to where the coordinates of its mask begin
    bool keepsPlaces = false;  // the profile does

    // Once all copies are taken.
    void MeasureRects(const Point2& profileOffset, bool profileKeepsPlaces);
};

// The smallest dabs along one stretch of a stroke, of which a fine pen sets hundreds: from one to the next nothing
// leaves the registers but their pixels.
class SmallDabStretch {
public:
    // Holds no place.
    SmallDabStretch() = default;
    // masks: borrowed. A canvas without origin, and masks that move places, leave nothing to paint here.
    SmallDabStretch(const SmallDabTarget& canvas, const SmallMasks& masks);

    // Paints the dabs that follow until the curve ends, or until one that is not for a block: then `step` is that
    // dab's, and it is not painted. The same pixels and places as by `SplineSearch` and `SmallColourOver8`.
    //   opacity  0 .. 255
    void Paint(const SplineSearch& search, std::int32_t opacity, DabProgress& progress) const;
    void PaintPlain(const SplineSearch& search, std::int32_t opacity, DabProgress& progress) const;
    // Needs AVX2, and is there where `builtWithAvx2`.
    void PaintAvx2(const SplineSearch& search, std::int32_t opacity, DabProgress& progress) const;

    // True: a dab whose middle lies there is surely one for a block.
    [[nodiscard]] bool Holds(double x, double y) const {
        return x >= low_[0] && x <= high_[0] && y >= low_[1] && y <= high_[1];
    }
    [[nodiscard]] bool HoldsAny() const { return low_[0] <= high_[0] && low_[1] <= high_[1]; }

private:
    struct Blocks;

    SmallDabTarget canvas_;
    const SmallMasks* masks_ = nullptr;
    std::array<double, 2> low_{1.0, 1.0};
    std::array<double, 2> high_{0.0, 0.0};
};

}  // namespace chalkpane
