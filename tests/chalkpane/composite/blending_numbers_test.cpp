#include <doctest/doctest.h>

#include <array>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "chalkpane/base/random.h"
#include "chalkpane/composite/blending_modes.h"

using namespace chalkpane;

namespace {

// Single blends whose results are worked out by hand. The modes by number:
enum Mode : std::int32_t {
    normal = 0,
    add = 1,
    subtract = 2,
    difference = 3,
    multiply = 4,
    darkenOnly = 5,
    burn = 6,
    colourBurn = 7,
    screen = 8,
    lightenOnly = 9,
    dodge = 10,
    colourDodge = 11,
    hue = 12,
    saturation = 13,
    value = 14,
    colour = 15,
    overlay = 16,
    softLight = 17,
    hardLight = 18,
    pinLight = 19,
    exclusion = 20,
    negation = 21,
    dissolve = 22,
    destinationOnly = 23,
    sourceAlpha = 24,
    sourceLuma = 25,
    invertedAlpha = 26,
    invertedLuma = 27
};

using P8 = std::array<std::uint8_t, 4>;
using P14 = std::array<std::uint16_t, 4>;

P8 Blend8(Mode mode, const P8& s, const P8& d) {
    P8 out{};
    BlendRow8(1, mode, s, d, out);
    return out;
}
P14 Blend14(Mode mode, const P14& s, const P14& d) {
    P14 out{};
    BlendRow14(1, mode, s, d, out);
    return out;
}
int Blend8(Mode mode, std::uint8_t s, std::uint8_t d) { return Blend8(mode, P8{s, s, s, 255}, P8{d, d, d, 255})[1]; }
int Blend14(Mode mode, std::uint16_t s, std::uint16_t d) {
    return Blend14(mode, P14{s, s, s, 16383}, P14{d, d, d, 16383})[1];
}

}  // namespace

TEST_CASE("The rounded products keep full scale and zero") {
    CHECK_EQ(Scale8(255, 255), 255);
    CHECK_EQ(Scale14(16383, 16383), 16383);
    for (int x = 0; x < 256; ++x) {
        CHECK_EQ(Scale8(0, x), 0);
        CHECK_EQ(Scale8(255, x), x);
    }
    // -10 * 100 + 128 = -872; -872 >> 8 is -4; -876 >> 8 is -4, where a truncating division gives -3.
    CHECK_EQ(Scale8(-10, 100), -4);
}

TEST_CASE("The names of the modes stand in table order, and the last six have none") {
    constexpr std::array<std::string_view, 28> expected{
        "Normal",  "Add",          "Subtract",   "Difference",  "Multiply",  "Darken Only", "Burn",  "Color Burn",
        "Screen",  "Lighten Only", "Dodge",      "Color Dodge", "Hue",       "Saturation",  "Value", "Color",
        "Overlay", "Soft Light",   "Hard Light", "Pin Light",   "Exclusion", "Negation"};
    CHECK(BlendModeNames == expected);
}

TEST_CASE("A fresh set of blending modes is Normal, without virtual operations") {
    CHECK_EQ(BlendingModes().mode, 0);
    CHECK_FALSE(std::is_polymorphic_v<BlendingModes>);
    CHECK(std::is_base_of_v<ImageChannels, BlendingModes>);
    CHECK_EQ(sizeof(BlendingModes), 1u);
}

TEST_CASE("The reciprocal of alpha is 65280 over it, and 0 for none") {
    CHECK_EQ(ReciprocalTable[0], 0);
    CHECK_EQ(ReciprocalTable[1], 65280);
    CHECK_EQ(ReciprocalTable[100], 652);
    CHECK_EQ(ReciprocalTable[255], 256);
}

TEST_CASE("Subtract takes the source from the destination") {
    CHECK_EQ(Blend8(subtract, 50, 200), 150);
    CHECK_EQ(Blend8(subtract, 200, 50), 0);
    CHECK_EQ(Blend14(subtract, 50, 200), 150);
    CHECK_EQ(Blend14(subtract, 200, 50), 0);
}

TEST_CASE("Color Dodge of a full source is full even over black") {
    CHECK_EQ(Blend8(colourDodge, 255, 0), 255);
    CHECK_EQ(Blend8(colourDodge, 254, 0), 0);
    CHECK_EQ(Blend8(colourDodge, 100, 50), 82);  // 50 * 256 / 155 = 82.58
    CHECK_EQ(Blend14(colourDodge, 16383, 0), 16383);
}

