#include "chalkpane/brush/sources/image_brush_source.h"

#include <doctest/doctest.h>

#include <limits>

#include "chalkpane/brush/sources/splodge_brush_source.h"
#include "tests/chalkpane/brush/sources/source_fixture.h"

namespace chalkpane {

namespace {

using Values = SourceValues;

// Three by three pixels, all channels of a pixel alike:  bottom row 0: 0, 50, 100; row 1: 0, 200, 10; row 2: 0.
Image Patch(Depth depth = Depth::Eight) {
    Image image = Image::Colour(3, 3, depth, AlphaForm::Straight);
    const auto set = [&](std::int32_t x, std::int32_t y, std::uint16_t value) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            if (depth == Depth::Eight)
                reinterpret_cast<std::uint8_t*>(image.Address(x, y))[channel] = static_cast<std::uint8_t>(value);
            else
                reinterpret_cast<std::uint16_t*>(image.Address(x, y))[channel] = value;
        }
    };
    set(1, 0, 50);
    set(2, 0, 100);
    set(1, 1, 200);
    set(2, 1, 10);
    return image;
}

// One channel of all pixels at full scale or at `value`.
Image Plain(std::int32_t side, std::uint8_t value) {
    Image image = Image::Colour(side, side, Depth::Eight, AlphaForm::Straight);
    for (std::int32_t y = 0; y < side; ++y)
        for (auto& channel : image.Row8(y)) channel = value;
    return image;
}

// What a dab of a single pixel reads at (x, y), with the offset given.
template <typename Source = ImageBrushSource>
ChannelValues ReadAt(const Image& picture, std::int32_t x, std::int32_t y, double offsetX, double offsetY,
                     Depth depth = Depth::Eight, ImageFollows follows = ImageFollows::Brush) {
    Source source(follows);
    source.SetSourceImage(&picture);
    Values values;
    values.Choice(SourceParameter::ProfileType, ProfileType::OnePixel).Offset(offsetX, offsetY).SetUp(source, depth);
    const DabImages dab = DabAt(source, x, y);
    REQUIRE(dab.made);
    REQUIRE(dab.colour->Bounds() == Rect(x, y, x, y));
    return ValuesAt(*dab.colour, x, y);
}

constexpr ChannelValues nothing{};

}  // namespace

TEST_CASE("A dab that follows the canvas copies what is under it, whatever the offset") {
    ImageBrushSource source(ImageFollows::Canvas);
    const Image picture = MapPicture(20, 20);
    source.SetSourceImage(&picture);
    Values values;
    values.Integer(SourceParameter::Size, 2).Offset(0.5, -7.0).SetUp(source);
    const DabImages dab = DabAt(source, 10.5, 5.5);
    REQUIRE(dab.made);
    REQUIRE(dab.colour->Bounds() == Rect(8, 3, 12, 7));
    for (std::int32_t y = 3; y <= 7; ++y)
        for (std::int32_t x = 8; x <= 12; ++x)
            CHECK(ValuesAt(*dab.colour, x, y) == ChannelValues{10 * x, 10 * y, 50, 255});
}

TEST_CASE("A dab that follows the brush reads at the offset") {
    CHECK_EQ(ReadAt(Patch(), 0, 1, 1.0, 0.0)[0], 200);
    CHECK_EQ(ReadAt(Patch(), 1, 1, 1.0, -1.0)[0], 100);
    CHECK_EQ(ReadAt(Patch(), 5, 9, -4.0, -8.0)[0], 200);
}

// fx = 128, cx = 127; fy = 64, cy = 191. At (1, 1) a = 100 below right, b = 50 below, c = 200 here, d = 10 right:
// ((100 * 128 + 50 * 127) * 64 + (200 * 127 + 10 * 128) * 191) >> 16 = (1225600 + 5095880) >> 16 = 96.
TEST_CASE("Between pixels a dab weighs four neighbours in parts of 255") {
    CHECK_EQ(ReadAt(Patch(), 1, 1, 0.5, 0.25), ChannelValues{96, 96, 96, 96});
}

// The weights are sizes: to the left and down is read as to the right and down.
TEST_CASE("A negative fraction weighs the same neighbours") {
    CHECK_EQ(ReadAt(Patch(), 1, 1, -0.5, -0.25), ChannelValues{96, 96, 96, 96});
    // -1.5 is -1 and a half: read at (1, 1).
    CHECK_EQ(ReadAt(Patch(), 2, 1, -1.5, 0.25), ChannelValues{96, 96, 96, 96});
}

