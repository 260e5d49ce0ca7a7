#include "telestrator/journal/ink_painter.h"

#include "chalkpane/brush/basic_brush.h"

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
    surface_.brush->SetTarget(&target);
    for (const PaintStep& step : stroke.steps) {
        UseBrush(stroke.brushes[step.brush]);
        switch (step.stage) {
            case StrokeStage::Begin:
                surface_.BeginStroke(step.at.x, step.at.y, step.pressure);
                break;
            case StrokeStage::Continue:
                surface_.ContinueStroke(step.at.x, step.at.y, step.pressure);
                break;
            case StrokeStage::End:
                surface_.EndStroke(step.at.x, step.at.y, step.pressure);
                break;
        }
    }
    surface_.brush->SetTarget(nullptr);
}

void InkPainter::UseBrush(const InkBrush& brush) {
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
