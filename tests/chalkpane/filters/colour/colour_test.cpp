#include <doctest/doctest.h>

#include <limits>
#include <memory>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/base/random.h"
#include "chalkpane/filters/colour/auto_eq_cc.h"
#include "chalkpane/filters/colour/black_white_cc.h"
#include "chalkpane/filters/colour/brightness_cc.h"
#include "chalkpane/filters/colour/chroma_cc.h"
#include "chalkpane/filters/colour/colour_dodge_cc.h"
#include "chalkpane/filters/colour/colour_jitter_filter.h"
#include "chalkpane/filters/colour/component_cc.h"
#include "chalkpane/filters/colour/hue_cc.h"
#include "chalkpane/filters/colour/invert_cc.h"
#include "chalkpane/filters/colour/luma_cc.h"
#include "chalkpane/filters/colour/posterize_effect.h"
#include "chalkpane/filters/colour/rgb_channel_cc.h"
#include "chalkpane/filters/colour/solarize_effect.h"
#include "chalkpane/filters/colour/subtract_cc.h"
#include "chalkpane/filters/colour/tint_filter.h"
#include "chalkpane/filters/paint_colour.h"
#include "tests/chalkpane/filters/filter_pictures.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

// What becomes of one opaque pixel, not premultiplied.
Pixel8 Run8(Filter& filter, const Pixel8& pixel) {
    Image image = Image::Colour(1, 1, Depth::Eight, AlphaForm::Straight);
    const std::uint8_t channels[] = {pixel.blue, pixel.green, pixel.red, pixel.alpha};
    std::copy(std::begin(channels), std::end(channels), image.Row8(0).begin());
    return Applied(filter, image)->GetPixel8(0, 0);
}
Pixel14 Run14(Filter& filter, const Pixel14& pixel) {
    Image image = Image::Colour(1, 1, Depth::Fourteen, AlphaForm::Straight);
    const std::uint16_t channels[] = {pixel.blue, pixel.green, pixel.red, pixel.alpha};
    std::copy(std::begin(channels), std::end(channels), image.Row14(0).begin());
    return Applied(filter, image)->GetPixel14(0, 0);
}

void SetColour(Filter& filter, std::string_view label, const Colour& colour) {
    SetParameter(filter, label, [&colour](ParameterValue& value) { value.setColour(colour); });
}

// A straight line of the curve from (0, y0) to (1, y1).
void SetCurve(Filter& filter, double y0, double y1) {
    ShapePointList line;
    line[0].setPoint(0.0, y0);
    line[0].setInHandle(0.0, y0);
    line[0].setOutHandle(0.0, y0);
    line[1].setPoint(1.0, y1);
    line[1].setInHandle(1.0, y1);
    line[1].setOutHandle(1.0, y1);
    SetParameter(filter, "LUT Graph", [&line](ParameterValue& value) { value.setGraph(line); });
}

}  // namespace

TEST_CASE("Inverting subtracts from full scale and keeps alpha") {
    InvertCC filter;
    CHECK(Run8(filter, {0, 100, 255, 7}) == Pixel8{255, 155, 0, 7});
    CHECK(Run14(filter, {0, 100, 16383, 9}) == Pixel14{16383, 16283, 0, 9});
}

// (77 * 30 + 151 * 20 + 28 * 10) >> 8 = 5610 >> 8 = 21; (4915 * 3000 + 9666 * 2000 + 1802 * 1000) >> 14 =
// 35879000 >> 14 = 2189.
TEST_CASE("Black and white is the luma of the depth") {
    BlackWhiteCC filter;
    CHECK(Run8(filter, {10, 20, 30, 200}) == Pixel8{21, 21, 21, 200});
    CHECK(Run14(filter, {1000, 2000, 3000, 5}) == Pixel14{2189, 2189, 2189, 5});
}

