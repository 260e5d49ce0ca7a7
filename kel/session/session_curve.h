#pragma once

#include <vector>

#include "kel/session/session.h"

namespace kel {

// A fine polyline that bends smoothly through all `points` (a Catmull-Rom spline), as a hand draws. It is closed
// without a corner when the last point equals the first. Fewer than three points come back as they are.
[[nodiscard]] std::vector<SessionPoint> CurveThrough(const std::vector<SessionPoint>& points);

// `steps` + 1 places on the polyline `path`, evenly spread over its length, its two ends among them. `path` has at
// least one point, and `steps` is at least 1.
[[nodiscard]] std::vector<SessionPoint> SpreadAlong(const std::vector<SessionPoint>& path, std::size_t steps);

}  // namespace kel
