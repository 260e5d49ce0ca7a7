#include "chalkpane/composite/hsv.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <random>

#include "tests/reference/blending.h"

using namespace chalkpane;

// (16383 - 0) / 16383 = 1; hue of pure green = (0 / 16383 + 2) / 6 = 1/3, of blue 2/3.
TEST_CASE("The primaries have their hues in both scales") {
    CHECK(RgbToHsv8({16383, 0, 0}) == Hsv{0, 255, 255});
    CHECK(RgbToHsv8({0, 16383, 0}) == Hsv{85, 255, 255});
    CHECK(RgbToHsv8({0, 0, 16383}) == Hsv{170, 255, 255});
    CHECK(RgbToHsv14({16383, 0, 0}) == Hsv{0, 16383, 16383});
    CHECK(RgbToHsv14({0, 16383, 0}) == Hsv{5461, 16383, 16383});
    CHECK(RgbToHsv14({0, 0, 16383}) == Hsv{10922, 16383, 16383});
}

// Yellow: red is the largest as well as green and is asked first: ((g - b) / 6) / delta = 1/6; as green it would be the
// same. Magenta: red first gives -1/6 + 1 = 5/6.
TEST_CASE("Red is asked first where two components are the largest") {
    CHECK(RgbToHsv8({16383, 16383, 0}) == Hsv{43, 255, 255});   // 42.5 + 0.5
    CHECK(RgbToHsv8({16383, 0, 16383}) == Hsv{213, 255, 255});  // 212.5 + 0.5
    CHECK(RgbToHsv8({0, 16383, 16383}) == Hsv{128, 255, 255});  // 127.5 + 0.5
}

TEST_CASE("Below 64 the 8-bit form has no hue and no saturation") {
    CHECK(RgbToHsv8({63, 0, 0}) == Hsv{0, 0, 0});
    CHECK(RgbToHsv8({64, 0, 0}) == Hsv{0, 255, 1});
    CHECK(RgbToHsv14({0, 0, 0}) == Hsv{0, 0, 0});
    CHECK(RgbToHsv14({0, 0, 1}) == Hsv{10922, 16383, 1});
}

TEST_CASE("Grey has hue 0 and saturation 0") {
    CHECK(RgbToHsv8({8000, 8000, 8000}) == Hsv{0, 0, 125});
    CHECK(RgbToHsv14({8000, 8000, 8000}) == Hsv{0, 0, 8000});
}

TEST_CASE("The largest hue comes out grey, the one below nearly red") {
    CHECK(HsvToRgb8({255, 255, 255}) == Rgb14{16383, 16383, 16383});
    CHECK(HsvToRgb14({16383, 16383, 5000}) == Rgb14{5000, 5000, 5000});
    // 254 / 255 * 6 = 5.976..., f = 0.976...: red full, green 0, blue q = 1 - f = 6 / 255 -> 385.48 + 0.5.
    CHECK(HsvToRgb8({254, 255, 255}) == Rgb14{16383, 0, 385});
}

TEST_CASE("Each sextant has its own order of components") {
    // Full saturation and value; the middle of sextant i is hue 16383 * (2 i + 1) / 12 = 1365.25 (2 i + 1). At 1365:
    // x = 0.49990844, so t = 0.49990844 * 16383 = 8190.0 and q is the rest, 8193.0.
    CHECK(HsvToRgb14({1365, 16383, 16383}) == Rgb14{16383, 8190, 0});
    // 4096: x = 1.50009, so q = 0.49991 and q * 16383 + 0.5 = 8190.5.
    CHECK(HsvToRgb14({4096, 16383, 16383}) == Rgb14{8190, 16383, 0});
    // 6826: x = 2.49991 and t is its fraction, as in the first sextant; and so on round the circle.
    CHECK(HsvToRgb14({6826, 16383, 16383}) == Rgb14{0, 16383, 8190});
    CHECK(HsvToRgb14({9557, 16383, 16383}) == Rgb14{0, 8190, 16383});
    CHECK(HsvToRgb14({12287, 16383, 16383}) == Rgb14{8190, 0, 16383});
    CHECK(HsvToRgb14({15018, 16383, 16383}) == Rgb14{16383, 0, 8190});
}

TEST_CASE("Random colours convert as in the plain reference") {
    constexpr std::uint32_t seed = 77;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const auto word = [&] { return static_cast<std::uint16_t>(random() % 16384); };
    for (int i = 0; i < 200000; ++i) {
        const Rgb14 colour{word(), word(), word()};
        for (const int scale : {255, 16383}) {
            const auto hsv = reference::HsvOf(colour.red, colour.green, colour.blue, scale);
            const Hsv got = scale == 255 ? RgbToHsv8(colour) : RgbToHsv14(colour);
            REQUIRE_EQ(reference::Channels{got.hue, got.saturation, got.value, 0},
                       reference::Channels{hsv[0], hsv[1], hsv[2], 0});
            const auto part = [&] { return static_cast<std::uint16_t>(random() % (static_cast<unsigned>(scale) + 1)); };
            const Hsv back{part(), part(), part()};
            const auto rgb = reference::RgbOf(back.hue, back.saturation, back.value, scale);
            const Rgb14 gotBack = scale == 255 ? HsvToRgb8(back) : HsvToRgb14(back);
            REQUIRE_EQ(reference::Channels{gotBack.red, gotBack.green, gotBack.blue, 0},
                       reference::Channels{rgb[0], rgb[1], rgb[2], 0});
        }
    }
}

TEST_CASE("Components beyond full scale convert to something") {
    CHECK_EQ(HsvToRgb8({65535, 0, 255}).red, 16383);
    CHECK_EQ(HsvToRgb14({0, 65535, 65535}).red, 65535);  // 65535 / 16383 * 16383 + 0.5
}
