#pragma once

#include <cstdint>

namespace chalkpane {

// Turns the stored time of a key into a whole frame and back; supplied by the owner of animated values.
class AnimationClock {
public:
    virtual ~AnimationClock() = default;
    virtual double frameToTime(std::int32_t frame) const = 0;
    virtual std::int32_t timeToFrame(double time) const = 0;
    // The frame that a plain set or get of an animated value means.
    virtual std::int32_t currentFrame() const = 0;
};

}  // namespace chalkpane