// 50 per cent: (10 - 200) * 0.5 + 200 = 105. 300 per cent: (100 - 200) * 3 + 200 = -100, limited.
TEST_CASE("Chroma is scaled towards the largest colour") {
    ChromaCC filter;
    SetNumber(filter, "Chroma Scale", 50);
    CHECK(Run8(filter, {10, 200, 100, 255}) == Pixel8{105, 200, 150, 255});
    SetNumber(filter, "Chroma Scale", 300);
    CHECK(Run8(filter, {10, 200, 100, 255}) == Pixel8{0, 200, 0, 255});
}

TEST_CASE("A chroma scale of 1 per cent skips the filter; 100 runs it to no effect") {
    ChromaCC filter;
    SetNumber(filter, "Chroma Scale", 1);
    CHECK(Run8(filter, {10, 200, 100, 255}) == Pixel8{10, 200, 100, 255});
    SetNumber(filter, "Chroma Scale", 100);
    CHECK(Run8(filter, {10, 200, 100, 255}) == Pixel8{10, 200, 100, 255});
    SetNumber(filter, "Chroma Scale", 1.01);  // (10 - 200) * 0.0101 + 200 = 198.08
    CHECK(Run8(filter, {10, 200, 100, 255}) == Pixel8{198, 200, 198, 255});
}

// Half of red 8000: 8 bits 0.5 * 0.015564915 * 8000 = 62.26 -> 62; 14 bits 4000.
TEST_CASE("Adding takes its offset from the colour") {
    SubtractCC filter;
    SetColour(filter, "Source Color", {8000, 16383, 0});
    SetNumber(filter, "Add", 0.5);
    CHECK(Run8(filter, {10, 200, 100, 1}) == Pixel8{10, 255, 162, 1});
    CHECK(Run14(filter, {10, 200, 100, 1}) == Pixel14{10, 8391, 4100, 1});
    SetNumber(filter, "Add", -1);
    CHECK(Run8(filter, {10, 200, 200, 1}) == Pixel8{10, 0, 76, 1});  // 124.519 truncates to 124
}

// 200 + 100 + 10 = 310, which is 54 in 8 bits; 12000 + 9000 + 8000 = 29000 fits 16 bits and stays.
TEST_CASE("The channel mixer wraps in the chosen channel") {
    RGBChannelCC filter;
    SetNumber(filter, "Green Input", 1);
    SetNumber(filter, "Blue Input", 1);
    CHECK(Run8(filter, {10, 200, 100, 1}) == Pixel8{10, 200, 54, 1});
    CHECK(Run14(filter, {8000, 12000, 9000, 1}) == Pixel14{8000, 12000, 29000, 1});
}

TEST_CASE("The channel mixer as made is a plain copy") {
    RGBChannelCC filter;
    CHECK(filter.IsIdentity(Image(1, 1, PixelType::Colour, Depth::Eight, AlphaForm::Straight)));
    SetNumber(filter, "Component", 2);
    CHECK_FALSE(filter.IsIdentity(Image(1, 1, PixelType::Colour, Depth::Eight, AlphaForm::Straight)));
}

TEST_CASE("Brightness as made is no identity, and one with all settings at 0") {
    BrightnessCC filter;
    CHECK_FALSE(filter.IsIdentity(Image(1, 1, PixelType::Colour, Depth::Eight, AlphaForm::Straight)));
    for (const auto* label : {"Brightness", "Contrast", "Gamma", "Saturation"}) SetNumber(filter, label, 0);
    CHECK(filter.IsIdentity(Image(1, 1, PixelType::Colour, Depth::Eight, AlphaForm::Straight)));
}

// Brightness 0.5 is 150 per cent: 100 / 255 * 1.5 - 0.5 + 0.5 = 0.588235, times 255 + 0.5 = 150.5 -> 150; 200 is
// limited.
TEST_CASE("Brightness goes through a table") {
    BrightnessCC filter;
    for (const auto* label : {"Contrast", "Gamma", "Saturation"}) SetNumber(filter, label, 0);
    CHECK(Run8(filter, {100, 200, 0, 9}) == Pixel8{150, 255, 0, 9});
}