// 255 * 255 * 255 >> 16 = 253; at 14 bits 16383 * 255 * 255 >> 16 = 16255. 0.001 * 256 truncates to a weight of 0.
TEST_CASE("Reading between pixels darkens, even by a fraction that has no weight") {
    const Image white = Plain(5, 255);
    CHECK_EQ(ReadAt(white, 2, 2, 0.5, 0.25), ChannelValues{253, 253, 253, 253});
    CHECK_EQ(ReadAt(white, 2, 2, 0.001, 0.0), ChannelValues{253, 253, 253, 253});
    CHECK_EQ(ReadAt(white, 2, 2, 0.0, 0.0), ChannelValues{255, 255, 255, 255});
    CHECK_EQ(ReadAt(white, 2, 2, 0.5, 0.25, Depth::Fourteen), ChannelValues{16255, 16255, 16255, 16255});
}

// Right: b = c = 200, a = d = 0: 200 * 127 * 255 >> 16 = 98, while alpha is 200 * 127 * 255 + 255 * 128 * 255, 225.
// Bottom: c = d = 200, a = b = 0: 200 * 255 * 191 >> 16 = 148; alpha with 255 * 255 * 64, 212.
// The corner: c alone, 200 * 127 * 191 >> 16 = 74; alpha 200 * 127 * 191 + 255 * (128 * 255 + 127 * 64) =
// 4851400 + 10395840, of which 232. Left and top edges read nothing beyond.
TEST_CASE("Beyond the right and the bottom edge lies opaque black") {
    const Image grey = Plain(3, 200);
    CHECK_EQ(ReadAt(grey, 2, 1, 0.5, 0.25), ChannelValues{98, 98, 98, 225});
    CHECK_EQ(ReadAt(grey, 1, 0, 0.5, 0.25), ChannelValues{148, 148, 148, 212});
    CHECK_EQ(ReadAt(grey, 2, 0, 0.5, 0.25), ChannelValues{74, 74, 74, 232});
    CHECK_EQ(ReadAt(grey, 0, 2, 0.5, 0.25), ChannelValues{198, 198, 198, 198});
}

TEST_CASE("Outside the picture a dab is zero") {
    const Image grey = Plain(3, 200);
    for (const double fraction : {0.0, 0.5}) {
        CHECK_EQ(ReadAt(grey, 3, 1, fraction, 0.0), nothing);
        CHECK_EQ(ReadAt(grey, -1, 1, 0.0, fraction), nothing);
        CHECK_EQ(ReadAt(grey, 1, 3, fraction, fraction), nothing);
        CHECK_EQ(ReadAt(grey, 1, -1, fraction, fraction), nothing);
    }
}

// Scaled by 2, the dab at (1, 1) lies at (2, 2), and the offset (0.5, 0.5) is (1, 1).
TEST_CASE("Dab and offset both go through the matrix") {
    ImageBrushSource source(ImageFollows::Brush);
    const Image picture = MapPicture(8, 8);
    source.SetSourceImage(&picture);
    Values values;
    values.Choice(SourceParameter::ProfileType, ProfileType::OnePixel)
        .Offset(0.5, 0.5)
        .SetUp(source, Depth::Eight, Matrix3::Scaling(2.0, 2.0));
    const DabImages dab = DabAt(source, 1.0, 1.0);
    REQUIRE(dab.colour->Bounds() == Rect(2, 2, 2, 2));
    CHECK_EQ(ValuesAt(*dab.colour, 2, 2), ChannelValues{30, 30, 50, 255});
}

TEST_CASE("The picture takes on the depth of the dab") {
    CHECK_EQ(ReadAt(Patch(), 1, 1, 0.0, 0.0, Depth::Fourteen)[0], 200 * 64 + 50);
    const Image deep = Patch(Depth::Fourteen);  // 200 at 14 bits
    CHECK_EQ(ReadAt(deep, 1, 1, 0.0, 0.0, Depth::Eight)[0], 3);
    CHECK_EQ(ReadAt(deep, 1, 1, 0.0, 0.0, Depth::Fourteen)[0], 200);
}

TEST_CASE("The picture is a copy, and can be taken away") {
    ImageBrushSource source(ImageFollows::Canvas);
    Image picture = Plain(3, 200);
    source.SetSourceImage(&picture);
    picture.Clear();
    Values values;
    values.Choice(SourceParameter::ProfileType, ProfileType::OnePixel).SetUp(source);
    CHECK_EQ(ValuesAt(*DabAt(source, 1.0, 1.0).colour, 1, 1)[0], 200);
    source.SetSourceImage(nullptr);
    const DabImages dab = DabAt(source, 1.0, 1.0);
    REQUIRE(dab.made);
    CHECK(dab.mask);
    CHECK_EQ(ValuesAt(*dab.colour, 1, 1), nothing);
}

