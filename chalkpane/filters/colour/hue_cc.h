#pragma once

#include <vector>

#include "chalkpane/filters/colour/hue_rows.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Hue Rotate": rotates all hues, and those of shadows, midtones and highlights besides.
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
    void EndRun() override { m_turns = {}; }

    // KEEP: the factor 0.01 is the main setting's alone. A full main setting is one degree, a full range setting a
    // hundred degrees at the peak of its table.
    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const float base = m_hue / 360.0F * 0.01F;
        TurnHues(pixels, base, HasNoRanges() ? nullptr : m_turns.data());
    }

private:
    [[nodiscard]] bool HasNoRanges() const;

    float m_hue = 0.0F;
    float m_shadow = 0.0F;
    float m_midtone = 0.0F;
    float m_highlight = 0.0F;
    std::vector<float> m_turns;  // by all ranges together, per value
};

}  // namespace chalkpane
