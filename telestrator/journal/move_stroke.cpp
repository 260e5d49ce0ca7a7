#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "chalkpane/brush/basic_brush.h"
#include "telestrator/journal/ink_stroke.h"
#include "telestrator/journal/stroke_capture_log.h"
#include "telestrator/telestrator.h"

namespace chalkpane {
namespace {

// The hand's samples once more, on a telestrator that paints nothing, up to where they are finished.
std::unique_ptr<Telestrator> HandOnly(const InkStroke& stroke) {
    auto telestrator = std::make_unique<Telestrator>();
    TelestratorSettings withoutRing;
    withoutRing.maxUndos = 0;
    telestrator->MakeSurfaces(withoutRing);
    telestrator->canvasSurface->brush->SetTarget(nullptr);
    telestrator->shapeSurface->brush->SetTarget(nullptr);
    for (const HandSample& sample : stroke.hand) {
        const auto& [settings, aspect] = stroke.settings[sample.settings];
        telestrator->aspect = aspect;
        switch (sample.event) {
            case HandEvent::Press:
                telestrator->Press(settings, sample.at);
                break;
            case HandEvent::Move:
                telestrator->Move(settings, sample.at);
                break;
            case HandEvent::Release:
                telestrator->Release(settings, sample.at);
                break;
            case HandEvent::Lift: {
                constexpr double nowhere = std::numeric_limits<double>::quiet_NaN();
                telestrator->Release(settings, {nowhere, nowhere});
                break;
            }
        }
    }
    return telestrator;
}

// What the hand's samples become. It is painted with the brush that the stroke was finished with.
void FinishAgain(InkStroke& stroke) {
    const std::uint32_t brush = stroke.steps[stroke.finishedFrom].brush;
    const auto telestrator = HandOnly(stroke);
    StrokeCaptureLog log;
    log.Begin(nullptr);
    telestrator->shapeSurface->listener = &log;
    telestrator->aspect = stroke.settings.back().aspect;
    telestrator->FinishStroke(stroke.settings.back().settings);
    telestrator->shapeSurface->listener = nullptr;
    stroke.steps.resize(stroke.finishedFrom);
    const SharedStroke finished = log.OnShapes(FormOf(telestrator->result));
    if (log.IsLost() || telestrator->memory.TakeFailures() > 0) throw std::bad_alloc();
    for (PaintStep step : finished->steps) {
        step.brush = brush;
        stroke.steps.push_back(step);
    }
    stroke.form = finished->form;
}

}  // namespace

bool IsPaintedAsHand(const InkStroke& stroke) {
    const auto isPainted = [](const HandSample& sample) { return sample.event != HandEvent::Lift; };
    const auto painted = std::count_if(stroke.hand.begin(), stroke.hand.end(), isPainted);
    return stroke.finishedFrom == 0 || stroke.finishedFrom == static_cast<std::size_t>(painted);
}

InkStroke Redrawn(const InkStroke& stroke, const std::vector<CanvasPosition>& hand) {
    InkStroke redrawn = stroke;
    std::size_t step = 0;
    for (std::size_t i = 0; i < redrawn.hand.size(); ++i) {
        redrawn.hand[i].at = hand[i];
        const bool isStep = redrawn.hand[i].event != HandEvent::Lift && step < stroke.finishedFrom;
        if (isStep) redrawn.steps[step++].at = hand[i];
    }
    if (redrawn.finishedFrom < redrawn.steps.size()) FinishAgain(redrawn);
    return redrawn;
}

InkStroke Moved(const InkStroke& stroke, double right, double down) {
    InkStroke moved = stroke;
    const auto move = [&](CanvasPosition& at) { at = {at.x + right, at.y + down}; };
    for (HandSample& sample : moved.hand) move(sample.at);
    for (std::size_t i = 0; i < moved.finishedFrom; ++i) move(moved.steps[i].at);
    if (moved.finishedFrom < moved.steps.size()) FinishAgain(moved);
    return moved;
}

}  // namespace chalkpane
