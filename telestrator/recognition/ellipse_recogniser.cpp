#include <algorithm>

#include "telestrator/recognition/ellipse_drawing.h"
#include "telestrator/recognition/ellipse_fit.h"
#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

constexpr double widestHalfAxis = 65536;
constexpr double widestLimit = 1024;  // the canvas's height

bool IsAccepted(const EllipseFit& fit, std::span<const Vector3> points) {
    if (fit.count < static_cast<std::int32_t>(points.size()) / 4) return false;
    if (!(fit.halfWidth < widestHalfAxis && fit.halfHeight < widestHalfAxis)) return false;
    // An open arc is no ellipse.
    const double gap = (points.back() - points.front()).Length();
    return !(gap > std::min(fit.halfWidth, fit.halfHeight));
}

}  // namespace

bool RecognizeEllipse(const ShapeInput& input) {
    const std::span<const Vector3> points = input.points;
    if (!input.settings.recogniseEllipse || points.empty()) return false;
    const Vector3 centroid = Centroid(points);
    if (!SurroundsOnAllSides(points, centroid)) return false;
    EllipseFit fit;
    const bool fitted =
        input.pen.Memory().Run([&] { fit = FitEllipse(points, centroid, input.settings.brushWidth, widestLimit); });
    if (!fitted || !IsAccepted(fit, points)) return false;
    DrawEllipse(input.pen, fit, centroid, input.settings.brushWidth);
    return true;
}

}  // namespace chalkpane
