#include <algorithm>
#include <memory>
#include <new>
#include <span>

#include "telestrator/line_draft.h"
#include "telestrator/telestrator.h"

namespace chalkpane {
namespace {

constexpr std::int32_t fewestLinePoints = 7;

// A short dab is a gesture. A click without motion has 2 points and is none.
bool IsUndoGesture(std::int32_t pointCount) { return pointCount == 3 || pointCount == 4; }

// Keeps the first point, every fourth from the second, and the last. Returns what is kept.
std::span<Vector3> Decimate(std::span<Vector3> points) {
    std::size_t kept = 1;
    while (LineDraft::StoredIndex(kept) < points.size() - 1) {
        points[kept] = points[LineDraft::StoredIndex(kept)];
        ++kept;
    }
    points[kept++] = points.back();
    return points.first(kept);
}

// From the point of that number on.
void DrawLine(const ShapePen& pen, std::span<const Vector3> points, std::size_t from) {
    if (from == 0) pen.Begin(points.front().x, points.front().y);
    from = std::max(from, std::size_t{1});
    for (const Vector3& point : points.subspan(from, points.size() - 1 - from)) pen.Continue(point.x, point.y);
    pen.End(points.back().x, points.back().y);
}

// The direction is the chord over the last `length` pixels of the line, not the last segment: that one is usually a
// hook from the release.
Vector3 ArrowDirection(std::span<const Vector3> points, std::int32_t length) {
    const Vector3& tip = points.back();
    std::size_t index = points.size() - 2;
    Vector3 direction = tip - points[index];
    while (direction.Length() < length && index >= 1) direction = tip - points[--index];
    direction.Normalise();
    return direction;
}

// KEEP: the width is the distance of each barb's end from the shaft, half of the head's full width.
void DrawArrowHead(const ShapePen& pen, std::span<const Vector3> points, std::int32_t length, std::int32_t width) {
    const Vector3& tip = points.back();
    const Vector3 direction = ArrowDirection(points, length);
    const Vector3 aside = direction * static_cast<float>(width);
    const Vector3 back = direction * static_cast<float>(length);
    const double baseX = double{tip.x} - back.x;
    const double baseY = double{tip.y} - back.y;
    pen.Line(tip.x, tip.y, baseX - aside.y, baseY + aside.x);
    pen.Line(tip.x, tip.y, baseX + aside.y, baseY - aside.x);
}

// The first that accepts has drawn it.
StrokeResult Recognise(const ShapeInput& input) {
    if (RecognizeEllipse(input)) return StrokeResult::Ellipse;
    if (RecognizeCircle(input)) return StrokeResult::Circle;
    if (RecognizeCross(input)) return StrokeResult::Cross;
    return StrokeResult::Vanished;
}

}  // namespace

void Telestrator::DrawSmoothedLine(const TelestratorSettings& settings) {
    const std::span<Vector3> points = Decimate(StoredStroke());
    strokePointCount = static_cast<std::int32_t>(points.size());
    const ShapePen pen(memory, shapeSurface.get(), aspect);
    // Without memory for it a long line takes longer.
    const bool isLong = points.size() >= LineDraft::fewestStored / LineDraft::decimation;
    const std::unique_ptr<SettledPixels> pixels(isLong ? new (std::nothrow) SettledPixels : nullptr);
    const PaintingAlone alone(shapeSurface.get(), pixels.get());
    LineDraft* const draft = shapeSurface ? shapeSurface->lineDraft.get() : nullptr;
    DrawLine(pen, points, draft != nullptr ? draft->Take(*shapeSurface, points, aspect) : 0);
    if (settings.arrow) DrawArrowHead(pen, points, settings.arrowLength, settings.arrowWidth);
}

ShapeInput Telestrator::RecognitionInput(const TelestratorSettings& settings) {
    const bool tooMany = strokePointCount > recognitionPointLimit;
    return {settings,
            tooMany ? std::span<const Vector3>() : StoredStroke(),
            {houghAccumulator.get(), houghAccumulator ? houghCounters : 0},
            ShapePen(memory, shapeSurface.get(), aspect)};
}

void Telestrator::FinishStroke(const TelestratorSettings& settings) noexcept {
    SizeRecognitionBuffers(settings.recogniseShapes);
    if (!recognitionBuffersReady) return;
    if (IsUndoGesture(strokePointCount)) {
        result = StrokeResult::UndoGesture;
        RestoreUndoSnapshot();
        return;
    }
    // From here on the canvas is replaced, whatever comes of the shape: a line of too few points vanishes.
    shapeCommitPending = true;
    const ShapeInput input = RecognitionInput(settings);
    result = Recognise(input);
    if (result != StrokeResult::Vanished || strokePointCount < fewestLinePoints) return;
    DrawSmoothedLine(settings);
    result = settings.arrow ? StrokeResult::Arrow : StrokeResult::Line;
}

}  // namespace chalkpane