TEST_CASE("A picture of one channel, or of none, gives a dab of zeros") {
    Image mask = Image::Mask(3, 3, Depth::Eight);
    mask.FillChannel(1.0);
    CHECK_EQ(ReadAt(mask, 1, 1, 0.5, 0.5), nothing);
    CHECK_EQ(ReadAt<SplodgeBrushSource>(mask, 1, 1, 0.0, 0.0), nothing);
    const Image empty = Image::Colour(0, 0, Depth::Eight, AlphaForm::Straight);
    CHECK_EQ(ReadAt(empty, 1, 1, 0.5, 0.5), nothing);
    CHECK_EQ(ReadAt(empty, 1, 1, 0.0, 0.0, Depth::Fourteen), nothing);
    CHECK_EQ(ReadAt<SplodgeBrushSource>(empty, 0, 0, 0.0, 0.0), nothing);
}

TEST_CASE("Offsets and pictures at the ends of the plane are survived") {
    constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();
    Image picture = Plain(3, 200);
    picture.MoveTo(last - 2, last - 2);
    constexpr double farAway = 1073741823.0;  // twice that is the picture's middle
    CHECK_EQ(ReadAt(picture, 1073741823, 1073741823, farAway, farAway)[0], 200);
    // Half a pixel less reads its lower left corner: 200 * 255 * 127 >> 16. Half more in x: 200 * 255 * 255 >> 16.
    CHECK_EQ(ReadAt(picture, 1073741823, 1073741823, farAway - 0.5, farAway - 0.5)[0], 98);
    CHECK_EQ(ReadAt(picture, 1073741823, 1073741823, farAway + 0.5, farAway)[0], 198);
    // A dab whose picture would leave the plane reads nothing.
    ImageBrushSource source(ImageFollows::Brush);
    source.SetSourceImage(&picture);
    Values values;
    values.Integer(SourceParameter::Size, 3).Offset(farAway, farAway).SetUp(source);
    const DabImages dab = DabAt(source, farAway, farAway);
    REQUIRE(dab.made);
    CHECK_EQ(ValuesAt(*dab.colour, 1073741823, 1073741823), nothing);
    for (const double offset : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN(), 2e9}) {
        CHECK_EQ(ReadAt(picture, 1, 1, offset, 0.0), nothing);
        CHECK_EQ(ReadAt<SplodgeBrushSource>(picture, 1, 1, 0.0, offset), nothing);
    }
}

TEST_CASE("The mask plane reads its own picture and holds its own dab") {
    ImageBrushSource source(ImageFollows::Canvas);
    const Image paint = Plain(9, 200);
    const Image forMask = MapPicture(9, 9);
    source.SetSourceImage(&paint);
    source.SetMaskSourceImage(&forMask);
    Values values;
    values.Choice(SourceParameter::ProfileType, ProfileType::OnePixel)
        .Choice(SourceParameter::Pickup, PickupMode::OncePerStroke)
        .SetUp(source);
    CHECK_EQ(ValuesAt(*DabAt(source, 2.0, 2.0).colour, 2, 2)[0], 200);
    CHECK_EQ(ValuesAt(*MaskDabAt(source, 3.0, 2.0).colour, 3, 2)[0], 30);
    CHECK_EQ(ValuesAt(*MaskDabAt(source, 7.0, 2.0).colour, 7, 2)[0], 30);
    source.SetMaskSourceImage(nullptr);
    source.DropPickup();
    CHECK_EQ(ValuesAt(*MaskDabAt(source, 7.0, 2.0).colour, 7, 2), nothing);
}

// Pickup 2: each dab paints what was under the one before it.
TEST_CASE("With pickup 2 a dab drags what was under the last one") {
    ImageBrushSource source(ImageFollows::Canvas);
    const Image picture = MapPicture(20, 9);
    source.SetSourceImage(&picture);
    source.SetMaskSourceImage(&picture);
    Values values;
    values.Choice(SourceParameter::ProfileType, ProfileType::OnePixel)
        .Choice(SourceParameter::Pickup, PickupMode::EveryDab)
        .SetUp(source);
    const std::int32_t stops[] = {2, 5, 9, 14};
    const std::int32_t picked[] = {2, 2, 5, 9};
    for (std::size_t i = 0; i < std::size(stops); ++i) {
        CHECK_EQ(ValuesAt(*DabAt(source, stops[i], 3.0).colour, stops[i], 3)[0], 10 * picked[i]);
        source.DabPlaced(stops[i], 3.0, 0.0);
        CHECK_EQ(ValuesAt(*MaskDabAt(source, stops[i], 3.0).colour, stops[i], 3)[0], 10 * picked[i]);
        source.DabPlacedOnMask(stops[i], 3.0, 0.0);
    }
}

