#pragma once

#include <cstdint>
#include <span>

#include "telestrator/geometry.h"

namespace chalkpane {

// The most voted circle of a Hough transform over 256 x 256 centres, 4 canvas pixels apart, and radii in bins of 4
// pixels. Among equals it is the circle whose counter got there first, votes being cast point by point, column by
// column, row by row; the radius is that of the very vote.
struct CircleVote {
    std::uint32_t count = 0;
    std::int32_t point = 0;   // of the deciding vote
    std::int32_t column = 0;  // of the centre
    std::int32_t row = 0;
    double radius = 0;

    [[nodiscard]] Vector3 Centre() const;
};

// counters: room for `houghCounters`; what it held before and holds afterwards is of no meaning. The columns run on the
// workers.
[[nodiscard]] CircleVote SearchCircle(std::span<const Vector3> points, std::span<std::uint32_t> counters);

// False: surely fewer than `count` of the points lie nearer than `tolerance` to any circle that the search could find,
// so it need not be made. True says nothing.
[[nodiscard]] bool MayLieOnACircle(std::span<const Vector3> points, double tolerance, std::int32_t count);

}  // namespace chalkpane
