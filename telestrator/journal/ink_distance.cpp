#include "telestrator/journal/ink_distance.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "chalkpane/brush/spline_iterator.h"

namespace chalkpane {
namespace {

double DistanceToSegment(const CanvasPosition& at, const StrokePoint& from, const StrokePoint& to) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double squaredLength = dx * dx + dy * dy;
    const double along = (at.x - from.x) * dx + (at.y - from.y) * dy;
    const double part = squaredLength > 0 ? std::clamp(along / squaredLength, 0.0, 1.0) : 0.0;
    return std::hypot(at.x - from.x - part * dx, at.y - from.y - part * dy);
}

// The newest stretch of the curve is taken as so many straight lines.
double DistanceToCurve(const CanvasPosition& at, const SplineIterator& curve) {
    constexpr std::int32_t stride = 100;
    double least = std::numeric_limits<double>::infinity();
    StrokePoint from = curve.PointAt(0);
    for (std::int32_t step = stride; step < SplineIterator::steps; step += stride) {
        const StrokePoint to = curve.PointAt(step);
        least = std::min(least, DistanceToSegment(at, from, to));
        from = to;
    }
    return least;
}

}  // namespace

double InkDistance(const InkStroke& stroke, const CanvasPosition& at) {
    double least = std::numeric_limits<double>::infinity();
    SplineIterator curve;
    for (const PaintStep& step : stroke.steps) {
        const StrokePoint sample{step.at.x, step.at.y, step.pressure};
        if (step.stage == StrokeStage::Begin) curve.Fill(sample);
        const int samples = step.stage == StrokeStage::End ? 4 : 1;
        for (int i = 0; i < samples; ++i) {
            if (step.stage != StrokeStage::Begin) curve.Push(sample);
            const InkBrush& brush = stroke.brushes[step.brush];
            if (!brush.erases) least = std::min(least, std::max(0.0, DistanceToCurve(at, curve) - brush.radius));
        }
    }
    return least;
}

}  // namespace chalkpane
