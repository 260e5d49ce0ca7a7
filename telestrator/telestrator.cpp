#include "telestrator/telestrator.h"

#include <cstring>

namespace chalkpane {
namespace {

std::unique_ptr<TelestratorSurface> NewSurface(std::int32_t width, std::int32_t height) {
    auto surface = std::make_unique<TelestratorSurface>();
    surface->CreateCanvasImage(width, height);
    return surface;
}

}  // namespace

Telestrator::~Telestrator() {
    canvasSurface.reset();
    shapeSurface.reset();
    strokePoints.reset();
    currentSnapshot.reset();
    houghAccumulator.reset();
    undoRing.reset();
}

void Telestrator::MakeSurfaces(const TelestratorSettings& settings) {
    canvasSurface = NewSurface(canvasWidth, canvasHeight);
    shapeSurface = NewSurface(canvasWidth, canvasHeight);
    FillUndoRing(settings.maxUndos);
}

void Telestrator::DropCanvas() noexcept {
    canvasSurface.reset();
    shapeSurface.reset();
    undoRing.reset();
    currentSnapshot.reset();
}

bool Telestrator::Field(const TelestratorSettings& settings) noexcept {
    if (HasCanvas()) {
        if (!AdjustUndoRing(settings)) return false;
    } else {
        const bool made = memory.Run([&] {
            MakeSurfaces(settings);
            ConfigureBrushes(settings, nullptr);
        });
        if (!made) {
            DropCanvas();
            return false;
        }
        SizeRecognitionBuffers(settings.recogniseShapes);
        fullUploadPending = true;
    }
    FollowSettings(settings);
    CountDown(settings);
    return true;
}

void Telestrator::CountDown(const TelestratorSettings& settings) noexcept {
    constexpr std::int32_t rest = -2;
    if (shapeCountdown <= rest) return;
    if (--shapeCountdown == 0)
        FinishStroke(settings);
    else if (shapeCountdown > 0)
        FollowWithDraft(settings);
}

bool Telestrator::Commit() noexcept {
    if (!HasCanvas() || !shapeCommitPending) return false;
    const CanvasPixels pixels = canvasSurface->GetPixels();
    std::memcpy(pixels.bytes, shapeSurface->GetPixels().bytes, pixels.byteSize);
    shapeCommitPending = false;
    fullUploadPending = true;
    PushUndoSnapshot();
    return true;
}

Telestrator::Change Telestrator::TakeChange() noexcept {
    Rect canvas;
    canvas.SetSize(canvasWidth, canvasHeight);
    if (std::exchange(fullUploadPending, false)) return {canvas, true};
    return {dirtyRect.Intersection(canvas), false};
}

}  // namespace chalkpane
