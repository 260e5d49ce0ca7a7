#include "module/stroke_points.h"

#include <algorithm>

#include "module/shape_recognition.h"
#include "module/surface_pen.h"

namespace chalkpane {
namespace {

std::int32_t Room(const PluginInstance& instance) { return instance.canvasWidth * instance.canvasHeight; }

void Append(PluginInstance& instance, const Vector3& point) {
    if (instance.strokePointCount >= Room(instance)) return;
    instance.strokePoints[static_cast<std::size_t>(instance.strokePointCount)] = point;
    ++instance.strokePointCount;
}

// The points between the stored end and `point`, which comes last and exactly.
void AppendResampled(PluginInstance& instance, const Vector3& point) {
    const std::int32_t pointSpacing = std::max(instance.BrushWidth, 1);
    Vector3 step = point - instance.lastStrokePoint;
    const double length = step.Length();
    if (length < pointSpacing) return;
    const std::int32_t steps = TruncateToInt(length) / pointSpacing;
    step /= static_cast<float>(steps);
    for (std::int32_t i = 1; i < steps && instance.strokePointCount < Room(instance); ++i) {
        instance.lastStrokePoint += step;
        Append(instance, instance.lastStrokePoint);
    }
    Append(instance, point);
    instance.lastStrokePoint = point;
}

}  // namespace

void AddStrokePoint(PluginInstance& instance, double canvasX, double canvasY, bool force) noexcept {
    if (instance.RecoShapes == 0) return;
    if (!instance.recognitionBuffersReady) SizeRecognitionBuffers(instance, true);
    if (!instance.recognitionBuffersReady) return;
    const Vector3 point(canvasX, canvasY / instance.aspect, 0);
    if (!IsPaintable(canvasX, canvasY) || !IsFinite(point)) return;
    if (force) {
        Append(instance, point);
        instance.lastStrokePoint = point;
    } else if (instance.strokePointCount > 0) {
        AppendResampled(instance, point);
    }
}

std::span<Vector3> StoredStroke(const PluginInstance& instance) {
    if (!instance.recognitionBuffersReady) return {};
    return {instance.strokePoints.get(), static_cast<std::size_t>(instance.strokePointCount)};
}

}  // namespace chalkpane
