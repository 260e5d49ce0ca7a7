#pragma once

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Solarize": inverts the dark part of the scale, so that black becomes white and the threshold black.
// An amount of exactly 0 or 1 divides by zero; the infinite slope gives full scale, or 0 at the threshold itself.
class SolarizeEffect final : public RowFilter<SolarizeEffect> {
public:
    static constexpr FilterIdentity identity{"Solarize Effect", "Solarize", "Effects"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<SolarizeEffect>>({
            {0, "Amount", "Amount", 0.0, {0, 1}, &SolarizeEffect::m_amount},
        });
    }

    void BeginRun(const Image& /*source*/) override {
        m_up = 1.0F / m_amount;
        m_down = 1.0F / (1.0F - m_amount);
    }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const std::int32_t threshold = Truncated(m_amount * static_cast<float>(F::fullScale));
        // From a threshold far off the scale channels are farther away than 32 bits can say.
        constexpr std::int32_t nearby = 1 << 30;
        if (-nearby <= threshold && threshold <= nearby)
            Solarise<F>(pixels, threshold);
        else
            Solarise<F>(pixels, std::int64_t{threshold});
    }

private:
    template <typename F, typename Number>
    void Solarise(std::span<typename F::Channel> pixels, Number threshold) const {
        const auto solarised = [threshold, up = m_up, down = m_down](std::int32_t channel) {
            const Number above = channel - threshold;
            const float slope = above > 0 ? down : up;
            const auto distance = static_cast<float>(above > 0 ? above : -above);
            return Limited<F>(distance * slope);
        };
        ForEachColour<F>(pixels, [&solarised](auto& blue, auto& green, auto& red, auto& /*alpha*/) {
            blue = solarised(blue);
            green = solarised(green);
            red = solarised(red);
        });
    }

    float m_amount = 0.5F;  // DIFFERS from the default's 0
    float m_up = 0.0F;
    float m_down = 0.0F;
};

}  // namespace chalkpane
