#pragma once

#include "chalkpane/filters/luma.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Black & White": every colour becomes the pixel's luma, by the rule of its depth.
class BlackWhiteCC final : public RowFilter<BlackWhiteCC> {
public:
    static constexpr FilterIdentity identity{"BlackAndWhite", "Black & White", "Color Correctors"};
    static constexpr auto Parameters() { return std::array<ParameterRow<BlackWhiteCC>, 0>{}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        ForEachColour<F>(pixels, [](auto& blue, auto& green, auto& red, auto& /*alpha*/) {
            blue = green = red = LumaOf<F>(red, green, blue);
        });
    }
};

}  // namespace chalkpane