// Saturation 1 is 200 per cent: k = 256 (8 bits) and 16384. Brightness 0.2 is 120 per cent.
// 8 bits: 100 becomes 120, 50 becomes 60, 0 stays. L = (77 * 0 + 151 * 60 + 28 * 120) >> 8 = 12420 >> 8 = 48;
// 120 + 72 = 192, 60 + 12 = 72, 0 - 48 limited to 0.
// 14 bits: 6000 becomes 7200, 3000 becomes 3600; L of the values before: (9666 * 3000 + 1802 * 6000) >> 14 =
// 39810000 >> 14 = 2429; 7200 + 4771 = 11971, 3600 + 1171 = 4771.
TEST_CASE("Saturation takes the luma behind the table at 8 bits, before it at 14") {
    BrightnessCC filter;
    SetNumber(filter, "Brightness", 0.2);
    SetNumber(filter, "Contrast", 0);
    SetNumber(filter, "Gamma", 0);
    SetNumber(filter, "Saturation", 1);
    CHECK(Run8(filter, {100, 50, 0, 9}) == Pixel8{192, 72, 0, 9});
    CHECK(Run14(filter, {6000, 3000, 0, 9}) == Pixel14{11971, 4771, 0, 9});
}

TEST_CASE("Fresh graphs are plain copies at both depths") {
    LumaCC luma;
    ComponentCC component;
    for (Filter* filter : {static_cast<Filter*>(&luma), static_cast<Filter*>(&component)}) {
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            const Image source = NoisePicture({0, 0, 40, 40}, PixelType::Colour, depth, AlphaForm::Premultiplied, 5);
            const Rect region(3, 3, 9, 9);
            CHECK(SamePixels(*Applied(*filter, source, &region), source));  // the copy ignores the region
        }
    }
}

// The curve answers a half everywhere: every entry is 127 (127.5 truncated). White's luma by the 14-bit weights is
// 16383 * 255 >> 14 = 254, so the ratio is 127 / 254 = 0.5 and 255 becomes 127; with the 8-bit weights the luma would
// be 255 and the ratio 0.498, 127.0 truncated to 126 or 127.
TEST_CASE("The luma curve keeps proportions and weighs with 14 bits") {
    LumaCC filter;
    SetCurve(filter, 0.5, 0.5);
    CHECK(Run8(filter, {255, 255, 255, 4}) == Pixel8{127, 127, 127, 4});
    CHECK(Run8(filter, {254, 254, 254, 4}) == Pixel8{127, 127, 127, 4});  // luma 253, ratio 0.50198, 127.5
    CHECK(Run8(filter, {0, 0, 0, 4}) == Pixel8{0, 0, 0, 4});
}

