#pragma once

#include <cstdint>
#include <span>

#include "telestrator/geometry.h"

namespace chalkpane {

// An ellipse in the space of the stored stroke points, in axes rotated about `centroid` by `angle`.
struct EllipseFit {
    std::int32_t count = 0;  // points that lie on it
    double angle = 0;        // radians
    double halfWidth = 0;    // along the rotated x
    double halfHeight = 0;
    Vector3 centre;  // in the rotated axes, from the centroid
};

[[nodiscard]] Vector3 Centroid(std::span<const Vector3> points);

// The best of 360 rotations by half a degree, from -90 degrees up; the first of those that tie.
//
//   tolerance    how far a point may lie off the ellipse, along the rotated y
//   widestLimit  where the search for the limits of the points starts from, on either side
//
// The rotations run on the workers. Throws std::bad_alloc.
[[nodiscard]] EllipseFit FitEllipse(std::span<const Vector3> points, const Vector3& centroid, double tolerance,
                                    double widestLimit);

}  // namespace chalkpane
