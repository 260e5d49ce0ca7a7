#pragma once

#include <cmath>

#include "chalkpane/base/random.h"
#include "chalkpane/filters/colour/hue_rows.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Colour Jitter": rotates all hues by one random part of the setting, drawn anew at each run.
class ColourJitterFilter final : public RowFilter<ColourJitterFilter> {
public:
    static constexpr FilterIdentity identity{"ColourJitter", "Colour Jitter", "Color Correctors"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<ColourJitterFilter>>({
            {0, "Hue Rotation", "Hue Rotation", 0.0, {-100, 100}, &ColourJitterFilter::m_hue, angle360},
        });
    }

    ColourJitterFilter() = default;
    // The drawn rotation is not copied: a copy starts like a fresh object.
    ColourJitterFilter(const ColourJitterFilter& other) : RowFilter(other), m_hue(other.m_hue) {}

    // KEEP: the rotation of the run before is tested, not the setting; once a rotation of 0 was drawn the filter stays
    // inactive. The one draw of a run comes before it is known whether the region meets the source: one that misses
    // draws too.
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override {
        if (std::fabs(m_turn) < 1e-05F) return ApplyAsCopy(source, result);
        m_turn = (m_hue * (static_cast<float>(Random()) / 32767.0F)) / 360.0F;
        RowFilter::Apply(source, result, fast, region, expand);
    }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        TurnHues(pixels, m_turn, nullptr);
    }

private:
    float m_hue = 0.0F;   // degrees
    float m_turn = 1.0F;  // of the last run; a fresh object holds a whole turn, so that its first run draws
};

}  // namespace chalkpane
