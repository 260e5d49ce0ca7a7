#include "chalkpane/filters/colour/hsv_words.h"

#include <doctest/doctest.h>

#include "chalkpane/filters/luma.h"

using namespace chalkpane;

// 77 + 151 + 28 = 256, so 256 * 255 / 256 = 255.
TEST_CASE("LumaByte of white is white") { CHECK_EQ(LumaByte(255, 255, 255), 255); }
// 4915 + 9666 + 1802 = 16383, one short of 16384, so 16383 * 16383 / 16384 = 16382.00006.
TEST_CASE("LumaWord of white falls one short") { CHECK_EQ(LumaWord(16383, 16383, 16383), 16382); }

TEST_CASE("Pure colours go through hue, saturation and value and come back") {
    for (const RgbWords colour : {RgbWords{16383, 0, 0}, RgbWords{0, 16383, 0}, RgbWords{0, 0, 16383},
                                  RgbWords{16383, 16383, 0}, RgbWords{0, 16383, 16383}, RgbWords{16383, 0, 16383}}) {
        CHECK(HsvToRgb(RgbToHsv(colour)) == colour);
    }
}

TEST_CASE("Grey has neither hue nor saturation") {
    const HsvFloat grey = RgbToHsv({8000, 8000, 8000});
    CHECK_EQ(grey.hue, 0.0F);
    CHECK_EQ(grey.saturation, 0.0F);
    CHECK_EQ(grey.value, 8000.0F * 6.103888e-05F);
    CHECK(HsvToRgb(grey) == RgbWords{8000, 8000, 8000});
}

// Red and green tie at the top: red decides, (g - b) / 6 / d = 1/6; the green rule would give (d / d * -1 + 2) / 6,
// which is 1/6 too but by another path of rounding. Red and blue tie: red's rule gives -1/6, plus 1.
TEST_CASE("A tie of the largest component goes to red") {
    const HsvFloat magenta = RgbToHsv({16383, 0, 16383});
    const float unit = 16383.0F * 6.103888e-05F;
    CHECK_EQ(magenta.hue, (0.0F - unit) * 0.16666667F * (1.0F / unit) + 1.0F);
}

// A tiny negative hue less its floor is 1 - 1e-9, which rounds to 1; six sixths are sextant 6, taken as the first.
TEST_CASE("A hue that rounds up to 1 is red") {
    const float hue = WrapHue(-1e-9F);
    CHECK_EQ(hue, 1.0F);
    CHECK(HsvToRgb({hue, 1.0F, 1.0F}) == RgbWords{16383, 0, 0});
}

TEST_CASE("A hue that is NaN counts as 0") { CHECK_EQ(WrapHue(std::nanf("")), 0.0F); }
