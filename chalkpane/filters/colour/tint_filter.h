#pragma once

#include <vector>

#include "chalkpane/filters/luma.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Tint": gives the picture the hue of a colour at its own luma, all over and in shadows, midtones and highlights.
class TintFilter final : public RowFilter<TintFilter> {
public:
    static constexpr FilterIdentity identity{"TintFilter", "Tint", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = TintFilter;
        constexpr ParameterKind begin{ParameterType::groupBegin};
        constexpr ParameterKind end{ParameterType::groupEnd};
        return std::to_array<ParameterRow<Self>>({
            {0, "Tint Color", "Colour Correct Tint Colour", {}, {}, &Self::m_colour},
            {1, "Tint Amount", "Colour Correct Tint Amount", 0.0, {0, 1}, &Self::m_amount, unitFloat},
            {2, "Keep Highlights", "Colour Correct Tint Keep Highlights", 1.0, {0, 1}, &Self::m_keep, unitFloat},
            {3, "Shadows", "Shadows", {}, {}, nullptr, begin},
            {4, "Shadow Tint Color", "Colour Correct Shadow Tint Colour", {}, {}, &Self::m_shadowColour},
            {5, "Shadow Tint Amount", "Colour Correct Shadow Tint Amount", 0.0, {0, 1}, &Self::m_shadow, unitFloat},
            {6, "Shadows", "Shadows", {}, {}, nullptr, end},
            {7, "Midtones", "Midtones", {}, {}, nullptr, begin},
            {8, "Midtone Tint Color", "Colour Correct Midtone Tint Colour", {}, {}, &Self::m_midtoneColour},
            {9, "Midtone Tint Amount", "Colour Correct Midtone Tint Amount", 0.0, {0, 1}, &Self::m_midtone, unitFloat},
            {10, "Midtones", "Midtones", {}, {}, nullptr, end},
            {11, "Highlights", "Highlights", {}, {}, nullptr, begin},
            {12, "Highlight Tint Color", "Colour Correct Highlight Tint Colour", {}, {}, &Self::m_highlightColour},
            {13,
             "Highlight Tint Amount",
             "Colour Correct Highlight Tint Amount",
             0.0,
             {0, 1},
             &Self::m_highlight,
             unitFloat},
            {14, "Highlights", "Highlights", {}, {}, nullptr, end},
            {15, "Use Paint Color", "Colour Correct Tint Use Paint Color", true, {}, &Self::m_usePaintColour},
        });
    }

    // With `withPaintColour` the class has its last parameter and keeps highlights by default; without it, neither.
    explicit TintFilter(bool withPaintColour = false);

    [[nodiscard]] bool IsIdentity(const Image& source) const;
    void BeginRun(const Image& source) override;
    void EndRun() override { m_blends = {}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        if (m_direct)
            TakeEntries<F>(pixels);
        else if (m_narrow)
            BlendEntries<F, std::int32_t>(pixels);
        else
            BlendEntries<F, std::int64_t>(pixels);
    }

private:
    struct Entry {
        std::int32_t blue, green, red;
    };
    // All tints together at one luma: the sums of what they make of it, each by its weight, and of the weights; of 256.
    struct Blend {
        std::int32_t blue, green, red;
        std::int32_t weight;
    };

    // What a tint makes of a luma.
    [[nodiscard]] Entry TintAt(const Colour& colour, std::int32_t luma, std::int32_t fullScale) const;
    // weightOf(luma, number of lumas) is the tint's share.
    template <typename WeightOf>
    void AddTint(const Colour& colour, WeightOf weightOf);

    template <typename F>
    void TakeEntries(std::span<typename F::Channel> pixels) const {
        const auto luma = [](auto blue, auto green, auto red) { return LumaOf<F>(red, green, blue) & F::fullScale; };
        ForEachColour<F>(pixels, m_blends.data(), luma, [](auto& blue, auto& green, auto& red, auto& alpha, Blend at) {
            blue = alpha == 0 ? 0 : at.blue;
            green = alpha == 0 ? 0 : at.green;
            red = alpha == 0 ? 0 : at.red;
        });
    }

    // c + (the sum over the tints of (entry - c) * weight, shifted right by 8).
    template <typename F, typename Product>
    void BlendEntries(std::span<typename F::Channel> pixels) const {
        // DIFFERS: 8 bits round the luma, 14 bits do not.
        const auto luma = [](auto blue, auto green, auto red) {
            return (F::bits == 8 ? (77 * red + 151 * green + 28 * blue + 128) >> 8 : LumaWord(red, green, blue)) &
                   F::fullScale;
        };
        ForEachColour<F>(pixels, m_blends.data(), luma, [](auto& blue, auto& green, auto& red, auto& alpha, Blend at) {
            const auto tinted = [&at, visible = alpha != 0](std::int32_t channel, std::int32_t sum) {
                const Product more = (sum - static_cast<Product>(channel) * at.weight) >> 8;
                return visible ? Limited<F>(static_cast<std::int32_t>(channel + more)) : 0;
            };
            blue = tinted(blue, at.blue);
            green = tinted(green, at.green);
            red = tinted(red, at.red);
        });
    }

    Colour m_colour;
    float m_amount = 0.0F;
    float m_keep;
    Colour m_shadowColour;
    float m_shadow = 0.0F;
    Colour m_midtoneColour;
    float m_midtone = 0.0F;
    Colour m_highlightColour;
    float m_highlight = 0.0F;
    bool m_usePaintColour = true;
    bool m_withPaintColour;
    std::vector<Blend> m_blends;  // per luma
    bool m_direct = false;        // the main tint alone, in full: pixels are the table's entries
    bool m_narrow = true;         // weights keep the products with channels within 32 bits
};

}  // namespace chalkpane
