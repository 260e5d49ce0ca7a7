#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "telestrator/recognition/ellipse_fit.h"

namespace chalkpane {

// The two passes over the points that each rotation of the ellipse fit makes, plain and for AVX2: the same floats, the
// same limits, the same count.

// The points as seen from their centroid, an array for each number. None of them depends on the rotation.
struct SeenPoints {
    std::span<const double> xs;
    std::span<const double> ys;
    std::span<const double> radii;
    std::span<const double> angles;  // radians
};

// Room for the rotated points, as many as there are. KEEP: 32-bit floats; the box around them depends on the rounding.
struct RotatedPoints {
    std::span<float> xs;
    std::span<float> ys;
};

struct Limits {
    float low;
    float high;

    void Extend(float value) {
        if (value < low) low = value;
        if (value > high) high = value;
    }
    [[nodiscard]] double Middle() const { return (double{low} + high) / 2; }
    [[nodiscard]] double HalfWidth() const { return std::abs(double{high} - low) / 2; }
};

struct Box {
    Limits x;
    Limits y;
};

inline void RotateOne(const SeenPoints& points, double angle, const RotatedPoints& rotated, std::size_t i) {
    const double rotatedAngle = points.angles[i] + angle;
    rotated.xs[i] = static_cast<float>(points.radii[i] * std::cos(rotatedAngle));
    rotated.ys[i] = static_cast<float>(points.radii[i] * std::sin(rotatedAngle));
}

// A point at the very end of the rotated x axis divides by zero; it lies infinitely far off and does not count.
inline bool LiesOn(const EllipseFit& fit, float rotatedX, float rotatedY, double tolerance) {
    const double x = double{rotatedX} - fit.centre.x;
    const double y = double{rotatedY} - fit.centre.y;
    const double height = std::sqrt(y * y / (1 - x * x / (fit.halfWidth * fit.halfWidth)));
    return std::abs(fit.halfHeight - height) < tolerance;
}

// Fills `rotated` and returns `box` extended by its points.
Box RotatePointsPlain(const SeenPoints& points, double angle, const RotatedPoints& rotated, Box box);
// Needs AVX2, and is there where `builtWithAvx2`.
Box RotatePointsAvx2(const SeenPoints& points, double angle, const RotatedPoints& rotated, Box box);

// How many of the rotated points lie on the ellipse.
std::int32_t CountPointsOnEllipsePlain(const RotatedPoints& rotated, const EllipseFit& fit, double tolerance);
// Needs AVX2, and is there where `builtWithAvx2`.
std::int32_t CountPointsOnEllipseAvx2(const RotatedPoints& rotated, const EllipseFit& fit, double tolerance);

}  // namespace chalkpane
