#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace chalkpane {

// Conversions between 14-bit red, green, blue and whole-number hue, saturation, value: 0 .. 255 in the forms that end
// in 8, 0 .. 16383 in those that end in 14. Red, green and blue are 0 .. 16383 in both.
//
// All of it is inline, so that a blend kernel which takes one component leaves out the rest.

struct Hsv {
    std::uint16_t hue = 0;  // the whole turn is full scale
    std::uint16_t saturation = 0;
    std::uint16_t value = 0;
    friend constexpr bool operator==(const Hsv&, const Hsv&) = default;
};
struct Rgb14 {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
    friend constexpr bool operator==(const Rgb14&, const Rgb14&) = default;
};

namespace detail {

// A fraction of the turn, from 0 up to 1; delta is the largest component less the smallest and not 0.
inline double HueFraction(const Rgb14& colour, std::int32_t largest, double delta) {
    const double red = colour.red;
    const double green = colour.green;
    const double blue = colour.blue;
    if (colour.red == largest) {
        const double hue = ((green - blue) / 6) / delta;
        return hue < 0 ? hue + 1 : hue;
    }
    if (colour.green == largest) return ((blue - red) / delta + 2) / 6;
    return ((red - green) / delta + 4) / 6;
}

// `fullScale` of the components that come out; `valueShift` takes a 14-bit value there.
template <std::int32_t fullScale, int valueShift>
Hsv RgbToHsv(const Rgb14& colour) {
    const std::int32_t largest = std::max({colour.red, colour.green, colour.blue});
    const std::int32_t delta = largest - std::min({colour.red, colour.green, colour.blue});
    const auto value = static_cast<std::uint16_t>(largest >> valueShift);
    if (value == 0) return {};
    const auto rounded = [](double fraction) { return static_cast<std::uint16_t>(fraction * fullScale + 0.5); };
    const double hue = delta == 0 ? 0.0 : HueFraction(colour, largest, delta);
    return {rounded(hue), rounded(static_cast<double>(delta) / largest), value};
}

template <std::int32_t fullScale>
Rgb14 HsvToRgb(const Hsv& colour) {
    const double position = (static_cast<double>(colour.hue) / fullScale) * 6;
    const double sextant = std::floor(position);
    const double f = position - sextant;
    const double s = static_cast<double>(colour.saturation) / fullScale;
    const double value = static_cast<double>(colour.value) / fullScale;
    const auto word = [](double component) {
        return static_cast<std::uint16_t>(static_cast<std::int32_t>(component * 16383 + 0.5));
    };
    const std::uint16_t v = word(value);
    const std::uint16_t p = word(value * (1 - s));
    const std::uint16_t q = word(value * (1 - s * f));
    const std::uint16_t t = word(value * (1 - s * (1 - f)));
    switch (static_cast<std::int32_t>(sextant)) {
        case 0:
            return {v, t, p};
        case 1:
            return {q, v, p};
        case 2:
            return {p, v, t};
        case 3:
            return {p, q, v};
        case 4:
            return {t, p, v};
        case 5:
            return {v, p, q};
        default:
            return {v, v, v};  // KEEP: only the largest hue of all comes here, and turns grey
    }
}

}  // namespace detail

// Grey has hue 0, and so has what is too dark to have a value: below 64 in the 8-bit form.
[[nodiscard]] inline Hsv RgbToHsv8(const Rgb14& colour) { return detail::RgbToHsv<255, 6>(colour); }
[[nodiscard]] inline Hsv RgbToHsv14(const Rgb14& colour) { return detail::RgbToHsv<16383, 0>(colour); }

// KEEP: the largest hue of all, 255 or 16383, comes out grey.
[[nodiscard]] inline Rgb14 HsvToRgb8(const Hsv& colour) { return detail::HsvToRgb<255>(colour); }
[[nodiscard]] inline Rgb14 HsvToRgb14(const Hsv& colour) { return detail::HsvToRgb<16383>(colour); }

}  // namespace chalkpane
