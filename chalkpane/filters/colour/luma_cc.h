#pragma once

#include <vector>

#include "chalkpane/filters/luma.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Luma Graph": a curve over the luma, which keeps the proportions of the colours.
class LumaCC final : public RowFilter<LumaCC> {
public:
    static constexpr FilterIdentity identity{"Luma Graph", "Luma Graph", "Color Correctors"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<LumaCC>>({
            {0, "LUT Graph", "LUT Graph", {}, {}, &LumaCC::m_graph},
        });
    }

    // Builds the table of ratios for the image's depth, and frees it again where it comes out as no change.
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    void EndRun() override { m_ratios = {}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        // KEEP: the 14-bit weights at 8 bits too.
        const auto luma = [](auto blue, auto green, auto red) { return LumaWord(red, green, blue) & F::fullScale; };
        ForEachColour<F>(pixels, m_ratios.data(), luma, [](auto& blue, auto& green, auto& red, auto&, float ratio) {
            blue = Limited<F>(static_cast<float>(blue) * ratio);
            green = Limited<F>(static_cast<float>(green) * ratio);
            red = Limited<F>(static_cast<float>(red) * ratio);
        });
    }

private:
    ShapePointList m_graph;
    std::vector<float> m_ratios;  // per luma
};

}  // namespace chalkpane
