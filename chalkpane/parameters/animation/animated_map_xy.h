#pragma once

#include "chalkpane/parameters/animation/animated_numbers.h"

namespace chalkpane {

// A pair that moves along a smooth path through its keys. The path's handles are not stored: they follow from the
// neighbours of each span.
class AnimatedMapXY final : public AnimatedDoubleXY {
public:
    using AnimatedDoubleXY::AnimatedDoubleXY;
    ValuePointer clone() const override;
    void evaluate(std::int32_t frame, DoublePair& out) const override;

    struct Controls {
        DoublePair first;
        DoublePair second;
    };
    // Of the span from key `index` to the next.
    Controls controls(std::int32_t index) const;
    // How far along the span the frame is, 0 .. 1. With a companion each frame counts by the companion's value there.
    double fraction(std::int32_t index, std::int32_t frame) const;

    // The companion: where its zoom is large the path is traversed faster. Not owned; null for none.
    void setZoomCurve(AnimatedValue* curve);
    bool hasConstantSpeed() const { return constantSpeed; }
    void setConstantSpeed(bool constant) { constantSpeed = constant; }

private:
    double weightAt(std::int32_t frame) const;

    AnimatedValue* zoomCurve = nullptr;
    AnimatedLogDouble* logZoomCurve = nullptr;  // the same, when it is of that class
    bool constantSpeed = false;                 // stored for the editor, read by nothing here
};

}  // namespace chalkpane