TEST_CASE("Each component has its own curve") {
    ComponentCC filter;
    SetCurve(filter, 1.0, 0.0);  // t[i] = 255 - i, but for the rounding of the curve
    const auto run = [&filter](int component, const Pixel8& pixel) {
        SetNumber(filter, "Component", component);
        return Run8(filter, pixel);
    };
    // The ends of a curve are its points, so the numbers are exact there.
    CHECK(run(0, {0, 0, 255, 9}) == Pixel8{0, 0, 0, 9});        // Brightness: f = t[255] = 0
    CHECK(run(0, {0, 0, 0, 9}) == Pixel8{255, 255, 255, 9});    // black: all become t[0]
    CHECK(run(1, {0, 0, 255, 9}) == Pixel8{255, 255, 255, 9});  // Saturation: n = t[255] = 0 takes all to the largest
    CHECK(run(1, {7, 7, 7, 9}) == Pixel8{7, 7, 7, 9});          // no spread, nothing
    CHECK(run(2, {0, 0, 255, 9}) == Pixel8{0, 0, 0, 9});        // Red
    CHECK(run(3, {0, 255, 255, 9}) == Pixel8{0, 0, 255, 9});    // Green
    CHECK(run(4, {255, 255, 0, 9}) == Pixel8{0, 255, 0, 9});    // Blue
    CHECK(run(5, {9, 8, 255, 9}) == Pixel8{9, 8, 0, 9});        // Cyan: 255 - t[0] = 0
    CHECK(run(6, {9, 0, 8, 9}) == Pixel8{9, 255, 8, 9});        // Magenta: 255 - t[255] = 255
    CHECK(run(7, {255, 9, 8, 9}) == Pixel8{0, 9, 8, 9});        // Yellow
    // Black: inks 0, 255, 55; K = 0, d = t[0] - 0 = 255; all inks reach 255, all colours 0.
    CHECK(run(8, {255, 0, 200, 9}) == Pixel8{0, 0, 0, 9});
    CHECK(run(9, {255, 0, 255, 9}) == Pixel8{0, 255, 0, 9});  // All
    CHECK(run(9, {255, 0, 255, 0}) == Pixel8{0, 0, 0, 0});    // no alpha, no colour
}

TEST_CASE("Equalising leaves a picture of one colour as it is") {
    for (const std::int32_t side : {1, 4, 30}) {
        Image source = Image::Colour(side, side, Depth::Eight, AlphaForm::Straight);
        for (std::int32_t y = 0; y < side; ++y) std::fill(source.Row8(y).begin(), source.Row8(y).end(), 90);
        AutoEqCC filter;
        CHECK(SamePixels(*Applied(filter, source), source));
    }
}

// 40 pixels: 2 at 0, 19 at 64, 17 at 128, 2 at 200. The tail is 2: lo = 0, hi = 200, med (20 reached) = 64.
// g = log 0.5 / log 0.32 = 0.60832; 128 gains 200 * 0.64 ^ 0.60832 / 128: 200 * 0.76224 = 152.4; 64 gains to
// 200 * 0.5 = 100; at or above hi, and at 0, nothing changes.
TEST_CASE("Equalising brings the median to the middle") {
    Image source = Image::Colour(40, 1, Depth::Eight, AlphaForm::Straight);
    const auto row = source.Row8(0);
    for (std::size_t x = 0; x < 40; ++x) {
        const int level = x < 2 ? 0 : (x < 21 ? 64 : (x < 38 ? 128 : 200));
        row[4 * x] = static_cast<std::uint8_t>(level / 2);
        row[4 * x + 1] = static_cast<std::uint8_t>(level);
        row[4 * x + 3] = 255;
    }
    AutoEqCC filter;
    const auto result = Applied(filter, source);
    CHECK(result->GetPixel8(0, 0) == Pixel8{0, 0, 0, 255});
    CHECK(result->GetPixel8(25, 0) == Pixel8{76, 152, 0, 255});
    CHECK(result->GetPixel8(39, 0) == Pixel8{100, 200, 0, 255});
    // 64 lands on 100 but for the rounding of the power: 99 or 100.
    CHECK(result->GetPixel8(10, 0).green >= 99);
    CHECK(result->GetPixel8(10, 0).green <= 100);
}

// The main setting is worth a hundredth: 12000 is 120 degrees, and red becomes green. A range setting is not: white's
// value is 1, where highlights have (2 (255 - 128) / 256) / 360, so 120 / 0.9921875 of a pure colour at full value is
// 120 degrees.
TEST_CASE("The main hue setting is a hundredth of a degree, a range setting a degree") {
    HueCC filter;
    SetNumber(filter, "Hue Rotation", 12000);
    CHECK(Run14(filter, {0, 0, 16383, 1}) == Pixel14{0, 16383, 0, 1});
    HueCC range;
    SetNumber(range, "Highlight Hue Rotation", 120.0 / 0.9921875);
    const Pixel8 green = Run8(range, {0, 0, 255, 1});
    CHECK(green.green == 255);
    CHECK(green.red <= 1);
    CHECK(green.blue == 0);
}

