#pragma once

#include <vector>

#include "filters/row_filter.h"

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
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const auto brightest = std::max({pixels[i], pixels[i + 1], pixels[i + 2]});
            const float gain = m_gains[static_cast<std::size_t>(brightest & F::fullScale)];
            for (std::size_t c = i; c < i + 3; ++c)
                pixels[c] =
                    static_cast<typename F::Channel>(static_cast<std::int32_t>(gain * static_cast<float>(pixels[c])));
        }
    }

private:
    std::vector<float> m_gains;  // per brightest component
};

}  // namespace chalkpane
