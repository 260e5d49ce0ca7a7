#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "chalkpane/brush/profiles/round_brush_profile.h"
#include "chalkpane/brush/spline_search.h"
#include "chalkpane/composite/settled_pixels.h"

namespace chalkpane {

// Where the shifted copies of a profile's mask lie, and what is in them.
struct CopyRects {
    std::array<Rect, 64> ofCopy;     // 8 * j + i
    std::array<MaskRows, 64> masks;  // of 8 bits; without rows where they have another form
    Point2 offset;                   // from a dab's place to where the coordinates of its mask begin
    bool keepsPlaces = false;        // the profile does, and all copies are there
    std::int32_t reach = 0;          // no pixel of a dab lies further from its place, in rows or columns

    // profile: its masks are borrowed.
    void Take(const RoundBrushProfile& profile);

private:
    void TakeMasks(const RoundBrushProfile& profile);

    std::vector<std::uint8_t> padded_;  // the narrow masks
};

struct DabProgress {
    std::int32_t step = 0;  // the next to be looked at
    float lastX = 0.0F;     // of the last dab, wherever that was painted
    float lastY = 0.0F;
    bool followsDab = false;     // the last dab is that of the step before `step`
    std::int32_t lastStep = -1;  // of the last dab of the stretch; below 0: there was none
    std::int32_t dabs = 0;       // in the stretch
    Rect changed;
};

// Follows the dabs of one colour along one stretch of a stroke until the curve ends, or until one that `dabs` does not
// hold: then `step` is that dab's, and nothing has happened to it. From one dab to the next nothing is worked out but
// its place.
//
//   maskOffset  from a dab's place to where the coordinates of its mask begin
//
// `Dabs` has
//   bool Holds(double x, double y) const
//   const Rect& RectOf(std::size_t copy) const              of the profile's mask of that number, 8 * j + i
//   bool Paint(const Rect& rect, std::size_t copy) const    the rectangle as it was moved; false: it does not hold this
//                                                           one either
template <typename Dabs>
void FollowDabs(const SplineSearch& search, const Point2& maskOffset, const Dabs& dabs, DabProgress& progress) {
    const std::int32_t stride = search.StepsWithoutDab();
    if (progress.followsDab) progress.step += stride;
    for (;; progress.step += 1 + stride) {
        progress.step = search.FirstBeyond(progress.step, progress.lastX, progress.lastY);
        if (progress.step >= SplineIterator::steps) return;
        const auto [x, y] = search.PlaceAt(progress.step);
        if (!dabs.Holds(x, y)) return;
        const std::size_t copy = 8 * RoundBrushProfile::Eighth(x) + RoundBrushProfile::Eighth(y);
        Rect rect = dabs.RectOf(copy);
        rect.Translate(static_cast<std::int32_t>(x - maskOffset.x), static_cast<std::int32_t>(y - maskOffset.y));
        if (!dabs.Paint(rect, copy)) return;
        progress.changed = progress.changed.Union(rect);
        progress.lastX = static_cast<float>(x);
        progress.lastY = static_cast<float>(y);
        progress.lastStep = progress.step;
        ++progress.dabs;
    }
}

}  // namespace chalkpane
