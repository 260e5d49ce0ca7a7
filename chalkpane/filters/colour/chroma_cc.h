#pragma once

#include <algorithm>
#include <cmath>

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Chroma Scale": draws the colours of a pixel to its largest one, or away from it.
class ChromaCC final : public RowFilter<ChromaCC> {
public:
    static constexpr FilterIdentity identity{"ChromaCorrect", "Chroma Scale", "Color Correctors"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<ChromaCC>>({
            {0, "Chroma Scale", "Scale", 100.0, {0, 300}, &ChromaCC::m_scale},
        });
    }

    // KEEP: the raw setting is compared with 1 although it is a per cent value: 1 skips the filter, 100 runs it to no
    // effect.
    [[nodiscard]] bool IsIdentity(const Image& /*source*/) const { return std::fabs(m_scale - 1.0F) < 0.001F; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const float scale = m_scale * 0.01F;
        ForEachColour<F>(pixels, [scale](auto& blue, auto& green, auto& red, auto& /*alpha*/) {
            const auto largest = static_cast<float>(std::max(std::max(blue, green), red));
            const auto scaled = [=](std::int32_t channel) {
                return Limited<F>((static_cast<float>(channel) - largest) * scale + largest);
            };
            blue = scaled(blue);
            green = scaled(green);
            red = scaled(red);
        });
    }

private:
    float m_scale = 0.5F;  // per cent. DIFFERS from the default's 100
};

}  // namespace chalkpane
