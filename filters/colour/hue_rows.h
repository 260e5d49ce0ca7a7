#pragma once

#include <cstdint>
#include <span>

#include "filters/hsv_words.h"
#include "image/pixel_format.h"

namespace chalkpane {

// Turns the hue of every pixel. `newHue` is called with a pixel's HsvFloat and answers the hue before wrapping, in
// turns. 8-bit channels are widened on the way in and narrowed on the way out.
template <typename F, typename NewHue>
void TurnHues(std::span<typename F::Channel> pixels, NewHue newHue) {
    using Channel = typename F::Channel;
    const auto wide = [](Channel channel) -> std::int32_t {
        if constexpr (F::bits == 8)
            return Widen(channel);
        else
            return channel;
    };
    const auto narrow = [](std::int32_t word) { return static_cast<Channel>(word >> (14 - F::bits)); };
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        HsvFloat colour = RgbToHsv({wide(pixels[i + 2]), wide(pixels[i + 1]), wide(pixels[i])});
        colour.hue = WrapHue(newHue(colour));
        const RgbWords turned = HsvToRgb(colour);
        pixels[i] = narrow(turned.blue);
        pixels[i + 1] = narrow(turned.green);
        pixels[i + 2] = narrow(turned.red);
    }
}

}  // namespace chalkpane
