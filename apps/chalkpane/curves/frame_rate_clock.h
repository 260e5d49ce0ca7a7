#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "chalkpane/parameters/animation/animation_clock.h"

namespace chalkpane::app {

// A clock of so many frames a second that stands where it is put: times are seconds, frame 0 is at 0.
class FrameRateClock final : public AnimationClock {
public:
    static constexpr double usualRate = 25.0;

    // framesPerSecond: finite and above 0
    explicit FrameRateClock(double framesPerSecond = usualRate) : m_rate(framesPerSecond) {}

    double frameToTime(std::int32_t frame) const override { return frame / m_rate; }
    // The nearest frame. Times are clamped to some 400 days, far from where counting frames would end.
    std::int32_t timeToFrame(double time) const override {
        constexpr double farthest = 1 << 30;
        const double frame = time * m_rate;
        return std::isnan(frame) ? 0 : static_cast<std::int32_t>(std::round(std::clamp(frame, -farthest, farthest)));
    }
    std::int32_t currentFrame() const override { return m_frame; }

    void StandAt(std::int32_t frame) { m_frame = frame; }

private:
    double m_rate;
    std::int32_t m_frame = 0;
};

}  // namespace chalkpane::app