TEST_CASE("Hue settings below 1e-5 are a plain copy") {
    HueCC filter;
    SetNumber(filter, "Hue Rotation", 9e-6);
    CHECK(filter.IsIdentity(Image(1, 1, PixelType::Colour, Depth::Eight, AlphaForm::Straight)));
    SetNumber(filter, "Midtone Hue Rotation", 1e-4);
    CHECK_FALSE(filter.IsIdentity(Image(1, 1, PixelType::Colour, Depth::Eight, AlphaForm::Straight)));
}

TEST_CASE("Colour jitter draws once a run, and rests after a draw of nothing") {
    const Image source = NoisePicture({0, 0, 20, 20}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 8);
    SeedRandom(3);
    static_cast<void>(Random());
    const std::int32_t second = Random();
    SeedRandom(3);
    ColourJitterFilter filter;
    SetNumber(filter, "Hue Rotation", 100);
    Applied(filter, source);
    CHECK_EQ(Random(), second);
    SetNumber(filter, "Hue Rotation", 0);
    Applied(filter, source);  // draws a turn of 0
    SetNumber(filter, "Hue Rotation", 100);
    SeedRandom(3);
    CHECK(SamePixels(*Applied(filter, source), source));
    CHECK_NE(Random(), second);                                          // nothing was drawn: this is the first number
    CHECK_FALSE(SamePixels(*Applied(*filter.Clone(), source), source));  // a copy starts afresh
}

// The generator's first states after 1: 1 * 214013 + 2531011 = 2745024, >> 16 = 41; 2745024 * 214013 + 2531011 wraps to
// 3357800067, of which bits 16 .. 30 are 18467.
TEST_CASE("Colour jitter draws even where its region misses the picture") {
    const Image source = NoisePicture({0, 0, 3, 3}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 8);
    const Rect missed(9, 9, 9, 9);
    SeedRandom(1);
    ColourJitterFilter filter;
    const auto blank = Applied(filter, source, &missed);
    CHECK(blank->Bounds() == source.Bounds());
    CHECK_EQ(Random(), 18467);
}

// 4 levels: 8 bits ((4 * i) >> 8) * 255 / 3: 63 -> 0, 64 -> 85, 128 -> 170, 255 -> 3 * 85 = 255.
TEST_CASE("Posterizing leaves a few levels") {
    PosterizeEffect filter;
    SetNumber(filter, "Levels", 4);
    CHECK(Run8(filter, {63, 64, 255, 100}) == Pixel8{0, 85, 255, 100});
    CHECK(Run14(filter, {4095, 4096, 16383, 100}) == Pixel14{0, 5461, 16383, 100});
}

// Amount 0.5: T = 127, up = down = 2. 0 -> 254, 127 -> 0, 128 -> 2, 255 -> 256 limited.
TEST_CASE("Solarizing turns black to white and the threshold to black") {
    SolarizeEffect filter;
    CHECK(Run8(filter, {0, 127, 128, 9}) == Pixel8{254, 0, 2, 9});
    CHECK_EQ(Run8(filter, {255, 0, 0, 9}).blue, 255);
    SetNumber(filter, "Amount", 0);  // T = 0, up infinite, down = 1: 0 * infinity is NaN
    CHECK(Run8(filter, {0, 1, 255, 9}) == Pixel8{0, 1, 255, 9});
}

