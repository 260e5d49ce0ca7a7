#include "telestrator/recognition/ellipse_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"
#include "telestrator/recognition/ellipse_rotation.h"

namespace chalkpane {
namespace {

constexpr std::int32_t rotationCount = 360;
constexpr std::int32_t rotationsPerBand = 15;  // some hundred thousand cycles: worth a worker's while
constexpr std::int32_t bandCount = rotationCount / rotationsPerBand;
static_assert(bandCount * rotationsPerBand == rotationCount);

struct Search {
    SeenPoints points;
    std::span<float> scratch;  // room for both coordinates of all points, for each band
    double tolerance;
    double widestLimit;
    std::array<EllipseFit, rotationCount> fits;
};

double RotationAngle(std::int32_t rotation) { return rotation * std::numbers::pi / 360 - std::numbers::pi / 2; }

Box RotatePoints(const SeenPoints& points, double angle, const RotatedPoints& rotated, const Box& box) {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return RotatePointsAvx2(points, angle, rotated, box);
    return RotatePointsPlain(points, angle, rotated, box);
}

std::int32_t CountPointsOnEllipse(const RotatedPoints& rotated, const EllipseFit& fit, double tolerance) {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return CountPointsOnEllipseAvx2(rotated, fit, tolerance);
    return CountPointsOnEllipsePlain(rotated, fit, tolerance);
}

EllipseFit FitRotation(const Search& search, const RotatedPoints& rotated, std::int32_t rotation) {
    EllipseFit fit;
    fit.angle = RotationAngle(rotation);
    const auto widest = static_cast<float>(search.widestLimit);
    const Box box = RotatePoints(search.points, fit.angle, rotated, {{widest, -widest}, {widest, -widest}});
    fit.centre = Vector3(box.x.Middle(), box.y.Middle(), 0);
    fit.halfWidth = box.x.HalfWidth();
    fit.halfHeight = box.y.HalfWidth();
    fit.count = CountPointsOnEllipse(rotated, fit, search.tolerance);
    return fit;
}

void FitBand(std::int32_t band, void* userData, std::int32_t /*worker*/) {
    Search& search = *static_cast<Search*>(userData);
    const std::size_t count = search.points.xs.size();
    const auto room = search.scratch.subspan(static_cast<std::size_t>(band) * 2 * count, 2 * count);
    const RotatedPoints rotated{room.first(count), room.last(count)};
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
    const std::size_t count = points.size();
    const auto seen = std::make_unique_for_overwrite<double[]>(4 * count);
    const auto numbers = [&](std::size_t index) { return std::span(seen.get() + index * count, count); };
    for (std::size_t i = 0; i < count; ++i) {
        // KEEP: 32-bit floats; radius and angle are those of the rounded difference.
        const Vector3 d = points[i] - centroid;
        numbers(0)[i] = d.x;
        numbers(1)[i] = d.y;
        numbers(2)[i] = d.Length();
        numbers(3)[i] = std::atan2(double{d.y}, double{d.x});
    }
    const auto scratch = std::make_unique_for_overwrite<float[]>(2 * count * bandCount);
    Search search{{numbers(0), numbers(1), numbers(2), numbers(3)},
                  {scratch.get(), 2 * count * bandCount},
                  tolerance,
                  widestLimit,
                  {}};
    MultiProcessor::Instance().Run(0, bandCount - 1, FitBand, &search);
    // The first of equals: rotations come in ascending order and only a greater count replaces the best.
    return *std::max_element(search.fits.begin(), search.fits.end(),
                             [](const EllipseFit& a, const EllipseFit& b) { return a.count < b.count; });
}

}  // namespace chalkpane
