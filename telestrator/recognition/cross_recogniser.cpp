#include <algorithm>
#include <optional>

#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

// Early segments against late ones, latest first: that is what a cross of two strokes looks like in the joined points.
// KEEP: a closed loop whose ends cross passes, too.
std::optional<Vector3> FindSelfCrossing(std::span<const Vector3> points) {
    Vector3 crossing;
    for (std::size_t i = 0; i < points.size() / 2; ++i) {
        for (std::size_t j = points.size() - 2; j >= i + 3; --j) {
            if (SegmentsIntersect(points[i], points[i + 1], points[j], points[j + 1], crossing)) return crossing;
        }
    }
    return std::nullopt;
}

double GreatestDistance(std::span<const Vector3> points, const Vector3& from) {
    double greatest = 0;
    for (const Vector3& point : points) greatest = std::max(greatest, (from - point).Length());
    return greatest;
}

}  // namespace

bool RecognizeCross(const ShapeInput& input) {
    const std::span<const Vector3> points = input.points;
    if (!input.settings.recogniseCross || points.size() < 2) return false;
    const std::optional<Vector3> crossing = FindSelfCrossing(points);
    if (!crossing) return false;
    const double size =
        input.settings.crossDiameter > 0 ? input.settings.crossDiameter : GreatestDistance(points, *crossing);
    const double half = size / 2;
    const double x = crossing->x;
    const double y = crossing->y;
    // Always upright, whatever the angle of the drawn strokes.
    const ShapePen& pen = input.pen;
    pen.Line(x - half, y - half, x + half, y + half);
    pen.Line(x - half, y + half, x + half, y - half);
    return true;
}

}  // namespace chalkpane
