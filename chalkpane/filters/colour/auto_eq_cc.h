#pragma once

#include <algorithm>
#include <vector>

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "AutoEqualize": brings the median of the brightest component to the middle between the points below and above which
// a twentieth of the picture lies. Hues do not change. Without memory for its tables the result is blank.
class AutoEqCC final : public RowFilter<AutoEqCC> {
public:
    static constexpr FilterIdentity identity{"AutoEqualize", "AutoEqualize", "Color Correctors"};
    static constexpr auto Parameters() { return std::array<ParameterRow<AutoEqCC>, 0>{}; }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    void EndRun() override { m_gains = {}; }

    // No limit: a gain never takes the brightest component beyond the upper point.
    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        const auto brightest = [](auto blue, auto green, auto red) {
            return std::max(std::max(blue, green), red) & F::fullScale;
        };
        ForEachColour<F>(pixels, m_gains.data(), brightest, [](auto& blue, auto& green, auto& red, auto&, float gain) {
            blue = static_cast<std::int32_t>(gain * static_cast<float>(blue));
            green = static_cast<std::int32_t>(gain * static_cast<float>(green));
            red = static_cast<std::int32_t>(gain * static_cast<float>(red));
        });
    }

private:
    std::vector<float> m_gains;  // per brightest component
};

}  // namespace chalkpane
