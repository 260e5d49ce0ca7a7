#pragma once

#include "filters/luma.h"
#include "filters/row_filter.h"

namespace chalkpane {

// "Black & White": every colour becomes the pixel's luma, by the rule of its depth.
class BlackWhiteCC final : public RowFilter<BlackWhiteCC> {
public:
    static constexpr FilterIdentity identity{"BlackAndWhite", "Black & White", "Color Correctors"};
    static constexpr auto Parameters() { return std::array<ParameterRow<BlackWhiteCC>, 0>{}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const auto luma = static_cast<typename F::Channel>(LumaOf<F>(pixels[i + 2], pixels[i + 1], pixels[i]));
            pixels[i] = pixels[i + 1] = pixels[i + 2] = luma;
        }
    }
};

}  // namespace chalkpane
