#pragma once

#include <cstdint>

namespace chalkpane {

// Conversions between 14-bit red, green, blue and whole-number hue, saturation, value: 0 .. 255 in the forms that end
// in 8, 0 .. 16383 in those that end in 14. Red, green and blue are 0 .. 16383 in both.

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

// Grey has hue 0, and so has what is too dark to have a value: below 64 in the 8-bit form.
[[nodiscard]] Hsv RgbToHsv8(const Rgb14& colour);
[[nodiscard]] Hsv RgbToHsv14(const Rgb14& colour);

// KEEP: the largest hue of all, 255 or 16383, comes out grey.
[[nodiscard]] Rgb14 HsvToRgb8(const Hsv& colour);
[[nodiscard]] Rgb14 HsvToRgb14(const Hsv& colour);

}  // namespace chalkpane
