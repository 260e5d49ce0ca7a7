#pragma once

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Remove Red-eye": where red stands out from green and blue it is brought down to their level.
class RedeyeFilter final : public RowFilter<RedeyeFilter> {
public:
    static constexpr FilterIdentity identity{"Remove Red-eye", "Remove Red-eye", "Color Correctors"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<RedeyeFilter>>({
            {0, "Sensitivity", "Sensitivity", 0.05, {0, 1}, &RedeyeFilter::m_sensitivity},
        });
    }

    // In channels of 0 to 255 at either depth.
    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        constexpr float redWeight = 0.5133333F;
        constexpr float blueWeight = 0.1933333F;
        ForEachColour<F>(pixels, [sensitivity = m_sensitivity](auto& blue, auto& green, auto& red, auto& alpha) {
            const float b = ToByteScale<F>(blue);
            const float g = ToByteScale<F>(green);
            const float r = ToByteScale<F>(red);
            const float level = r * redWeight;
            const float lowered = ((g + b * blueWeight) * 0.5F) / redWeight;
            const bool standsOut = (g - sensitivity <= level) & (b * blueWeight - sensitivity <= level) & (alpha != 0);
            blue = FromByteScale<F>(b);
            green = FromByteScale<F>(g);
            red = FromByteScale<F>(standsOut ? lowered : r);
            alpha = FromByteScale<F>(ToByteScale<F>(alpha));
        });
    }

private:
    // KEEP: against channels of 0 to 255, which makes the whole range a very small margin.
    float m_sensitivity = 0.0F;  // DIFFERS from the default's 0.05
};

}  // namespace chalkpane
