#pragma once

#include "chalkpane/parameters/animation/animated_typed.h"

namespace chalkpane {

// What to show of two files at a frame: `nameA` by `weight` and `nameB` by the rest. On a key (or beyond the ends) the
// key's name by 1, with the key's in and out handles as the two times.
struct FileNameBlend {
    FileName nameA;
    FileName nameB;
    double weight = 1.0;
    double timeA = 0.0;
    double timeB = 0.0;
};

// The name of a file over time. Names can only cross-fade, so an evaluation yields two and a weight.
class AnimatedFileName final : public AnimatedTyped<FileName> {
public:
    AnimatedFileName(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedTyped(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    FileNameBlend blendAt(std::int32_t frame) const;
    // The first name alone.
    void evaluate(std::int32_t frame, FileName& out) const override;

    void setFileName(const FileName& name) { addKey(currentFrame(), name); }
    void getFileName(FileName& out) const { evaluate(currentFrame(), out); }
};

}  // namespace chalkpane
