#pragma once

#include <vector>

#include "filters/luma.h"
#include "filters/row_filter.h"

namespace chalkpane {

// "Color Dodge": lays one colour over the picture by a mode, all over or in one range of luma.
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
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const std::int32_t luma = LumaOf<F>(pixels[i + 2], pixels[i + 1], pixels[i]) & F::fullScale;
            const std::int32_t weight = m_weights[static_cast<std::size_t>(luma)];
            if (weight == 0) continue;
            const std::int32_t scale = weight + (weight >> (F::bits - 1));
            for (std::size_t c = 0; c < 3; ++c) {
                const std::int32_t channel = pixels[i + c];
                const std::int32_t wanted = m_tables[c][static_cast<std::size_t>(channel & F::fullScale)];
                pixels[i + c] = static_cast<typename F::Channel>(channel + (((wanted - channel) * scale) >> F::bits));
            }
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
    std::vector<std::uint16_t> m_weights;                // per luma
};

}  // namespace chalkpane
