#pragma once

#include <vector>

#include "filters/luma.h"
#include "filters/row_filter.h"

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
        const float* const ratios = m_ratios.data();
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            // KEEP: the 14-bit weights at 8 bits too.
            const std::int32_t luma = LumaWord(pixels[i + 2], pixels[i + 1], pixels[i]);
            const float ratio = ratios[luma & F::fullScale];
            for (std::size_t c = i; c < i + 3; ++c)
                pixels[c] = LimitedChannel<F>(static_cast<float>(pixels[c]) * ratio);
        }
    }

private:
    ShapePointList m_graph;
    std::vector<float> m_ratios;  // per luma
};

}  // namespace chalkpane
