#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace chalkpane {

// Hue, saturation and value of the colour correctors: 32-bit floats, 0 .. 1 each, every operation rounded to 32 bits.
// The blend modes have conversions of their own, which round to whole numbers in between.
struct HsvFloat {
    float hue = 0.0F;  // of a turn
    float saturation = 0.0F;
    float value = 0.0F;
};

struct RgbWords {
    std::int32_t red = 0, green = 0, blue = 0;  // 0 .. 16383
    friend constexpr bool operator==(const RgbWords&, const RgbWords&) = default;
};

// Words 0 .. 16383. Ties of the largest component are decided red first, then green. Grey has hue and saturation 0.
// Written with selections instead of branches, so that a loop over pixels vectorises.
[[nodiscard]] inline HsvFloat RgbToHsv(const RgbWords& colour) {
    const float red = static_cast<float>(colour.red) * 6.103888e-05F;
    const float green = static_cast<float>(colour.green) * 6.103888e-05F;
    const float blue = static_cast<float>(colour.blue) * 6.103888e-05F;
    const float value = std::max(std::max(red, green), blue);
    const float delta = value - std::min(std::min(red, green), blue);
    const bool grey = delta == 0.0F;  // a value of 0 has no spread either
    const float k = 1.0F / (grey ? 1.0F : delta);
    const float fromRed = (green - blue) * 0.16666667F * k;
    const float fromGreen = ((blue - red) * k + 2.0F) * 0.16666667F;
    const float fromBlue = ((red - green) * k + 4.0F) * 0.16666667F;
    const float redHue = fromRed < 0.0F ? fromRed + 1.0F : fromRed;
    const float hue = value == red ? redHue : (value == green ? fromGreen : fromBlue);
    return {grey ? 0.0F : hue, grey ? 0.0F : delta / value, value};
}

// The caller wraps the hue to 0 .. 1; a hue that the wrap rounded up to 1 belongs to the first sextant.
[[nodiscard]] inline RgbWords HsvToRgb(const HsvFloat& colour) {
    const float position = colour.hue * 6.0F;
    const float floor = static_cast<float>(static_cast<std::int32_t>(position));
    const float f = position - floor;
    const float sextant = floor >= 6.0F ? 0.0F : floor;
    const float v = colour.value;
    const float p = (1.0F - colour.saturation) * v;
    const float q = (1.0F - f * colour.saturation) * v;
    const float t = (1.0F - (1.0F - f) * colour.saturation) * v;
    const auto word = [](float component) { return static_cast<std::int32_t>(component * 16383.0F + 0.5F); };
    // Sextant      0  1  2  3  4  5
    //   red        v  q  p  p  t  v
    //   green      t  v  v  q  p  p
    //   blue       p  p  t  v  v  q
    const float red = sextant == 1.0F ? q : (sextant == 4.0F ? t : (sextant == 2.0F || sextant == 3.0F ? p : v));
    const float green = sextant == 0.0F ? t : (sextant == 3.0F ? q : (sextant >= 4.0F ? p : v));
    const float blue = sextant == 2.0F ? t : (sextant == 5.0F ? q : (sextant <= 1.0F ? p : v));
    return {word(red), word(green), word(blue)};
}

// hue less its floor: 0 .. 1, where 1 itself can come out of rounding a tiny negative hue. NaN is 0.
[[nodiscard]] inline float WrapHue(float hue) {
    const float wrapped = hue - std::floor(hue);
    return wrapped >= 0.0F ? wrapped : 0.0F;
}

}  // namespace chalkpane
