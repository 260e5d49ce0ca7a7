#include "telestrator/journal/stroke_capture_log.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace chalkpane {
namespace {

bool AreEqual(const PaintStep& left, const PaintStep& right) {
    return left.stage == right.stage && left.at.x == right.at.x && left.at.y == right.at.y &&
           left.pressure == right.pressure && left.brush == right.brush;
}

}  // namespace

void StrokeCaptureLog::Begin(const TelestratorSurface* canvas) noexcept {
    canvas_ = canvas;
    isOpen_ = true;
    isLost_ = false;
    stroke_ = {};
    shapeSteps_.clear();
    finishedFrom_ = 0;
}

template <typename Action>
void StrokeCaptureLog::Note(const Action& action) noexcept {
    if (!isOpen_ || isLost_) return;
    try {
        action();
    } catch (const std::bad_alloc&) {
        isLost_ = true;
    }
}

std::uint32_t StrokeCaptureLog::SettingsIndex(const HandSettings& settings) {
    if (stroke_.settings.empty() || !(stroke_.settings.back() == settings)) stroke_.settings.push_back(settings);
    return static_cast<std::uint32_t>(stroke_.settings.size() - 1);
}

std::uint32_t StrokeCaptureLog::BrushIndex(const TelestratorSurface& surface) {
    const InkBrush brush{surface.sourceMode == TelestratorSurface::eraseMode, surface.width, surface.colour};
    const auto found = std::find(stroke_.brushes.begin(), stroke_.brushes.end(), brush);
    const auto index = static_cast<std::uint32_t>(found - stroke_.brushes.begin());
    if (found == stroke_.brushes.end()) stroke_.brushes.push_back(brush);
    return index;
}

void StrokeCaptureLog::Hand(HandEvent event, const HandSettings& settings, const CanvasPosition& at,
                            double pressure) noexcept {
    constexpr double fullPressure = 1.0;
    const double kept = std::isnan(pressure) ? fullPressure : std::clamp(pressure, 0.0, fullPressure);
    Note([&] { stroke_.hand.push_back({event, field, at, kept, SettingsIndex(settings)}); });
}

void StrokeCaptureLog::ForgetPainted() noexcept {
    stroke_.steps.clear();
    shapeSteps_.clear();
    finishedFrom_ = 0;
}

void StrokeCaptureLog::Finish(const HandSettings& settings) noexcept {
    Note([&] { SettingsIndex(settings); });
}

void StrokeCaptureLog::OnStep(const TelestratorSurface& surface, StrokeStage stage, double x, double y,
                              double pressure) noexcept {
    Note([&] {
        std::vector<PaintStep>& steps = &surface == canvas_ ? stroke_.steps : shapeSteps_;
        steps.push_back({stage, {x, y}, pressure, BrushIndex(surface)});
    });
}

bool StrokeCaptureLog::IsPaintedAlike() const {
    return std::equal(stroke_.steps.begin(), stroke_.steps.end(), shapeSteps_.begin(), shapeSteps_.end(), AreEqual);
}

SharedStroke StrokeCaptureLog::OnCanvas() const {
    auto stroke = std::make_shared<InkStroke>(stroke_);
    stroke->finishedFrom = stroke->steps.size();
    return stroke;
}

SharedStroke StrokeCaptureLog::OnShapes(StrokeForm form) const {
    auto stroke = std::make_shared<InkStroke>(stroke_);
    stroke->form = form;
    stroke->steps = shapeSteps_;
    stroke->finishedFrom = form == StrokeForm::Raw ? shapeSteps_.size() : finishedFrom_;
    return stroke;
}

}  // namespace chalkpane
