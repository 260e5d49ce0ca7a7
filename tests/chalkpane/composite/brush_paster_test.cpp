#include "chalkpane/composite/brush_paster.h"

#include <doctest/doctest.h>

#include <limits>

#include "tests/chalkpane/composite/paste_fixture.h"

namespace chalkpane {

namespace {

struct Dab {
    Depth depth = Depth::Eight;
    PasteBehaviour behaviour = PasteBehaviour::Over;
    double opacity = 1.0;
    std::uint8_t mode = 0;
    ChannelValues source{};
    int mask = 255;
    ChannelValues target{};
    const Image* clip = nullptr;
    Clip clipInverted = Clip::Limiting;
};

// The pixel that a dab of one pixel leaves at (0, 0).
ChannelValues Painted(const Dab& dab) {
    const Image source = FlatImage(onePixel, PixelType::Colour, dab.depth, dab.source);
    const Image mask = FlatImage(onePixel, PixelType::Mask, dab.depth, {dab.mask});
    Image target = FlatImage(onePixel, PixelType::Colour, dab.depth, dab.target, AlphaForm::Premultiplied);
    BrushPaster paster;
    paster.SetOpacity(dab.opacity);
    paster.SetMode(dab.mode);
    paster.Paste(source, &mask, target, dab.behaviour, onePixel, 0, dab.clip, dab.clipInverted);
    return ValuesAt(target, 0, 0);
}

// What comes of an input.
struct Expected {
    int input;
    int wanted;
};

Image ClipOf(int value, Depth depth = Depth::Eight) { return FlatImage(onePixel, PixelType::Mask, depth, {value}); }

}  // namespace

// w = ((256 * 256) >> 8) * 255 = 65280, v = 256.
// 200: (200 * 65280 + 100 * 256) >> 16 = 13081600 / 65536 = 199.6. 0 over 255: 255 * 256 / 65536 = 0.99.
// 255 over 0: 255 * 65280 / 65536 = 254.004. Alpha: (50 * 256 + 65280 * 255) / 65536 = 254.2.
TEST_CASE("one full 8-bit dab does not quite replace the target") {
    CHECK_EQ(Painted({.source = {200, 0, 255, 255}, .target = {100, 255, 0, 50}}), ChannelValues{199, 0, 254, 254});
}

// Scale14(16383, 16383) = 16383, so A is full: d = s exactly.
TEST_CASE("one full 14-bit dab replaces the target") {
    CHECK_EQ(
        Painted(
            {.depth = Depth::Fourteen, .source = {200, 0, 16383, 16383}, .mask = 16383, .target = {100, 99, 98, 97}}),
        ChannelValues{200, 0, 16383, 16383});
}

// Opacity 1.0 * 255.001 truncates to 255; 1.1 would be 280 and is clamped to 255.
TEST_CASE("opacity stops at full scale") {
    const Dab dab{.source = {200, 0, 255, 255}, .target = {100, 255, 0, 50}};
    Dab strong = dab;
    strong.opacity = 1.1;
    CHECK_EQ(Painted(strong), Painted(dab));
    strong.opacity = std::numeric_limits<double>::infinity();
    CHECK_EQ(Painted(strong), Painted(dab));
}

// 0.5 * 255.001 = 127. w = 256 * 127 = 32512, v = 33024.
// (255 * 32512 + 0) >> 16 = 8290560 / 65536 = 126.5; alpha the same.
TEST_CASE("half opacity at 8 bits truncates") {
    CHECK_EQ(Painted({.opacity = 0.5, .source = {255, 0, 0, 255}}), ChannelValues{126, 0, 0, 126});
}

// m = 100: 100 + 0 = 100; alpha 200: 200 + 1 = 201. (100 * 201) >> 8 = 78; w = 78 * 255 = 19890; v = 45646.
// (240 * 19890 + 10 * 45646) >> 16 = 5230060 / 65536 = 79.8; alpha (20 * 45646 + 19890 * 255) >> 16 = 91.3.
TEST_CASE("mask and source alpha of an over dab widen by their top bit") {
    CHECK_EQ(Painted({.source = {240, 240, 240, 200}, .mask = 100, .target = {10, 10, 10, 20}}),
             ChannelValues{79, 79, 79, 91});
}

// 8 bits, mask 255: a = 255, A = Scale8(0, 255) = 0; d = Scale8(d, 0) + Scale8(s, 0) = 0, da = 0.
// Mask 128: a = 128; d = Scale8(200, 127) = t = 25400 + 128 = 25528, (25528 + 99) >> 8 = 100.
TEST_CASE("replacing by a transparent source lowers alpha") {
    const Dab dab{.behaviour = PasteBehaviour::Replace, .source = {9, 9, 9, 0}, .target = {200, 200, 200, 200}};
    CHECK_EQ(Painted(dab), ChannelValues{0, 0, 0, 0});
    Dab half = dab;
    half.mask = 128;
    CHECK_EQ(Painted(half), ChannelValues{100, 100, 100, 100});
}

TEST_CASE("compositing a transparent source does nothing") {
    const ChannelValues target{200, 150, 100, 220};
    CHECK_EQ(Painted({.source = {9, 9, 9, 0}, .target = target}), target);
    CHECK_EQ(Painted({.depth = Depth::Fourteen, .source = {9, 9, 9, 0}, .mask = 16383, .target = target}), target);
}

// a = Scale8(255, 255) = 255, A = Scale8(128, 255) = 128: d = Scale8(100, 0) + Scale8(200, 128) = 100, da = 128.
// Scale8(200, 128): 25600 + 128 = 25728, (25728 + 100) >> 8 = 100.
TEST_CASE("replacing moves towards the source pixel") {
    CHECK_EQ(
        Painted({.behaviour = PasteBehaviour::Replace, .source = {200, 200, 200, 128}, .target = {77, 77, 77, 255}}),
        ChannelValues{100, 100, 100, 128});
}

TEST_CASE("no opacity, a negative one and one that is NaN change nothing") {
    const ChannelValues target{1, 2, 3, 4};
    for (const double opacity : {0.0, -0.0, -1.0, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        CAPTURE(opacity);
        CHECK_EQ(Painted({.opacity = opacity, .source = {255, 255, 255, 255}, .target = target}), target);
        CHECK_EQ(Painted({.behaviour = PasteBehaviour::Replace, .opacity = opacity, .mode = 4, .target = target}),
                 target);
    }
}

TEST_CASE("an empty mask changes nothing") {
    const ChannelValues target{1, 2, 3, 4};
    for (const auto mode : {std::uint8_t{0}, std::uint8_t{4}}) {
        for (const auto behaviour : {PasteBehaviour::Over, PasteBehaviour::Replace}) {
            CHECK_EQ(
                Painted({.behaviour = behaviour, .mode = mode, .source = {9, 9, 9, 255}, .mask = 0, .target = target}),
                target);
        }
    }
}

// Mode 0 at 8 bits: t = (200 * 255) >> 8 = 199, p = 199 + (199 >> 7) = 200. w = 256 * 200 = 51200:
// (255 * 51200) >> 16 = 199.2.
// Inverted, clip 55: reduced by 255 - 55 = 200, the same. A clip of 0 inverted, and of 255 limiting, reduce nothing.
TEST_CASE("a clip reduces the opacity of mode 0 by a shift") {
    Dab dab{.source = {255, 255, 255, 255}};
    const Image limiting = ClipOf(200);
    dab.clip = &limiting;
    CHECK_EQ(Painted(dab), ChannelValues{199, 199, 199, 199});
    const Image inverted = ClipOf(55);
    dab.clip = &inverted;
    dab.clipInverted = Clip::Inverted;
    CHECK_EQ(Painted(dab), ChannelValues{199, 199, 199, 199});
    const Image nothing = ClipOf(0);
    dab.clip = &nothing;
    CHECK_EQ(Painted(dab), ChannelValues{254, 254, 254, 254});
    const Image full = ClipOf(255);
    dab.clip = &full;
    CHECK_EQ(Painted(dab), ChannelValues{0, 0, 0, 0});
    dab.clipInverted = Clip::Limiting;
    CHECK_EQ(Painted(dab), ChannelValues{254, 254, 254, 254});
}

// opacity 0.5 is 127. Clip 254, mode 0: t = (254 * 127) >> 8 = 126, p = 126 + (126 >> 7) = 126. Replace: a =
// Scale8(126, 255) = 126, A = Scale8(255, 126) = 126: da = 126.
// In a blended paste p = Scale8(254, 127): 32258 + 128 = 32386, (32386 + 126) >> 8 = 127; A = 127: da = 127.
TEST_CASE("a blended paste reduces by the rounded product instead") {
    const Image clip = ClipOf(254);
    Dab dab{.behaviour = PasteBehaviour::Replace, .opacity = 0.5, .source = {0, 0, 0, 255}, .clip = &clip};
    CHECK_EQ(Painted(dab)[3], 126);
    dab.mode = 1;
    CHECK_EQ(Painted(dab)[3], 127);
}

// 14 bits, clip 8192, opacity full: t = (8192 * 16383) >> 14 = 8191, p = 8191 + (8191 >> 13) = 8191.
// A = Scale14(16383, 8191) = 8191. Blended: p = Scale14(8192, 16383) = 8192.
// Inverted with clip 8191: 16383 - 8191 = 8192, the same.
TEST_CASE("at 14 bits the clip reduces likewise") {
    for (const Clip clipInverted : {Clip::Limiting, Clip::Inverted}) {
        const Image clip = ClipOf(clipInverted == Clip::Limiting ? 8192 : 8191, Depth::Fourteen);
        Dab dab{.depth = Depth::Fourteen,
                .source = {0, 0, 0, 16383},
                .mask = 16383,
                .clip = &clip,
                .clipInverted = clipInverted};
        CHECK_EQ(Painted(dab)[3], 8191);
        dab.mode = 1;
        CHECK_EQ(Painted(dab)[3], 8192);
    }
}

TEST_CASE("an inverted clip that lies elsewhere does nothing, a limiting one ends the paste") {
    const Image far = FlatImage({5, 5, 9, 9}, PixelType::Mask, Depth::Eight, {255});
    Dab dab{.source = {255, 255, 255, 255}, .clip = &far, .clipInverted = Clip::Inverted};
    CHECK_EQ(Painted(dab), ChannelValues{254, 254, 254, 254});
    dab.clipInverted = Clip::Limiting;
    CHECK_EQ(Painted(dab), ChannelValues{0, 0, 0, 0});
}

// Target transparent: t = Scale(0, A) = 0, so d = Scale8(0, b) + Scale8(255 - A, d) = Scale8(127, 100) =
// 12700 + 128 = 12828, (12828 + 50) >> 8 = 50. da = 0 + 128 - 0.
TEST_CASE("a blended replace on a transparent target adds alpha and no colour") {
    CHECK_EQ(Painted({.behaviour = PasteBehaviour::Replace,
                      .mode = 1,
                      .source = {250, 250, 250, 255},
                      .mask = 128,
                      .target = {100, 100, 100, 0}}),
             ChannelValues{50, 50, 50, 128});
}

// The same over: u = Scale8(255, 128) = 128, so Scale8(250, 128) = 32000 + 128 = 32128, (32128 + 125) >> 8 = 125 joins:
// 0 + 125 + 50 = 175.
TEST_CASE("a blended over on a transparent target brings its colour") {
    CHECK_EQ(Painted({.mode = 1, .source = {250, 250, 250, 255}, .mask = 128, .target = {100, 100, 100, 0}}),
             ChannelValues{175, 175, 175, 128});
}

// Multiply onto an opaque target: b = Scale8(100, 200) = 20128 -> (20128 + 78) >> 8 = 78. A = 128:
// Scale8(78, 128) = 9984 + 128 = 10112, (10112 + 39) >> 8 = 39; Scale8(200, 127) = 100. d = 139; alpha stays full.
TEST_CASE("a blended paste onto an opaque target mixes the blended colour in") {
    for (const auto behaviour : {PasteBehaviour::Over, PasteBehaviour::Replace})
        CHECK_EQ(Painted({.behaviour = behaviour,
                          .mode = 4,
                          .source = {100, 100, 100, 255},
                          .mask = 128,
                          .target = {200, 200, 200, 255}}),
                 ChannelValues{139, 139, 139, 255});
}

// m * op * 1.003921627998352 = 255 * 256 * 1.0039... = 65536.003, f = 65536; v = (256 * 65536) >> 8 = 65536:
// (65536 * 40 + 0 * 200 + 32768) >> 16 = 40.
// m = 128: f = truncate(32768 * 1.003921627998352) = 32896; v = 32896; (32896 * 40 + 32640 * 200 + 32768) >> 16 =
// 7876608 / 65536 = 120.2.
TEST_CASE("a paste into a mask takes the red channel") {
    const Image source = FlatImage(onePixel, PixelType::Colour, Depth::Eight, {1, 2, 40, 255});
    for (const Expected& expected : {Expected{255, 40}, Expected{128, 120}, Expected{0, 200}}) {
        CAPTURE(expected.input);
        const Image mask = FlatImage(onePixel, PixelType::Mask, Depth::Eight, {expected.input});
        Image target = FlatImage(onePixel, PixelType::Mask, Depth::Eight, {200});
        BrushPaster().PasteToMask(source, &mask, target, onePixel);
        CHECK_EQ(ValuesAt(target, 0, 0)[0], expected.wanted);
    }
}

// 14 bits: m * op * 0.00024415552616119385 = 16383 * 16384 * ... = 65536.000-something, f = 65536, v = 65536: value.
// With source alpha 8191: v = ((8191 + 0) * 65536) >> 14 = 32764: (32764 * 1000 + 0 + 32768) >> 16 = 500.4.
TEST_CASE("a constant goes into a mask by the source's alpha, and what it lacks is lost") {
    BrushPaster paster;
    const Image mask = FlatImage(onePixel, PixelType::Mask, Depth::Fourteen, {16383});
    for (const Expected& expected : {Expected{16383, 1000}, Expected{8191, 500}}) {
        CAPTURE(expected.input);
        const Image source = FlatImage(onePixel, PixelType::Colour, Depth::Fourteen, {1, 2, 3, expected.input});
        Image target = FlatImage(onePixel, PixelType::Mask, Depth::Fourteen, {9000});
        paster.PasteValueToMask(source, &mask, target, onePixel, 1000);
        CHECK_EQ(ValuesAt(target, 0, 0)[0], expected.wanted);
    }
}

// A source of one channel is value and alpha at once: sa = 200, v = (201 * 65536) >> 8 = 51456;
// (51456 * 200 + 0 + 32768) >> 16 = 157.5.
TEST_CASE("a one-channel source of a mask paste is its own alpha") {
    const Image source = FlatImage(onePixel, PixelType::Mask, Depth::Eight, {200});
    Image target = FlatImage(onePixel, PixelType::Mask, Depth::Eight, {10});
    BrushPaster().PasteToMask(source, nullptr, target, onePixel);
    CHECK_EQ(ValuesAt(target, 0, 0)[0], 157);
}

// 0.5 * 256.01 = 128; f = truncate(255 * 128 * 1.003921627998352) = 32768; v = 32768:
// (32768 * 40 + 32768 * 200 + 32768) >> 16 = 120.5.
TEST_CASE("a mask paste has an opacity scale of its own") {
    const Image source = FlatImage(onePixel, PixelType::Colour, Depth::Eight, {1, 2, 40, 255});
    Image target = FlatImage(onePixel, PixelType::Mask, Depth::Eight, {200});
    BrushPaster paster;
    paster.SetOpacity(0.5);
    paster.PasteToMask(source, nullptr, target, onePixel);
    CHECK_EQ(ValuesAt(target, 0, 0)[0], 120);
    paster.SetOpacity(-1.0);
    paster.PasteToMask(source, nullptr, target, onePixel);
    CHECK_EQ(ValuesAt(target, 0, 0)[0], 120);
}

TEST_CASE("a paster needs nothing around the dab") {
    CHECK_EQ(SharedPaster().InputRegion({1, 2, 3, 4}), Rect(1, 2, 3, 4));
    CHECK_EQ(SharedPaster().OutputRegion({1, 2, 3, 4}), Rect(1, 2, 3, 4));
    CHECK_EQ(&SharedPaster(), &SharedPaster());
}

}  // namespace chalkpane
