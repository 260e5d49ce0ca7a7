#include <cmath>
#include <numbers>

#include "module/circle_search.h"
#include "module/recogniser_points.h"
#include "module/shape_recognition.h"
#include "module/surface_pen.h"

namespace chalkpane {
namespace {

std::int32_t CountPointsOnCircle(std::span<const Vector3> points, const Vector3& centre, double radius,
                                 double tolerance) {
    std::int32_t count = 0;
    for (const Vector3& point : points) {
        if (std::abs((centre - point).Length() - radius) < tolerance) ++count;
    }
    return count;
}

// A polygon of some twenty corners; the brush rounds them off.
void DrawCircle(TelestratorSurface* surface, double aspect, const Vector3& centre, double radius) {
    constexpr double cornerAngle = 0.31415927;
    const double right = centre.x + radius;
    const double middle = centre.y * aspect;
    Paint(surface, StrokeStage::Begin, right, middle);
    for (auto t = static_cast<float>(cornerAngle); t < 2 * std::numbers::pi; t = static_cast<float>(t + cornerAngle)) {
        Paint(surface, StrokeStage::Continue, std::cos(double{t}) * radius + centre.x,
              std::sin(double{t}) * radius * aspect + middle);
    }
    Paint(surface, StrokeStage::End, right, middle);
}

}  // namespace

bool RecognizeCircle(PluginInstance& instance) {
    constexpr std::size_t fewestPoints = 4;
    const std::span<const Vector3> points = PointsToRecognise(instance, instance.RecoCircle);
    if (points.size() < fewestPoints) return false;
    const CircleVote best = SearchCircle(points, {instance.houghAccumulator.get(), houghCounters});
    const Vector3 centre = best.Centre();
    if (!SurroundsOnAllSides(points, centre)) return false;
    const std::int32_t count = CountPointsOnCircle(points, centre, best.radius, instance.BrushWidth);
    if (count < static_cast<std::int32_t>(points.size()) / 2) return false;
    DrawCircle(instance.shapeSurface.get(), instance.aspect, centre, best.radius);
    return true;
}

}  // namespace chalkpane
