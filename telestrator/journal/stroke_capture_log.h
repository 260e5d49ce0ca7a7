#pragma once

#include <cstddef>
#include <cstdint>

#include "telestrator/journal/ink_stroke.h"
#include "telestrator/telestrator_surface.h"

namespace chalkpane {

// Takes down one stroke while it is drawn: what the hand does, and every step that the brushes of the canvas and of the
// shape surface are given. Where memory runs out the stroke is lost to it, and says so.
class StrokeCaptureLog final : public StepListener {
public:
    // From here on the surface of that address is the canvas; any other that is heard is the shape surface.
    void Begin(const TelestratorSurface* canvas) noexcept;
    void Close() noexcept { isOpen_ = false; }
    [[nodiscard]] bool IsOpen() const { return isOpen_; }
    [[nodiscard]] bool IsLost() const { return isLost_; }

    // pressure: kept within 0.0 .. 1.0; NaN is full.
    void Hand(HandEvent event, const HandSettings& settings, const CanvasPosition& at, double pressure) noexcept;
    // A field comes: what it paints is what the stroke becomes.
    void BeforeField() noexcept { finishedFrom_ = shapeSteps_.size(); }
    // What was painted of it so far is no longer there; what it becomes will be.
    void ForgetPainted() noexcept;
    // It became something, with these settings.
    void Finish(const HandSettings& settings) noexcept;
    void OnStep(const TelestratorSurface& surface, StrokeStage stage, double x, double y,
                double pressure) noexcept override;

    // True: the canvas and the shape surface were painted alike.
    [[nodiscard]] bool IsPaintedAlike() const;
    // The stroke as the canvas, or the shape surface, has it. Throws std::bad_alloc.
    [[nodiscard]] SharedStroke OnCanvas() const;
    [[nodiscard]] SharedStroke OnShapes(StrokeForm form) const;

    std::int64_t field = 0;  // the one that is to come, and shows what happens now

private:
    template <typename Action>
    void Note(const Action& action) noexcept;
    std::uint32_t SettingsIndex(const HandSettings& settings);
    std::uint32_t BrushIndex(const TelestratorSurface& surface);

    const TelestratorSurface* canvas_ = nullptr;  // not owned
    bool isOpen_ = false;
    bool isLost_ = false;
    InkStroke stroke_;  // its steps are those on the canvas
    std::vector<PaintStep> shapeSteps_;
    std::size_t finishedFrom_ = 0;
};

}  // namespace chalkpane