TEST_CASE("Color Burn of a black source is black even over white") {
    CHECK_EQ(Blend8(colourBurn, 0, 255), 0);
    CHECK_EQ(Blend8(colourBurn, 1, 255), 255);
    CHECK_EQ(Blend8(colourBurn, 100, 200), 115);  // -55 * 256 / 100 = -140.8, truncated -140, + 255
    CHECK_EQ(Blend14(colourBurn, 0, 16383), 0);
    CHECK_EQ(Blend14(colourBurn, 1, 16383), 16383);
}

TEST_CASE("Dodge divides by what the destination leaves") {
    CHECK_EQ(Blend8(dodge, 0, 255), 0);
    for (std::uint8_t s = 255; s > 0; --s) CHECK_EQ(Blend8(dodge, s, 255), 255);
    CHECK_EQ(Blend8(dodge, 50, 100), 82);  // 50 * 256 / 156 = 82.05; Color Dodge gives 100 * 256 / 205 = 124
    CHECK_EQ(Blend8(colourDodge, 50, 100), 124);
    CHECK_EQ(Blend14(dodge, 1, 16383), 16383);
    CHECK_EQ(Blend14(dodge, 0, 16383), 0);
}

TEST_CASE("Burn divides by the destination") {
    CHECK_EQ(Blend8(burn, 100, 255), 100);
    CHECK_EQ(Blend8(burn, 0, 255), 0);
    CHECK_EQ(Blend8(burn, 200, 100), 116);       // -55 * 256 / 101 = -139.4, truncated -139, + 255
    CHECK_EQ(Blend8(colourBurn, 200, 100), 57);  // -155 * 256 / 200 = -198.4, truncated -198, + 255
    CHECK_EQ(Blend8(burn, 100, 0), 0);
    CHECK_EQ(Blend8(burn, 255, 0), 255);
    CHECK_EQ(Blend14(burn, 100, 16383), 100);  // (100 - 16383) * 16384 / 16384 + 16383
}

TEST_CASE("Overlay turns at the middle of the destination, the hard modes at that of the source") {
    CHECK_EQ(Blend8(overlay, 100, 127), 100);    // 2 * Scale8(100, 127): 12828 + 50 = 12878 >> 8 = 50
    CHECK_EQ(Blend8(overlay, 100, 128), 101);    // 255 - 2 * Scale8(155, 127): 19813 + 77 = 19890 >> 8 = 77
    CHECK_EQ(Blend8(hardLight, 127, 100), 100);  // 2 * 50
    CHECK_EQ(Blend8(hardLight, 128, 100), 101);
    CHECK_EQ(Blend8(pinLight, 127, 200), 127);
    CHECK_EQ(Blend8(pinLight, 128, 200), 200);
    CHECK_EQ(Blend14(pinLight, 8191, 12000), 8191);
    CHECK_EQ(Blend14(pinLight, 8192, 12000), 12000);
}

// Without doubling the source: 140 over 200 would be max(200, 2 * 140 - 255) = 200 and 100 over 150 min(150, 200) =
// 150.
TEST_CASE("Pin Light compares the plain source") {
    CHECK_EQ(Blend8(pinLight, 140, 130), 140);
    CHECK_EQ(Blend8(pinLight, 100, 150), 100);
}

TEST_CASE("Soft Light at 8 bits is soft") {
    // m = Scale8(100, 50): 5128 + 20 = 5148 >> 8 = 20; Scale8(155, 205): 31903 + 124 = 32027 >> 8 = 125, c = 130;
    // Scale8(110, 100): 11128 + 43 = 11171 >> 8 = 43; 20 + 43.
    CHECK_EQ(Blend8(softLight, 50, 100), 63);
}

// m = 0. t = 8191 * 16383 + 128 = 134193281, t >> 8 = 524192, u = 134717473 >> 8 = 526240. 16383 - u = -509857, times
// 8192 is -4176748544, + 8192 = -4176740352, which wraps to 118226944 = 16384 * 7216; (118226944 + 7216) >> 14 = 7216.
TEST_CASE("Soft Light at 14 bits keeps the 8-bit rounding and wraps") { CHECK_EQ(Blend14(softLight, 0, 8192), 7216); }

TEST_CASE("Exclusion and Negation") {
    CHECK_EQ(Blend8(exclusion, 255, 200), 55);  // 200 + Scale8(-145, 255) = 200 - 145
    // -145 * 10 + 128 = -1322, >> 8 is -6; -1328 >> 8 is -6.
    CHECK_EQ(Blend8(exclusion, 10, 200), 194);
    CHECK_EQ(Blend8(negation, 100, 200), 210);  // 255 - 45
    CHECK_EQ(Blend14(negation, 16383, 16383), 0);
}

