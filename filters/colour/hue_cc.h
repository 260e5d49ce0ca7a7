#pragma once

#include <vector>

#include "filters/colour/hue_rows.h"
#include "filters/row_filter.h"

namespace chalkpane {

// "Hue Rotate": turns all hues, and those of shadows, midtones and highlights besides.
class HueCC final : public RowFilter<HueCC> {
public:
    static constexpr FilterIdentity identity{"HueRotate", "Hue Rotate", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = HueCC;
        return std::to_array<ParameterRow<Self>>({
            {0, "Hue Rotation", "Hue Rotation", 0.0, {-100, 100}, &Self::m_hue, angle360},
            {1, "Shadow Hue Rotation", "Shadow Hue Rotation", 0.0, {-100, 100}, &Self::m_shadow, angle360},
            {2, "Midtone Hue Rotation", "Midtone Hue Rotation", 0.0, {-100, 100}, &Self::m_midtone, angle360},
            {3, "Highlight Hue Rotation", "Highlight Hue Rotation", 0.0, {-100, 100}, &Self::m_highlight, angle360},
        });
    }

    [[nodiscard]] bool IsIdentity(const Image& source) const;
    void BeginRun(const Image& source) override;
    void EndRun() override { m_ranges = {}; }

    // KEEP: the factor 0.01 is the main setting's alone. A full main setting is one degree, a full range setting a
    // hundred degrees at the peak of its table.
    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const float base = m_hue / 360.0F * 0.01F;
        if (HasNoRanges()) return TurnHues<F>(pixels, [base](const HsvFloat& colour) { return colour.hue + base; });
        const Range* const ranges = m_ranges.data();
        TurnHues<F>(pixels, [this, base, ranges](const HsvFloat& colour) {
            const auto index = static_cast<std::int32_t>(colour.value * static_cast<float>(F::fullScale));
            const Range& at = ranges[index];
            return colour.hue + base + (at.shadow * m_shadow + at.midtone * m_midtone + at.highlight * m_highlight);
        });
    }

private:
    // How much each range turns at one value, in turns per degree.
    struct Range {
        float shadow, midtone, highlight;
    };
    [[nodiscard]] bool HasNoRanges() const;

    float m_hue = 0.0F;
    float m_shadow = 0.0F;
    float m_midtone = 0.0F;
    float m_highlight = 0.0F;
    std::vector<Range> m_ranges;  // per value
};

}  // namespace chalkpane
