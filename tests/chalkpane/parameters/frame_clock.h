#pragma once

#include <cmath>

#include "chalkpane/parameters/animation/animation_clock.h"

namespace chalkpane {

// So many frames to a unit of time.
class FrameClock final : public AnimationClock {
public:
    explicit FrameClock(double framesPerTime = 1.0) : rate(framesPerTime) {}
    double frameToTime(std::int32_t frame) const override { return frame / rate; }
    std::int32_t timeToFrame(double time) const override {
        return static_cast<std::int32_t>(std::floor(std::fmin(std::fmax(time * rate, -1e9), 1e9) + 0.5));
    }
    std::int32_t currentFrame() const override { return current; }

    double rate;
    std::int32_t current = 0;
};

}  // namespace chalkpane