TEST_CASE("Normal takes colour and alpha of the source, destination modes the destination's colour") {
    const P8 s{10, 20, 30, 40};
    const P8 d{50, 60, 70, 80};
    CHECK(Blend8(normal, s, d) == s);
    CHECK(Blend8(destinationOnly, s, d) == d);
    CHECK(Blend8(sourceAlpha, s, d) == P8{50, 60, 70, 40});
    CHECK(Blend8(sourceLuma, s, d) == P8{50, 60, 70, 21});  // 151 * 20 + 77 * 30 + 28 * 10 = 5610, >> 8 = 21
    CHECK(Blend8(invertedAlpha, s, d) == P8{50, 60, 70, 215});
    CHECK(Blend8(invertedLuma, s, d) == P8{50, 60, 70, 234});
}

// 255 - 16383 = -16128, which is 49408 in 16 bits.
// Luma of full white: (9666 + 4915 + 1802) * 16383 >> 14 = 16382; 255 - 16382 = -16127 = 49409.
TEST_CASE("The inverted alphas take from 255 at 14 bits too") {
    const P14 s{16383, 16383, 16383, 16383};
    const P14 d{1, 2, 3, 4};
    CHECK(Blend14(invertedAlpha, s, d) == P14{1, 2, 3, 49408});
    CHECK(Blend14(sourceLuma, s, d) == P14{1, 2, 3, 16382});
    CHECK(Blend14(invertedLuma, s, d) == P14{1, 2, 3, 49409});
    CHECK(Blend14(invertedAlpha, P14{0, 0, 0, 200}, d) == P14{1, 2, 3, 55});
}

// From state 1: 1 * 214013 + 2531011 = 2745024 = 41 * 65536 + 58048, so the first number is 41.
TEST_CASE("Speckled alpha is all or nothing, and at least the number shows") {
    const P8 d{1, 2, 3, 4};
    SeedRandom(1);
    CHECK(Blend8(dissolve, P8{10, 20, 30, 41}, d) == P8{10, 20, 30, 255});
    SeedRandom(1);
    CHECK(Blend8(dissolve, P8{10, 20, 30, 40}, d) == P8{10, 20, 30, 0});
    SeedRandom(1);
    CHECK(Blend14(dissolve, P14{10, 20, 30, 41}, P14{}) == P14{10, 20, 30, 16383});
    SeedRandom(1);
    CHECK(Blend14(dissolve, P14{10, 20, 30, 40}, P14{}) == P14{10, 20, 30, 0});
}

TEST_CASE("Speckled alpha draws no number where there is no alpha") {
    SeedRandom(1);
    CHECK(Blend8(dissolve, P8{10, 20, 30, 0}, P8{}) == P8{10, 20, 30, 0});
    CHECK(Blend14(dissolve, P14{10, 20, 30, 0}, P14{}) == P14{10, 20, 30, 0});
    CHECK_EQ(Random(), 41);
}

// Blue 1 widens to 64: hue = (0 - 64) / 6 / 16383 + 1 = 0.99935, times 255 + 0.5 = 255.33.
TEST_CASE("A source of the largest hue turns grey at the destination's value") {
    const P8 s{1, 0, 255, 255};
    const P8 d{10, 200, 10, 255};
    CHECK(Blend8(hue, s, d) == P8{200, 200, 200, 255});
    CHECK(Blend8(hue, P8{0, 0, 255, 255}, d) == P8{10, 10, 200, 255});  // hue 0: red
}

TEST_CASE("What is too dark has no hue and no saturation at 8 bits") {
    // 0 is all that widens to less than 64: source black takes hue 0 and saturation 0.
    CHECK(Blend8(saturation, P8{0, 0, 0, 9}, P8{10, 200, 10, 255}) == P8{200, 200, 200, 9});
    CHECK(Blend8(hue, P8{0, 0, 0, 9}, P8{10, 200, 10, 255}) == P8{10, 10, 200, 9});
    CHECK(Blend8(value, P8{255, 255, 255, 9}, P8{0, 0, 0, 255}) == P8{255, 255, 255, 9});
    CHECK(Blend8(colour, P8{0, 0, 0, 9}, P8{10, 200, 10, 255}) == P8{200, 200, 200, 9});
}
