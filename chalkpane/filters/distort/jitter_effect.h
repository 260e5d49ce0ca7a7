#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Random Jitter": rotates, zooms and moves the whole picture by random parts of the settings, anew at each run.
// Between `BeginStep` and `EndStep` all runs are alike, so that a picture and its mask stay together. A region limits
// nothing.
class JitterEffect final : public FilterClass<JitterEffect, Filter> {
public:
    static constexpr FilterIdentity identity{"Random Jitter", "Random Jitter", "Distort"};
    static constexpr auto Parameters() {
        using Self = JitterEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label          unique name       default range     field
            {0, "Max Angle", "Angle", 0.0, {0, 25}, &Self::m_angle, angle0To360},
            {1, "Max Zoom", "Zoom", 10.0, {0.1, 200.1}, &Self::m_zoom, percent},
            {2, "Max Move X", "Move X", 0.0, {-50, 50}, &Self::m_moveX, percent},
            {3, "Max Move Y", "Move Y", 0.0, {-50, 50}, &Self::m_moveY, percent},
            {4, "Seed From Time", "Seed From Time", false, {}, &Self::m_seedFromTime},
        });
    }

    JitterEffect() = default;
    // A copy starts its sequence anew.
    JitterEffect(const JitterEffect& other);

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return true; }
    [[nodiscard]] bool IsActive() const override;
    [[nodiscard]] bool NeedsStepHooks() const override { return true; }
    void BeginStep() override;
    void EndStep() override;

private:
    float m_angle = 0.0F;  // degrees to either side
    double m_zoom = 10.0;  // per cent to either side
    double m_moveX = 0.0;  // pixels to either side
    double m_moveY = 0.0;
    bool m_seedFromTime = false;  // from the frame that the filter is attached at

    std::uint32_t m_seed = 0;      // of the next run
    std::uint32_t m_stepSeed = 0;  // of the first run after the step
    bool m_inStep = false;
};

}  // namespace chalkpane