// Held at (10.5, 10.5), where the dab is 8 .. 12 and its middle 10.5. A quarter turn clockwise takes its right end,
// (12, 10), to its lower end, (10, 8). Fixed-point positions cost a few levels.
TEST_CASE("A dab that is dragged turns with the stroke about its middle") {
    Image picture = Image::Colour(21, 21, Depth::Eight, AlphaForm::Straight);
    reinterpret_cast<std::uint8_t*>(picture.Address(12, 10))[1] = 240;
    ImageBrushSource source(ImageFollows::Canvas);
    source.SetSourceImage(&picture);
    Values values;
    values.Integer(SourceParameter::Size, 2).Choice(SourceParameter::Pickup, PickupMode::OncePerStroke).SetUp(source);
    CHECK_EQ(ValuesAt(*DabAt(source, 10.5, 10.5, 10.0).colour, 12, 10)[1], 240);
    const DabImages rotated = DabAt(source, 110.5, 10.5, 100.0);
    REQUIRE(rotated.made);
    CHECK_GT(ValuesAt(*rotated.colour, 110, 8)[1], 230);
    CHECK_LT(ValuesAt(*rotated.colour, 112, 10)[1], 10);
}

// Alpha 100: the factor is 100 / 255 = 0.392157, so 40, 80 and 120 become 15.7, 31.4 and 47.1, rounded.
TEST_CASE("A splodge is one pixel of the picture, its colours scaled by its alpha") {
    Image picture = Image::Colour(21, 21, Depth::Eight, AlphaForm::Straight);
    auto* pixel = reinterpret_cast<std::uint8_t*>(picture.Address(10, 10));
    pixel[0] = 40;
    pixel[1] = 80;
    pixel[2] = 120;
    pixel[3] = 100;
    SplodgeBrushSource source(ImageFollows::Brush);
    source.SetSourceImage(&picture);
    Values values;
    values.Integer(SourceParameter::Size, 2).SetUp(source);
    const DabImages dab = DabAt(source, 10.5, 10.5);
    REQUIRE(dab.made);
    for (std::int32_t y = 8; y <= 12; ++y)
        for (std::int32_t x = 8; x <= 12; ++x) CHECK_EQ(ValuesAt(*dab.colour, x, y), ChannelValues{16, 31, 47, 100});
    // Six pixels wide, 7 .. 12, the middle is the fourth of them.
    CHECK_EQ(ValuesAt(*DabAt(source, 10.0, 10.0).colour, 7, 7), ChannelValues{16, 31, 47, 100});
    // One pixel on, alpha is 0.
    CHECK_EQ(ValuesAt(*DabAt(source, 11.5, 10.5).colour, 11, 10), nothing);
}

// 14 bits: alpha 6424 of 16383 is a factor of 0.392114; 2600 * 0.392114 = 1019.5.
TEST_CASE("A splodge at 14 bits scales by alpha over 16383") {
    Image picture = Image::Colour(3, 3, Depth::Fourteen, AlphaForm::Straight);
    auto* pixel = reinterpret_cast<std::uint16_t*>(picture.Address(1, 1));
    pixel[0] = 2600;
    pixel[1] = 16383;
    pixel[3] = 6424;
    const ChannelValues got = ReadAt<SplodgeBrushSource>(picture, 1, 1, 0.0, 0.0, Depth::Fourteen);
    CHECK_EQ(got, ChannelValues{1019, 6424, 0, 6424});
}

TEST_CASE("A splodge beside the picture stays zero") {
    const Image white = Plain(3, 255);
    CHECK_EQ(ReadAt<SplodgeBrushSource>(white, 2, 2, 0.0, 0.0), ChannelValues{255, 255, 255, 255});
    CHECK_EQ(ReadAt<SplodgeBrushSource>(white, 3, 2, 0.0, 0.0), nothing);
    CHECK_EQ(ReadAt<SplodgeBrushSource>(white, 2, -1, 0.0, 0.0), nothing);
    CHECK_EQ(ReadAt<SplodgeBrushSource>(white, 3, 2, -1.0, 0.0), ChannelValues{255, 255, 255, 255});
}

TEST_CASE("A splodge leaves the mask plane to the picture") {
    SplodgeBrushSource source(ImageFollows::Brush);
    const Image picture = MapPicture(9, 9);
    source.SetMaskSourceImage(&picture);
    Values values;
    values.Integer(SourceParameter::Size, 1).SetUp(source);
    const DabImages dab = MaskDabAt(source, 4.5, 4.5);
    CHECK_EQ(ValuesAt(*dab.colour, 3, 4)[0], 30);
    CHECK_EQ(ValuesAt(*dab.colour, 5, 4)[0], 50);
}

}  // namespace chalkpane