// Amount 100 at 14 bits: T = 1638300, up = 1 / 100. (1638300 - 16383) / 100 = 16219.17; (1638300 - 0) / 100 = 16383.
// At 8 bits T = 25500: (25500 - 55) / 100 = 254.45, (25500 - 0) / 100 = 255. Amount -100 at 8 bits: T = -25500 and down
// = 1 / 101: (55 + 25500) / 101 = 253.02. Amount 1e9 at 8 bits: T would be 2.55e11 and is the largest number of 32
// bits, 2147483647; up = 1e-9: 2.147 for all.
TEST_CASE("Solarizing with a threshold far off the scale keeps to its formula") {
    SolarizeEffect filter;
    SetNumber(filter, "Amount", 100);
    CHECK(Run14(filter, {16383, 0, 0, 9}) == Pixel14{16219, 16383, 16383, 9});
    CHECK(Run8(filter, {55, 0, 0, 9}) == Pixel8{254, 255, 255, 9});
    SetNumber(filter, "Amount", -100);
    CHECK_EQ(Run8(filter, {55, 0, 0, 9}).blue, 253);
    SetNumber(filter, "Amount", 1e9);
    CHECK(Run8(filter, {255, 1, 0, 9}) == Pixel8{2, 2, 2, 9});
}

// Full main tint with red alone: Lt = (77 * 16383) >> 8 = 4927. Luma of (90, 90, 90) is 90: 90 * 16383 / 4927 + 0.5 =
// 299.7, limited to 255. Reached luma (77 * 255) >> 8 = 76, below 90, but nothing is kept: 255, 0, 0.
TEST_CASE("A full tint is the colour at the pixel's luma") {
    TintFilter filter;
    SetColour(filter, "Tint Color", {16383, 0, 0});
    SetNumber(filter, "Tint Amount", 1);
    CHECK(Run8(filter, {90, 90, 90, 200}) == Pixel8{0, 0, 255, 200});
    // Keeping highlights: f = (90 - 76) / (255 - 76) = 0.0782; green and blue + trunc(0.0782 * 255.49 + 0.5) = 20.
    SetNumber(filter, "Keep Highlights", 1);
    CHECK(Run8(filter, {90, 90, 90, 200}) == Pixel8{20, 20, 255, 200});
}

// Half of it: k = 128; luma (256 * 90 + 128) >> 8 = 90; 90 + ((255 - 90) * 128 + 128 >> 8) = 90 + 83 = 173,
// 90 + ((0 - 90) * 128 + 128 >> 8) = 90 - 45 = 45 (-11392 >> 8 = -44.5 -> -45).
TEST_CASE("Half a tint lies half-way, rounded at 8 bits") {
    TintFilter filter;
    SetColour(filter, "Tint Color", {16383, 0, 0});
    SetNumber(filter, "Tint Amount", 0.5);
    CHECK(Run8(filter, {90, 90, 90, 200}) == Pixel8{45, 45, 173, 200});
}

TEST_CASE("A tint clears the colour where there is no alpha") {
    TintFilter filter;
    SetColour(filter, "Tint Color", {16383, 0, 0});
    SetNumber(filter, "Shadow Tint Amount", 0.5);
    CHECK(Run8(filter, {90, 80, 70, 0}) == Pixel8{0, 0, 0, 0});
    TintFilter none;
    CHECK(Run8(none, {90, 80, 70, 0}) == Pixel8{90, 80, 70, 0});  // no amount, a plain copy
}

TEST_CASE("The forms with the paint's colour take it") {
    currentPaintColour = {16383, 0, 0};
    TintFilter tint(true);
    SetNumber(tint, "Tint Amount", 1);
    SetNumber(tint, "Keep Highlights", 0);
    CHECK(Run8(tint, {90, 90, 90, 200}) == Pixel8{0, 0, 255, 200});
    ColourDodgeCC dodge(true);
    SetNumber(dodge, "Amount", 1);
    SetNumber(dodge, "Mode", 0);
    CHECK_FALSE(Run8(dodge, {90, 90, 90, 200}) == Pixel8{0, 0, 255, 200});
    SetNumber(dodge, "Use Paint Color", 1);
    CHECK(Run8(dodge, {90, 90, 90, 200}) == Pixel8{0, 0, 255, 200});
    CHECK_EQ(tint.ParameterCount(), 16);
    CHECK_EQ(TintFilter().ParameterCount(), 15);
    CHECK_EQ(ColourDodgeCC().ParameterCount(), 4);
    currentPaintColour = {};
}

