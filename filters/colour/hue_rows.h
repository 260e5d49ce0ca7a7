#pragma once

#include <cstdint>
#include <span>

#include "filters/colour_loop.h"
#include "filters/hsv_words.h"
#include "image/pixel_format.h"

namespace chalkpane {

// Turns the hue of every pixel. `newHue` is called with a pixel's HsvFloat and answers the hue before wrapping, in
// turns. 8-bit channels are widened on the way in and narrowed on the way out.
template <typename F, typename NewHue>
void TurnHues(std::span<typename F::Channel> pixels, NewHue newHue) {
    const auto wide = [](std::int32_t channel) { return F::bits == 8 ? channel * 64 + (channel >> 2) : channel; };
    const auto narrow = [](std::int32_t word) { return word >> (14 - F::bits); };
    ForEachColour<F>(pixels, [=](auto& blue, auto& green, auto& red, auto& /*alpha*/) {
        HsvFloat colour = RgbToHsv({wide(red), wide(green), wide(blue)});
        colour.hue = WrapHue(newHue(colour));
        const RgbWords turned = HsvToRgb(colour);
        blue = narrow(turned.blue);
        green = narrow(turned.green);
        red = narrow(turned.red);
    });
}

}  // namespace chalkpane
