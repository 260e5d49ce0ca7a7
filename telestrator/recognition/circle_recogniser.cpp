#include <cmath>
#include <numbers>

#include "telestrator/recognition/circle_search.h"
#include "telestrator/recognition/shape_recognition.h"

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
void DrawCircle(const ShapePen& pen, const Vector3& centre, double radius) {
    constexpr double cornerAngle = 0.31415927;
    const double right = centre.x + radius;
    const double middle = centre.y * pen.Aspect();
    pen.Draw(StrokeStage::Begin, right, middle);
    for (auto t = static_cast<float>(cornerAngle); t < 2 * std::numbers::pi; t = static_cast<float>(t + cornerAngle)) {
        pen.Draw(StrokeStage::Continue, std::cos(double{t}) * radius + centre.x,
                 std::sin(double{t}) * radius * pen.Aspect() + middle);
    }
    pen.Draw(StrokeStage::End, right, middle);
}

}  // namespace

bool RecognizeCircle(const ShapeInput& input) {
    constexpr std::size_t fewestPoints = 4;
    const std::span<const Vector3> points = input.points;
    if (!input.settings.recogniseCircle || points.size() < fewestPoints) return false;
    const auto fewestOnCircle = static_cast<std::int32_t>(points.size()) / 2;
    if (!MayLieOnACircle(points, input.settings.brushWidth, fewestOnCircle)) return false;
    const CircleVote best = SearchCircle(points, input.counters);
    const Vector3 centre = best.Centre();
    if (!SurroundsOnAllSides(points, centre)) return false;
    const std::int32_t count = CountPointsOnCircle(points, centre, best.radius, input.settings.brushWidth);
    if (count < fewestOnCircle) return false;
    DrawCircle(input.pen, centre, best.radius);
    return true;
}

}  // namespace chalkpane