// Amount 1: pow(1, 1.5) = 1. Luma of (100, 100, 100) is 100. Weights: shadows 255 - 200 = 55, s = 55 + 0; midtones
// 255 - 2 * 28 = 199, s = 199 + 1 = 200; highlights 200 - 256 < 0. With white in mode 0: (155 * 55) >> 8 = 33,
// (155 * 200) >> 8 = 121; everywhere s = 256.
TEST_CASE("A dodge weighs by its range of luma") {
    ColourDodgeCC filter;
    SetColour(filter, "Color", {16383, 16383, 16383});
    SetNumber(filter, "Amount", 1);
    SetNumber(filter, "Mode", 0);
    const std::vector<int> wanted{255, 133, 221, 100};
    for (int range = 0; range < 4; ++range) {
        SetNumber(filter, "Range", range);
        CHECK_EQ(Run8(filter, {100, 100, 100, 9}).green, wanted[static_cast<std::size_t>(range)]);
    }
}

TEST_CASE("A dodge as made is a plain copy") {
    ColourDodgeCC filter;
    CHECK(Run8(filter, {100, 90, 80, 9}) == Pixel8{100, 90, 80, 9});
}

TEST_CASE("Colour filters leave masks, give the same with one worker and many, and survive every setting") {
    std::vector<std::unique_ptr<Filter>> filters;
    filters.push_back(std::make_unique<AutoEqCC>());
    filters.push_back(std::make_unique<BlackWhiteCC>());
    filters.push_back(std::make_unique<BrightnessCC>());
    filters.push_back(std::make_unique<ChromaCC>());
    filters.push_back(std::make_unique<ColourDodgeCC>());
    filters.push_back(std::make_unique<ComponentCC>());
    filters.push_back(std::make_unique<HueCC>());
    filters.push_back(std::make_unique<InvertCC>());
    filters.push_back(std::make_unique<LumaCC>());
    filters.push_back(std::make_unique<PosterizeEffect>());
    filters.push_back(std::make_unique<RGBChannelCC>());
    filters.push_back(std::make_unique<SolarizeEffect>());
    filters.push_back(std::make_unique<SubtractCC>());
    filters.push_back(std::make_unique<TintFilter>());
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (const auto& filter : filters) {
        CAPTURE(filter->Name());
        const Image mask = NoisePicture({0, 0, 20, 20}, PixelType::Mask, Depth::Eight, AlphaForm::Straight, 4);
        CHECK(SamePixels(*Applied(*filter, mask), mask));
        const DataSet* const values = filter->MakeValues(false, nullptr, nullptr);
        for (const double setting : {0.0, 1.0, -1.0, 100.0, 255.0, 1e30, -1e30, infinite, std::nan("")}) {
            CAPTURE(setting);
            for (const auto& value : *values) {
                value->setDouble(setting);
                value->setFloat(static_cast<float>(setting));
                value->setInteger(std::abs(setting) < 1e9 ? static_cast<std::int32_t>(setting) : -5);
                value->setEnumeration(setting > 0 && setting < 256 ? static_cast<std::uint8_t>(setting) : 255);
                value->setColour({12000, 30, 16383});
                filter->setParameter(value.get());
            }
            for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                const Image source =
                    NoisePicture({-5, 2, 90, 70}, PixelType::Colour, depth, AlphaForm::Premultiplied, 6);
                MultiProcessor::Restart(1);
                const auto one = Applied(*filter, source);
                MultiProcessor::Restart(3);
                const auto many = Applied(*filter, source);
                REQUIRE(one);
                CHECK(SamePixels(*one, *many));
            }
        }
    }
    MultiProcessor::Restart(0);
}
