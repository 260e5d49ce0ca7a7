#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "telestrator/geometry.h"

namespace chalkpane::reference {

// The recognisers' searches written out step by step, with nothing clever in them.

struct Ellipse {
    int count = 0;
    double angle = 0;
    double a = 0;
    double b = 0;
    float centreX = 0;
    float centreY = 0;
};
Ellipse FitEllipse(std::span<const Vector3> points, Vector3 centroid, double tolerance);

// The vertices of the drawn ellipse in canvas pixels, all steps worked out: start, middle ones, end.
std::vector<Vector3> EllipseVertices(const Ellipse& ellipse, Vector3 centroid, double aspect, int brushWidth);

struct Circle {
    std::uint32_t count = 0;
    float centreX = 0;
    float centreY = 0;
    double radius = 0;
};
// All votes in one go over the whole cube of counters.
Circle VoteForCircles(std::span<const Vector3> points);

}  // namespace chalkpane::reference
