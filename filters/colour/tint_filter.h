#pragma once

#include <vector>

#include "filters/luma.h"
#include "filters/row_filter.h"

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
    void EndRun() override { m_tints = {}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const;

private:
    struct Entry {
        std::uint16_t blue, green, red;
    };
    // One tint: what each luma becomes, and with what weight; a main tint weighs the same everywhere.
    struct Tint {
        std::vector<Entry> table;
        std::vector<std::int32_t> weights;  // of 256, per luma
    };

    [[nodiscard]] Tint MakeTint(const Colour& colour, std::int32_t fullScale) const;

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
    std::vector<Tint> m_tints;  // those whose amount counts, main first
    bool m_direct = false;      // the main tint alone, in full: pixels are the table's entries
};

}  // namespace chalkpane
