#include "chalkpane/composite/paster.h"

#include <doctest/doctest.h>

#include <limits>

#include "chalkpane/parameters/scalar_values.h"
#include "tests/chalkpane/composite/paste_fixture.h"

namespace chalkpane {

namespace {

struct PasteCase {
    Depth depth = Depth::Eight;
    AlphaForm form = AlphaForm::Premultiplied;
    double opacity = 1.0;
    ChannelValues source{};
    ChannelValues target{};
    int clip = -1;  // below 0: none
    Clip clipInverted = Clip::Limiting;
    bool replace = false;
    bool visible = true;
};

ChannelValues Composited(const PasteCase& given) {
    const Image source = FlatImage(onePixel, PixelType::Colour, given.depth, given.source, given.form);
    const Image clip = FlatImage(onePixel, PixelType::Mask, given.depth, {given.clip});
    Image target = FlatImage(onePixel, PixelType::Colour, given.depth, given.target, AlphaForm::Premultiplied);
    Paster paster;
    paster.SetOpacity(given.opacity);
    paster.SetVisible(given.visible);
    const Image* clipImage = given.clip < 0 ? nullptr : &clip;
    if (given.replace)
        paster.Replace(source, target, onePixel, 0, clipImage, given.clipInverted);
    else
        paster.Paste(source, target, onePixel, 0, clipImage, given.clipInverted);
    return ValuesAt(target, 0, 0);
}

// A one-channel target of `value` after one of the operations onto such a target.
template <typename Operation>
int Onto(Depth depth, int value, double opacity, Operation operation) {
    Image target = FlatImage(onePixel, PixelType::Mask, depth, {value});
    Paster paster;
    paster.SetOpacity(opacity);
    operation(paster, target);
    return ValuesAt(target, 0, 0)[0];
}

int MaskOnto(Depth depth, int coverage, int value, double opacity) {
    const Image mask = FlatImage(onePixel, PixelType::Mask, depth, {coverage});
    return Onto(depth, value, opacity,
                [&](Paster& paster, Image& target) { paster.PasteMaskOnto(mask, target, onePixel); });
}

}  // namespace

TEST_CASE("an opaque source at full opacity is copied") {
    for (const AlphaForm form : {AlphaForm::Straight, AlphaForm::Premultiplied}) {
        CHECK_EQ(Composited({.form = form, .source = {1, 2, 3, 255}, .target = {9, 9, 9, 9}}),
                 ChannelValues{1, 2, 3, 255});
        CHECK_EQ(
            Composited({.depth = Depth::Fourteen, .form = form, .source = {1, 2, 3, 16383}, .target = {9, 9, 9, 9}}),
            ChannelValues{1, 2, 3, 16383});
    }
}

TEST_CASE("an invisible paster changes nothing, but replacing clears") {
    const PasteCase given{.source = {1, 2, 3, 255}, .target = {9, 9, 9, 9}, .visible = false};
    CHECK_EQ(Composited(given), ChannelValues{9, 9, 9, 9});
    PasteCase replacing = given;
    replacing.replace = true;
    CHECK_EQ(Composited(replacing), ChannelValues{0, 0, 0, 0});
}

TEST_CASE("without opacity nothing is composited, but replacing clears") {
    for (const double opacity : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        PasteCase given{.opacity = opacity, .source = {1, 2, 3, 255}, .target = {9, 9, 9, 9}};
        CHECK_EQ(Composited(given), ChannelValues{9, 9, 9, 9});
        given.replace = true;
        CHECK_EQ(Composited(given), ChannelValues{0, 0, 0, 0});
    }
}

// Fast: k = 256 - 1 - 200 = 55: (100 * 55) >> 8 = 21, + 150 = 171; alpha 21 + 200.
// With an inverted clip of 0, which takes nothing: k = (65536 - 201 * 256) >> 8 = 55 and d = (150 * 256 + 100 * 55) >>
// 8 = 171.4; alpha (100 * 55 + 200 * 256) >> 8 = 221.4. Alpha 127: fast 256 - 0 - 127 = 129; general (65536 - 127 *
// 256)
// >> 8 = 129.
TEST_CASE("a premultiplied source is added to what it lets through") {
    const PasteCase given{.source = {150, 0, 0, 200}, .target = {100, 0, 0, 100}};
    CHECK_EQ(Composited(given), ChannelValues{171, 0, 0, 221});
    PasteCase clipped = given;
    clipped.clip = 0;
    clipped.clipInverted = Clip::Inverted;
    CHECK_EQ(Composited(clipped), ChannelValues{171, 0, 0, 221});
}

// op = truncate(0.5 * 256.001) = 128. k = (65536 - 201 * 128) >> 8 = 39808 >> 8 = 155.
// (150 * 128 + 100 * 155) >> 8 = 34700 >> 8 = 135; alpha (100 * 155 + 200 * 128) >> 8 = 160.5.
TEST_CASE("half opacity of a premultiplied source") {
    CHECK_EQ(Composited({.opacity = 0.5, .source = {150, 0, 0, 200}, .target = {100, 0, 0, 100}}),
             ChannelValues{135, 0, 0, 160});
}

// w = 201 * 256 = 51456, v = 14080: (150 * 51456 + 100 * 14080) >> 16 = 9126400 >> 16 = 139; alpha
// (100 * 14080 + 51456 * 255) >> 16 = 14529280 >> 16 = 221.
TEST_CASE("a straight source is weighted by its alpha") {
    CHECK_EQ(Composited({.form = AlphaForm::Straight, .source = {150, 0, 0, 200}, .target = {100, 0, 0, 100}}),
             ChannelValues{139, 0, 0, 221});
}

// 14 bits: a' = 8192 + 1 = 8193, p = 16384, w = 8193 << 14, v = 2^28 - w: (16000 * 8193 + 100 * 8191) / 16384 = 8051.
// 131088000 + 819100 = 131907100; / 16384 = 8050.97. Alpha (0 + 8193 * 16383) / 16384 = 8192.5.
TEST_CASE("at 14 bits a straight source needs 42 bits") {
    CHECK_EQ(Composited({.depth = Depth::Fourteen,
                         .form = AlphaForm::Straight,
                         .source = {16000, 0, 0, 8192},
                         .target = {100, 0, 0, 0}}),
             ChannelValues{8050, 0, 0, 8192});
}

TEST_CASE("a source pixel without alpha is left out even with colour in it") {
    CHECK_EQ(Composited({.source = {50, 50, 50, 0}, .target = {9, 9, 9, 9}}), ChannelValues{9, 9, 9, 9});
}

// Fast form: k = 256 - 0 - 1 = 255: (255 * 255) >> 8 = 254, + 10 = 264, kept modulo 256: 8.
TEST_CASE("a sum above full scale keeps its low bits") {
    CHECK_EQ(Composited({.source = {10, 0, 0, 1}, .target = {255, 0, 0, 0}})[0], 8);
}

// Clip 128: p = ((128 * 256) >> 8) + ((128 * 256) >> 15) = 129. k = (65536 - 256 * 129) >> 8 = 127;
// (255 * 129 + 0) >> 8 = 128.5. Inverted by 127 the same. Clip 255 lets the pixel be copied.
TEST_CASE("the clip of the paster") {
    const PasteCase given{.source = {255, 255, 255, 255}, .clip = 128};
    CHECK_EQ(Composited(given), ChannelValues{128, 128, 128, 128});
    PasteCase inverted = given;
    inverted.clip = 127;
    inverted.clipInverted = Clip::Inverted;
    CHECK_EQ(Composited(inverted), ChannelValues{128, 128, 128, 128});
    PasteCase full = given;
    full.clip = 255;
    CHECK_EQ(Composited(full), ChannelValues{255, 255, 255, 255});
}

// 0.99609375 is 255 / 256. At it the pasting path: op = truncate(255.0099) = 255, k = (65536 - 256 * 255) >> 8 = 1:
// (200 * 255 + 100) >> 8 = 199.6; alpha (255 * 255 + 9) >> 8 = 254.04. Above it the pixel is copied.
TEST_CASE("replacing copies above 255/256 of opacity and pastes at it") {
    PasteCase given{.opacity = 0.99609375, .source = {200, 0, 0, 255}, .target = {100, 0, 0, 9}, .replace = true};
    CHECK_EQ(Composited(given), ChannelValues{199, 0, 0, 254});
    given.opacity = std::nextafter(0.99609375, 1.0);
    CHECK_EQ(Composited(given), ChannelValues{200, 0, 0, 255});
}

TEST_CASE("replacing clears its rectangle around the source and nothing else") {
    const Image source =
        FlatImage({2, 2, 4, 4}, PixelType::Colour, Depth::Eight, {7, 7, 7, 255}, AlphaForm::Premultiplied);
    for (const double opacity : {1.0, 0.5}) {
        Image target =
            FlatImage({0, 0, 9, 9}, PixelType::Colour, Depth::Eight, {50, 50, 50, 50}, AlphaForm::Premultiplied);
        Paster paster;
        paster.SetOpacity(opacity);
        paster.Replace(source, target, {1, 1, 5, 5}, 0, nullptr, Clip::Limiting);
        for (int y = 0; y <= 9; ++y)
            for (int x = 0; x <= 9; ++x) {
                const int alpha = ValuesAt(target, x, y)[3];
                if (source.Contains(x, y))
                    CHECK(alpha > 50);
                else
                    CHECK_EQ(alpha, Rect(1, 1, 5, 5).Contains(x, y) ? 0 : 50);
            }
    }
    Image target = FlatImage({0, 0, 9, 9}, PixelType::Colour, Depth::Eight, {50, 50, 50, 50}, AlphaForm::Premultiplied);
    Paster().Replace(source, target, {6, 6, 20, 20}, 0, nullptr, Clip::Limiting);  // misses the source
    CHECK_EQ(ValuesAt(target, 6, 6)[3], 0);
    CHECK_EQ(ValuesAt(target, 5, 5)[3], 50);
}

// The factor takes part while it is set: 0.5F * 0.5 = 0.25, op = 64; k = (65536 - 256 * 64) >> 8 = 192:
// (200 * 64) >> 8 = 50. Without it op = 128: 100.
TEST_CASE("a factor multiplies the opacity") {
    const Image source =
        FlatImage(onePixel, PixelType::Colour, Depth::Eight, {200, 0, 0, 255}, AlphaForm::Premultiplied);
    Paster paster;
    paster.SetOpacity(0.5);
    paster.SetFactor(0.5F);
    for (const int wanted : {50, 100}) {
        Image target = Image::Colour(onePixel, Depth::Eight, AlphaForm::Premultiplied);
        paster.Paste(source, target, onePixel, 0, nullptr, Clip::Limiting);
        CHECK_EQ(ValuesAt(target, 0, 0)[0], wanted);
        paster.RemoveFactor();
    }
}

// w = 256 * 128 = 32768: (32768 * 200 + 32768 * 40) >> 16 = 120. Full alpha and opacity: the red channel.
TEST_CASE("red goes onto a mask by alpha") {
    const Image source = FlatImage(onePixel, PixelType::Colour, Depth::Eight, {1, 2, 40, 255});
    const auto paste = [&](Paster& paster, Image& target) { paster.PasteOnto(source, target, onePixel, 0); };
    CHECK_EQ(Onto(Depth::Eight, 200, 0.5, paste), 120);
    CHECK_EQ(Onto(Depth::Eight, 200, 1.0, paste), 40);
}

TEST_CASE("a constant goes onto a mask through another") {
    const Image mask = FlatImage(onePixel, PixelType::Mask, Depth::Eight, {255});
    const auto paste = [&](Paster& paster, Image& target) { paster.PasteValueOnto(40, mask, target, onePixel); };
    CHECK_EQ(Onto(Depth::Eight, 200, 0.5, paste), 120);
    CHECK_EQ(Onto(Depth::Eight, 200, 1.0, paste), 40);
}

// Coverage 255 at opacity 0.5: (255 + 1) & 255 = 0, so the target stays whole: (256 * 100 + 255 * 128) >> 8 = 227; and
// at 200 it is limited: (256 * 200 + 32640) >> 8 = 327 -> 255. Coverage 254: (255 * 128) >> 8 = 127, (129 * 100 +
// 254 * 128) >> 8 = 177.4. At full opacity coverage 255 covers: 255.
TEST_CASE("full coverage below full opacity adds to a mask") {
    CHECK_EQ(MaskOnto(Depth::Eight, 255, 100, 0.5), 227);
    CHECK_EQ(MaskOnto(Depth::Eight, 255, 200, 0.5), 255);
    CHECK_EQ(MaskOnto(Depth::Eight, 254, 100, 0.5), 177);
    CHECK_EQ(MaskOnto(Depth::Eight, 255, 100, 1.0), 255);
    CHECK_EQ(MaskOnto(Depth::Eight, 0, 100, 1.0), 100);
}

// 14 bits: (16383 + 1) & 16383 = 0: (16384 * 100 + 16383 * 8192) >> 14 = 100 + 8191.5.
TEST_CASE("at 14 bits full coverage wraps likewise") {
    CHECK_EQ(MaskOnto(Depth::Fourteen, 16383, 100, 0.5), 8291);
    CHECK_EQ(MaskOnto(Depth::Fourteen, 16383, 12000, 0.5), 16383);
}

TEST_CASE("the paster declares opacity and visibility") {
    const ParameterList& list = Paster::ClassParameters();
    REQUIRE_EQ(list.size(), 2);
    CHECK_EQ(list[0].name, "Paste Opacity");
    CHECK_EQ(list[0].label, "Opacity");
    CHECK_EQ(list[0].type, ParameterType::real);
    CHECK_EQ(list[0].flagC, 1);
    CHECK_EQ(list[1].name, "Visible");
    CHECK_EQ(list[1].type, ParameterType::boolean);
    BooleanValue hidden(&list[1]);
    hidden.setBoolean(false);
    Paster paster;
    paster.setParameter(&hidden);
    Image target = FlatImage(onePixel, PixelType::Colour, Depth::Eight, {9, 9, 9, 9}, AlphaForm::Premultiplied);
    paster.Paste(FlatImage(onePixel, PixelType::Colour, Depth::Eight, {1, 1, 1, 255}, AlphaForm::Premultiplied), target,
                 onePixel, 0, nullptr, Clip::Limiting);
    CHECK_EQ(ValuesAt(target, 0, 0)[0], 9);
    CHECK_EQ(paster.InputRegion({1, 2, 3, 4}), Rect(1, 2, 3, 4));
    CHECK_EQ(paster.OutputRegion({1, 2, 3, 4}), Rect(1, 2, 3, 4));
}

}  // namespace chalkpane
