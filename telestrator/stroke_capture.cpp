#include <algorithm>
#include <new>

#include "telestrator/line_draft.h"
#include "telestrator/telestrator.h"

namespace chalkpane {

// The canvas takes every stroke. The shape surface takes those that are final as drawn: freehand lines that nothing
// will replace, and the eraser's.
void Telestrator::PaintStroke(const TelestratorSettings& settings, StrokeStage stage,
                              const CanvasPosition& position) noexcept {
    dirtyRect = Paint(memory, canvasSurface.get(), stage, position.x, position.y);
    if (!settings.recogniseShapes || settings.brushType == BrushType::Eraser) {
        Paint(memory, shapeSurface.get(), stage, position.x, position.y);
    }
}

Rect Telestrator::Press(const TelestratorSettings& settings, const CanvasPosition& position) noexcept {
    if (!HasCanvas()) return {};
    PaintStroke(settings, StrokeStage::Begin, position);
    // While the countdown runs the earlier points stay: two strokes in quick succession form one shape, a cross.
    if (shapeCountdown < 0) strokePointCount = 0;
    shapeCountdown = -1;
    AddStrokePoint(settings, position, true);
    return dirtyRect;
}

Rect Telestrator::Move(const TelestratorSettings& settings, const CanvasPosition& position) noexcept {
    if (!HasCanvas()) return {};
    PaintStroke(settings, StrokeStage::Continue, position);
    AddStrokePoint(settings, position, false);
    return dirtyRect;
}

Rect Telestrator::Release(const TelestratorSettings& settings, const CanvasPosition& position) noexcept {
    if (!HasCanvas()) return {};
    PaintStroke(settings, StrokeStage::End, position);
    AddStrokePoint(settings, position, true);
    if (settings.recogniseShapes) {
        shapeCountdown = settings.shapeDelay;
    } else {
        PushUndoSnapshot();
    }
    return dirtyRect;
}

void Telestrator::Append(const Vector3& point) {
    if (strokePointCount >= canvasWidth * canvasHeight) return;
    strokePoints[static_cast<std::size_t>(strokePointCount)] = point;
    ++strokePointCount;
}

// The points between the stored end and `point`, which comes last and exactly.
void Telestrator::AppendResampled(const Vector3& point, std::int32_t pointSpacing) {
    Vector3 step = point - lastStrokePoint;
    const double length = step.Length();
    if (length < pointSpacing) return;
    const std::int32_t steps = TruncateToInt(length) / pointSpacing;
    step /= static_cast<float>(steps);
    for (std::int32_t i = 1; i < steps && strokePointCount < canvasWidth * canvasHeight; ++i) {
        lastStrokePoint += step;
        Append(lastStrokePoint);
    }
    Append(point);
    lastStrokePoint = point;
}

void Telestrator::AddStrokePoint(const TelestratorSettings& settings, const CanvasPosition& position,
                                 bool force) noexcept {
    if (!settings.recogniseShapes) return;
    SizeRecognitionBuffers(true);
    if (!recognitionBuffersReady) return;
    const Vector3 point(position.x, position.y / aspect, 0);
    if (!IsPaintable(position.x, position.y) || !IsFinite(point)) return;
    if (force) {
        Append(point);
        lastStrokePoint = point;
    } else if (strokePointCount > 0) {
        AppendResampled(point, std::max(settings.brushWidth, 1));
    }
    FollowWithDraft(settings);
}

// An eraser changes the shape surface with each event, so nothing can be drawn on it beforehand. Without memory for a
// draft nothing is lost but time.
void Telestrator::FollowWithDraft(const TelestratorSettings& settings) noexcept {
    const std::span<const Vector3> stored = StoredStroke();
    if (settings.brushType == BrushType::Eraser || stored.size() < LineDraft::fewestStored) return ForgetDraft();
    if (!shapeSurface) return;
    auto& draft = shapeSurface->lineDraft;
    if (!draft) draft.reset(new (std::nothrow) LineDraft);
    if (draft) draft->Follow(*shapeSurface, stored, aspect);
}

void Telestrator::ForgetDraft() noexcept {
    if (shapeSurface && shapeSurface->lineDraft) shapeSurface->lineDraft->Forget();
}

std::span<Vector3> Telestrator::StoredStroke() const {
    if (!recognitionBuffersReady) return {};
    return {strokePoints.get(), static_cast<std::size_t>(strokePointCount)};
}

void Telestrator::SizeRecognitionBuffers(bool wanted) noexcept {
    if (!wanted) {
        if (shapeSurface) shapeSurface->lineDraft.reset();
        strokePoints.reset();
        houghAccumulator.reset();
        recognitionBuffersReady = false;
        return;
    }
    if (recognitionBuffersReady) return;
    recognitionBuffersReady = memory.Run([&] {
        const std::int32_t room = canvasWidth * canvasHeight;
        strokePoints = std::make_unique<Vector3[]>(static_cast<std::size_t>(room));
        // Not zeroed here: each search clears what it counts in.
        houghAccumulator = std::make_unique_for_overwrite<std::uint32_t[]>(houghCounters);
    });
    if (!recognitionBuffersReady) strokePoints.reset();
}

}  // namespace chalkpane
