#pragma once

#include <vector>

#include "chalkpane/filters/luma.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Color Dodge": composites one colour over the picture by a mode, all over or in one range of luma.
class ColourDodgeCC final : public RowFilter<ColourDodgeCC> {
public:
    static constexpr FilterIdentity identity{"ColourDodge", "Color Dodge", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = ColourDodgeCC;
        return std::to_array<ParameterRow<Self>>({
            {0, "Color", "Dodge Color", {}, {}, &Self::m_colour},
            {1, "Amount", "Dodge Amount", 0.0, {0, 1}, &Self::m_amount},
            {2, "Mode", "Mode", 6, {}, &Self::m_mode},
            {3, "Range", "Range", 0, {}, &Self::m_range},
            {4, "Use Paint Color", "Dodge Use Paint Color", false, {}, &Self::m_usePaintColour},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    // With `withPaintColour` the class has its last parameter; without it, neither the parameter nor its effect.
    explicit ColourDodgeCC(bool withPaintColour = false);

    [[nodiscard]] bool IsIdentity(const Image& /*source*/) const { return m_amount <= 0.001F; }
    void BeginRun(const Image& source) override;
    void EndRun() override;

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const auto luma = [](auto blue, auto green, auto red) { return LumaOf<F>(red, green, blue) & F::fullScale; };
        const std::uint16_t* const blueTable = m_tables[0].data();
        const std::uint16_t* const greenTable = m_tables[1].data();
        const std::uint16_t* const redTable = m_tables[2].data();
        constexpr std::size_t block = 256;
        std::array<typename F::Channel, 4 * block> wanted{};
        for (; pixels.size() >= 4; pixels = pixels.subspan(std::min(4 * block, pixels.size()))) {
            const auto part = pixels.first(std::min(4 * block, pixels.size()));
            for (std::size_t i = 0; i + 3 < part.size(); i += 4) {
                wanted[i] = static_cast<typename F::Channel>(blueTable[part[i] & F::fullScale]);
                wanted[i + 1] = static_cast<typename F::Channel>(greenTable[part[i + 1] & F::fullScale]);
                wanted[i + 2] = static_cast<typename F::Channel>(redTable[part[i + 2] & F::fullScale]);
            }
            const auto* at = wanted.data();
            ForEachColour<F>(part, m_scales.data(), luma, [&at](auto& blue, auto& green, auto& red, auto&, auto found) {
                const auto to = detail::PixelWords<F>::Load(at);
                const std::int32_t scale = found;
                at += 4;
                blue += ((to.Blue() - blue) * scale) >> F::bits;
                green += ((to.Green() - green) * scale) >> F::bits;
                red += ((to.Red() - red) * scale) >> F::bits;
            });
        }
    }

private:
    Colour m_colour;
    float m_amount = 0.0F;
    std::uint32_t m_mode = 1;  // DIFFERS from the default's 6
    std::uint32_t m_range = 0;
    bool m_usePaintColour = false;
    bool m_withPaintColour;
    std::array<std::vector<std::uint16_t>, 3> m_tables;  // blue, green, red: what a channel becomes at full weight
    std::vector<std::uint16_t> m_scales;                 // how far towards that, of 256 or 16384, per luma
};

}  // namespace chalkpane
