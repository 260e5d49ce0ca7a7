#pragma once

#include <algorithm>
#include <cmath>

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Add/Subtract": adds a multiple of one colour to every pixel.
class SubtractCC final : public RowFilter<SubtractCC> {
public:
    static constexpr FilterIdentity identity{"AddSubtractCC", "Add/Subtract", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = SubtractCC;
        return std::to_array<ParameterRow<Self>>({
            {0, "Source Color", "Source Colour", Colour{16383, 16383, 16383}, {}, &Self::m_colour},
            {1, "Add", "Add", 0.0, {-1, 1}, &Self::m_add},
        });
    }

    [[nodiscard]] bool IsIdentity(const Image& /*source*/) const { return std::fabs(m_add) < 1e-05F; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const float add = F::bits == 8 ? m_add * 0.015564915F : m_add;  // 255 / 16383
        // Beyond full scale an offset does no more than reach the end of the scale.
        const auto offset = [add](std::uint16_t component) {
            return std::clamp(Truncated(add * static_cast<float>(component)), -65536, 65536);
        };
        const std::int32_t moreBlue = offset(m_colour.blue);
        const std::int32_t moreGreen = offset(m_colour.green);
        const std::int32_t moreRed = offset(m_colour.red);
        ForEachColour<F>(pixels, [=](auto& blue, auto& green, auto& red, auto& /*alpha*/) {
            blue = Limited<F>(blue + moreBlue);
            green = Limited<F>(green + moreGreen);
            red = Limited<F>(red + moreRed);
        });
    }

private:
    Colour m_colour;  // DIFFERS from the default's white: a fresh object adds black
    float m_add = 0.0F;
};

}  // namespace chalkpane
