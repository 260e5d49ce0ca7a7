#pragma once

#include <array>
#include <cmath>

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "RGB Channel Mixer": makes one colour of a pixel from a mixture of all three.
class RGBChannelCC final : public RowFilter<RGBChannelCC> {
public:
    static constexpr FilterIdentity identity{"RGBChannelMixer", "RGB Channel Mixer", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = RGBChannelCC;
        return std::to_array<ParameterRow<Self>>({
            {0, "Component", "Component", 0, {}, &Self::m_component},
            {1, "Red Input", "Red Input", 1.0, {0, 1}, &Self::m_red},
            {2, "Green Input", "Green Input", 0.0, {0, 1}, &Self::m_green},
            {3, "Blue Input", "Blue Input", 0.0, {0, 1}, &Self::m_blue},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code) {
        static constexpr std::array<std::string_view, 3> components{"Red", "Green", "Blue"};
        return code == 0 ? std::span<const std::string_view>(components) : std::span<const std::string_view>();
    }

    [[nodiscard]] bool IsIdentity(const Image& /*source*/) const {
        const std::array<float, 3> inputs{m_red, m_green, m_blue};
        if (m_component >= inputs.size()) return false;
        for (std::size_t i = 0; i < inputs.size(); ++i)
            if (!(std::fabs(inputs[i] - (i == m_component ? 1.0F : 0.0F)) < 0.001F)) return false;
        return true;
    }

    // KEEP: the sum goes into the channel without a limit and wraps in its bits.
    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        // With inputs of any sane size no sum leaves the range of an integer.
        const auto sane = [](float input) { return std::fabs(input) < 8000.0F; };
        if (sane(m_red) && sane(m_green) && sane(m_blue))
            Mix<F>(pixels, [](float sum) { return static_cast<std::int32_t>(sum); });
        else
            Mix<F>(pixels, [](float sum) { return Truncated(sum); });
    }

private:
    template <typename F, typename Truncate>
    void Mix(std::span<typename F::Channel> pixels, Truncate truncate) const {
        const auto sum = [=, redPart = m_red, greenPart = m_green, bluePart = m_blue](auto blue, auto green, auto red) {
            return truncate(static_cast<float>(blue) * bluePart + static_cast<float>(red) * redPart +
                            static_cast<float>(green) * greenPart);
        };
        using Channel = std::int32_t&;
        if (m_component == 0)
            ForEachColour<F>(pixels, [&](Channel b, Channel g, Channel r, Channel /*a*/) { r = sum(b, g, r); });
        else if (m_component == 1)
            ForEachColour<F>(pixels, [&](Channel b, Channel g, Channel r, Channel /*a*/) { g = sum(b, g, r); });
        else if (m_component == 2)
            ForEachColour<F>(pixels, [&](Channel b, Channel g, Channel r, Channel /*a*/) { b = sum(b, g, r); });
    }

    std::uint32_t m_component = 0;
    float m_red = 1.0F;
    float m_green = 0.0F;
    float m_blue = 0.0F;
};

}  // namespace chalkpane
