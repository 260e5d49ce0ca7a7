#include "telestrator/recognition/ellipse_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "chalkpane/base/multi_processor.h"

namespace chalkpane {
namespace {

constexpr std::int32_t rotationCount = 360;
constexpr std::int32_t rotationsPerBand = 15;  // some hundred thousand cycles: worth a worker's while
constexpr std::int32_t bandCount = rotationCount / rotationsPerBand;
static_assert(bandCount * rotationsPerBand == rotationCount);

// A point as seen from the centroid. Neither depends on the rotation.
struct PolarPoint {
    double radius;
    double angle;
};

struct RotatedPoint {
    float x;
    float y;
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

struct Search {
    std::span<const PolarPoint> points;
    std::span<RotatedPoint> scratch;  // room for all points, for each band
    double tolerance;
    double widestLimit;
    std::array<EllipseFit, rotationCount> fits;
};

double RotationAngle(std::int32_t rotation) { return rotation * std::numbers::pi / 360 - std::numbers::pi / 2; }

// A point at the very end of the rotated x axis divides by zero; it lies infinitely far off and does not count.
std::int32_t CountPointsOnEllipse(std::span<const RotatedPoint> points, const EllipseFit& fit, double tolerance) {
    const double halfWidthSquared = fit.halfWidth * fit.halfWidth;
    std::int32_t count = 0;
    for (const RotatedPoint& point : points) {
        const double x = double{point.x} - fit.centre.x;
        const double y = double{point.y} - fit.centre.y;
        const double height = std::sqrt(y * y / (1 - x * x / halfWidthSquared));
        count += std::abs(fit.halfHeight - height) < tolerance ? 1 : 0;
    }
    return count;
}

EllipseFit FitRotation(const Search& search, std::span<RotatedPoint> rotated, std::int32_t rotation) {
    EllipseFit fit;
    fit.angle = RotationAngle(rotation);
    const auto widest = static_cast<float>(search.widestLimit);
    Limits x{widest, -widest};
    Limits y{widest, -widest};
    for (std::size_t i = 0; i < rotated.size(); ++i) {
        const PolarPoint& point = search.points[i];
        const double angle = point.angle + fit.angle;
        // KEEP: rotated points in 32-bit floats; the box around them depends on the rounding.
        rotated[i] = {static_cast<float>(point.radius * std::cos(angle)),
                      static_cast<float>(point.radius * std::sin(angle))};
        x.Extend(rotated[i].x);
        y.Extend(rotated[i].y);
    }
    fit.centre = Vector3(x.Middle(), y.Middle(), 0);
    fit.halfWidth = x.HalfWidth();
    fit.halfHeight = y.HalfWidth();
    fit.count = CountPointsOnEllipse(rotated, fit, search.tolerance);
    return fit;
}

void FitBand(std::int32_t band, void* userData, std::int32_t /*worker*/) {
    Search& search = *static_cast<Search*>(userData);
    const std::size_t pointCount = search.points.size();
    const auto rotated = search.scratch.subspan(static_cast<std::size_t>(band) * pointCount, pointCount);
    for (std::int32_t rotation = band * rotationsPerBand; rotation < (band + 1) * rotationsPerBand; ++rotation) {
        search.fits[static_cast<std::size_t>(rotation)] = FitRotation(search, rotated, rotation);
    }
}

}  // namespace

Vector3 Centroid(std::span<const Vector3> points) {
    double x = 0;
    double y = 0;
    for (const Vector3& point : points) {
        x += point.x;
        y += point.y;
    }
    const auto count = static_cast<double>(points.size());
    return {x / count, y / count, 0};
}

EllipseFit FitEllipse(std::span<const Vector3> points, const Vector3& centroid, double tolerance, double widestLimit) {
    std::vector<PolarPoint> polar;
    polar.reserve(points.size());
    for (const Vector3& point : points) {
        const Vector3 d = point - centroid;
        polar.push_back({d.Length(), std::atan2(double{d.y}, double{d.x})});
    }
    std::vector<RotatedPoint> scratch(points.size() * bandCount);
    Search search{polar, scratch, tolerance, widestLimit, {}};
    MultiProcessor::Instance().Run(0, bandCount - 1, FitBand, &search);
    // The first of equals: rotations come in ascending order and only a greater count replaces the best.
    return *std::max_element(search.fits.begin(), search.fits.end(),
                             [](const EllipseFit& a, const EllipseFit& b) { return a.count < b.count; });
}

}  // namespace chalkpane
