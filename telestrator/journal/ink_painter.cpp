#include "telestrator/journal/ink_painter.h"

#include "chalkpane/brush/basic_brush.h"
#include "telestrator/telestrator.h"

namespace chalkpane {
namespace {

// Beside its target a brush finds the places of dabs exactly, but no longer than for two million steps of its curve. A
// sample takes at most 1001 of them, the last of a stroke four times as many. What could take more is painted whole.
constexpr std::size_t longestCut = 1900;

std::size_t CurvesOf(const InkStroke& stroke) {
    std::size_t curves = 0;
    for (const PaintStep& step : stroke.steps) curves += step.stage == StrokeStage::End ? 4 : 1;
    return curves;
}

}  // namespace

void InkPainter::Paint(const InkStroke& stroke, Image& canvas, const Rect& region) {
    const Rect area = region.Intersection(canvas);
    if (!area.IsValid()) return;
    if (area == canvas.Bounds()) {
        Run(stroke, canvas);
    } else if (CurvesOf(stroke) <= longestCut) {
        Run(stroke, *canvas.Convert(area, Depth::Eight));  // shares the canvas's pixels
    } else {
        if (!scratch_)
            scratch_ = std::make_unique<Image>(Image::Colour(canvas, Depth::Eight, AlphaForm::Premultiplied));
        scratch_->CopyRegion(canvas, area);
        Run(stroke, *scratch_);
        canvas.CopyRegion(*scratch_, area);
    }
}

void InkPainter::Run(const InkStroke& stroke, Image& target) {
    pen_.SetTarget(&target);
    for (const PaintStep& step : stroke.steps)
        pen_.Paint(stroke.brushes[step.brush], step.stage, step.at, step.pressure);
    pen_.SetTarget(nullptr);
}

Image NewInkCanvas() { return Image::Colour(canvasSize, canvasSize, Depth::Eight, AlphaForm::Premultiplied); }

void InkPen::SetTarget(Image* target) { surface_.brush->SetTarget(target); }

Rect InkPen::Paint(const InkBrush& brush, StrokeStage stage, const CanvasPosition& at, double pressure) {
    Use(brush);
    switch (stage) {
        case StrokeStage::Begin:
            return surface_.BeginStroke(at.x, at.y, pressure);
        case StrokeStage::Continue:
            return surface_.ContinueStroke(at.x, at.y, pressure);
        case StrokeStage::End:
            return surface_.EndStroke(at.x, at.y, pressure);
    }
    return {};
}

void InkPen::Use(const InkBrush& brush) {
    if (isSet_ && brush == current_) return;
    isSet_ = false;
    surface_.width = brush.radius;
    surface_.colour = brush.colour;
    surface_.sourceMode = brush.erases ? TelestratorSurface::eraseMode : TelestratorSurface::colourMode;
    surface_.ApplyBrushSettings();
    surface_.ApplyBrushSettings();  // a changed source takes hold one pass late
    current_ = brush;
    isSet_ = true;
}

}  // namespace chalkpane
