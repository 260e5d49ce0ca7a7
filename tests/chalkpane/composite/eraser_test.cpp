#include "chalkpane/composite/eraser.h"

#include <doctest/doctest.h>

#include <limits>
#include <memory>

#include "chalkpane/parameters/scalar_values.h"
#include "tests/chalkpane/composite/paste_fixture.h"

namespace chalkpane {

namespace {

struct Wipe {
    Depth depth = Depth::Eight;
    double opacity = 1.0;
    int mask = 255;
    ChannelValues target{};
    int clip = -1;  // below 0: none
    Clip clipInverted = Clip::Limiting;
};

ChannelValues Wiped(const Wipe& wipe) {
    const Image source = Image::Colour(onePixel, wipe.depth, AlphaForm::Straight);
    const Image mask = FlatImage(onePixel, PixelType::Mask, wipe.depth, {wipe.mask});
    const Image clip = FlatImage(onePixel, PixelType::Mask, wipe.depth, {wipe.clip});
    Image target = FlatImage(onePixel, PixelType::Colour, wipe.depth, wipe.target, AlphaForm::Premultiplied);
    Eraser eraser;
    eraser.SetOpacity(wipe.opacity);
    eraser.Paste(source, &mask, target, onePixel, 0, wipe.clip < 0 ? nullptr : &clip, wipe.clipInverted);
    return ValuesAt(target, 0, 0);
}

}  // namespace

// op = truncate(256.001) = 256: f = 1 - 255 / 255.0 * 256 / 256 = 0.
TEST_CASE("a full dab at full opacity erases everything at once") {
    CHECK_EQ(Wiped({.target = {200, 150, 100, 255}}), ChannelValues{0, 0, 0, 0});
    CHECK_EQ(Wiped({.depth = Depth::Fourteen, .mask = 16383, .target = {9000, 1, 16383, 16383}}),
             ChannelValues{0, 0, 0, 0});
}

TEST_CASE("no opacity and no mask leave the pixel untouched") {
    const ChannelValues target{200, 150, 100, 255};
    for (const double opacity : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()})
        CHECK_EQ(Wiped({.opacity = opacity, .target = target}), target);
    CHECK_EQ(Wiped({.mask = 0, .target = target}), target);
}

// f = 1 - 128 / 255.0 = 127 / 255 = 0.498039: 200 * f + 0.5 = 100.1, 255 * f + 0.5 = 127.5, 1 * f + 0.5 = 0.998,
// 100 * f + 0.5 = 50.3.
TEST_CASE("half a mask leaves about half of every channel") {
    CHECK_EQ(Wiped({.mask = 128, .target = {200, 255, 1, 100}}), ChannelValues{100, 127, 0, 50});
}

// op = truncate(0.5 * 256.001) = 128: f = 1 - 1 * 128 / 256 = 0.5. 201 * 0.5 + 0.5 = 101 exactly: halves round up.
TEST_CASE("opacity of the eraser is in parts of 256 and halves round up") {
    CHECK_EQ(Wiped({.opacity = 0.5, .target = {201, 200, 1, 255}}), ChannelValues{101, 100, 1, 128});
}

// Clip 128 limiting: t = (128 * 256) >> 8 = 128, p = 128 + (128 >> 7) = 129. f = 1 - 129 / 256 = 0.49609375.
// 200 * f + 0.5 = 99.7. Inverted by clip 127: 255 - 127 = 128, the same.
TEST_CASE("the clip of the eraser reduces by a shift") {
    CHECK_EQ(Wiped({.target = {200, 0, 0, 0}, .clip = 128})[0], 99);
    CHECK_EQ(Wiped({.target = {200, 0, 0, 0}, .clip = 127, .clipInverted = Clip::Inverted})[0], 99);
    CHECK_EQ(Wiped({.target = {200, 0, 0, 0}, .clip = 255})[0], 0);
    CHECK_EQ(Wiped({.target = {200, 0, 0, 0}, .clip = 0, .clipInverted = Clip::Inverted})[0], 0);
}

// 14 bits, inverted by clip 1: t = ((16384 - 1) * 16384) >> 14 = 16383, p = 16383 + (16383 >> 13) = 16384: nothing is
// taken off, so all is erased. From 16383 it would be 16382 + 1 = 16383, and 16383 of a channel would leave
// truncate(16383 / 16384 + 0.5) = 1.
// Clip 16383: t = (1 * 16384) >> 14 = 1, p = 1: f = 1 - 1 / 16384: 16383 * f + 0.5 = 16382.5 + a little less than
// nothing: 16383 - 0.99994 + 0.5 = 16382.50006. From 16383 it would be p = 0 and 16383.
TEST_CASE("at 14 bits the inverted clip subtracts from 16384") {
    CHECK_EQ(Wiped({.depth = Depth::Fourteen,
                    .mask = 16383,
                    .target = {16383, 0, 0, 0},
                    .clip = 1,
                    .clipInverted = Clip::Inverted})[0],
             0);
    CHECK_EQ(Wiped({.depth = Depth::Fourteen,
                    .mask = 16383,
                    .target = {16383, 0, 0, 0},
                    .clip = 16383,
                    .clipInverted = Clip::Inverted})[0],
             16382);
}

TEST_CASE("erasing reads only the depth of its source and works without a mask") {
    const Image source = Image::Colour(Rect(), Depth::Eight, AlphaForm::Straight);
    Image target = FlatImage({0, 0, 3, 3}, PixelType::Colour, Depth::Eight, {9, 9, 9, 9});
    SharedEraser().SetOpacity(1.0);
    SharedEraser().Paste(source, nullptr, target, {1, 1, 1, 1}, 0, nullptr, Clip::Limiting);
    CHECK_EQ(ValuesAt(target, 1, 1), ChannelValues{0, 0, 0, 0});
    CHECK_EQ(ValuesAt(target, 0, 0), ChannelValues{9, 9, 9, 9});
    CHECK_EQ(&SharedEraser(), &SharedEraser());
    CHECK_EQ(SharedEraser().InputRegion({1, 2, 3, 4}), Rect(1, 2, 3, 4));
}

TEST_CASE("the eraser declares its opacity") {
    const ParameterList& list = Eraser::ClassParameters();
    REQUIRE_EQ(list.size(), 1);
    CHECK_EQ(list[0].label, "Opacity");
    CHECK_EQ(list[0].name, "Erase Opacity");
    CHECK_EQ(list[0].code, 0);
    CHECK_EQ(list[0].type, ParameterType::real);
    CHECK_EQ(list[0].flagC, 1);
    DoubleValue value(&list[0]);
    value.setDouble(0.0);
    Eraser eraser;
    eraser.setParameter(&value);
    Image target = FlatImage(onePixel, PixelType::Colour, Depth::Eight, {9, 9, 9, 9});
    eraser.Paste(target, nullptr, target, onePixel, 0, nullptr, Clip::Limiting);
    CHECK_EQ(ValuesAt(target, 0, 0), ChannelValues{9, 9, 9, 9});
}

}  // namespace chalkpane
