#include "chalkpane/transform/transformer.h"

#include <doctest/doctest.h>

#include <limits>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/parameters/compound_values.h"
#include "chalkpane/parameters/scalar_values.h"
#include "tests/chalkpane/composite/paste_fixture.h"

namespace chalkpane {

namespace {

using Values = std::vector<int>;

// One row of a mask.
Image MaskRow(const Values& values, Depth depth = Depth::Eight) {
    Image image = Image::Mask(Rect{0, 0, static_cast<std::int32_t>(values.size()) - 1, 0}, depth);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto x = static_cast<std::int32_t>(i);
        if (depth == Depth::Eight)
            *reinterpret_cast<std::uint8_t*>(image.Address(x, 0)) = static_cast<std::uint8_t>(values[i]);
        else
            *reinterpret_cast<std::uint16_t*>(image.Address(x, 0)) = static_cast<std::uint16_t>(values[i]);
    }
    return image;
}

Transformer Moving(double x, double y) {
    Transformer transformer;
    transformer.SetTransform(0.0, 0.0, x, y, 1.0, 1.0, 0.0);
    return transformer;
}

Values Moved(const Image& source, double x, Rect& rect) {
    return reference::Picture(*Moving(x, 0.0).Apply(source, rect)).values;
}

}  // namespace

TEST_CASE("the identity gives a copy with pixels of its own") {
    const Image source = NoiseImage({-3, 2, 9, 9}, PixelType::Colour, Depth::Eight, 5, AlphaForm::Premultiplied);
    for (Transformer transformer : {Transformer(), Moving(0.00005, -0.00005)}) {
        Rect rect;
        const auto copy = transformer.Apply(source, rect);
        CHECK_EQ(rect, Rect(-3, 2, 9, 9));
        CHECK_EQ(copy->flag, 1);
        CHECK(copy->buffer != source.buffer);
        CHECK(SamePixels(*copy, reference::Picture(source)));
    }
}

TEST_CASE("a move by whole pixels moves the rectangle and copies the pixels") {
    const Image source = NoiseImage({-3, 2, 9, 9}, PixelType::Mask, Depth::Fourteen, 6);
    Rect rect;
    const auto moved = Moving(2.99995, -5.00005).Apply(source, rect);
    CHECK_EQ(rect, Rect(0, -3, 12, 4));
    CHECK_EQ(reference::Picture(*moved).values, reference::Picture(source).values);
}

// Each pixel is the mean of two neighbours: (0 + 200) / 2, (200 + 100) / 2, (100 + 50) / 2, (50 + 0) / 2.
TEST_CASE("a move by half a pixel averages neighbours and fades the ends") {
    Rect rect;
    CHECK_EQ(Moved(MaskRow({200, 100, 50}), 0.5, rect), Values{100, 150, 75, 25});
    CHECK_EQ(rect, Rect(0, 0, 3, 0));
    CHECK_EQ(Moved(MaskRow({200, 100, 50}, Depth::Fourteen), 0.5, rect), Values{100, 150, 75, 25});
}

// 8 bits: (128 * 255 * 256) >> 16 = 127.5 truncated. 14 bits: 128 * 16383 * 256 / 65535.0 + 0.5 = 8192.1, where a shift
// by 16 would give 8191.
TEST_CASE("half of a full channel is rounded down at 8 bits and up at 14") {
    Rect rect;
    CHECK_EQ(Moved(MaskRow({255}), 0.5, rect), Values{127, 127});
    CHECK_EQ(Moved(MaskRow({16383}, Depth::Fourteen), 0.5, rect), Values{8192, 8192});
    // Full weights: 16383 * 65536 / 65535.0 + 0.5 = 16383.75, no more than full scale.
    CHECK_EQ(Moved(MaskRow({16383, 16383, 16383}, Depth::Fourteen), 0.5, rect), Values{8192, 16383, 16383, 8192});
}

// Moved by 1/8 the iteration begins at (0.5 - 0.125) * 65536 - 32768 = -8192: fraction (-8192 >> 8) & 255 = 224, so a
// pixel is 32/256 of its left and 224/256 of its right neighbour. 200: (224 * 200 * 256) >> 16 = 175; (32 * 200 + 224 *
// 100)
// * 256 >> 16 = 112.5; (32 * 100) * 256 >> 16 = 12.5.
TEST_CASE("fractions are eighths of a pixel exactly") {
    Rect rect;
    CHECK_EQ(Moved(MaskRow({200, 100}), 0.125, rect), Values{175, 112, 12});
    CHECK_EQ(rect, Rect(0, 0, 2, 0));
    // By -1/8 the fraction is 32: 32/256 of the right. (224 * 0 + 32 * 200) -> 25; (224 * 200 + 32 * 100) -> 187.5;
    // (224 * 100) -> 87.5.
    CHECK_EQ(Moved(MaskRow({200, 100}), -0.125, rect), Values{25, 187, 87});
    CHECK_EQ(rect, Rect(-1, 0, 1, 0));
}

// About (2, 1) clockwise: (x, y) goes to (y + 1, 3 - x), so pixel (0, 0), whose centre is (0.5, 0.5), lands on the
// pixel with centre (1.5, 2.5), and the 4 x 2 picture becomes 2 x 4 in 1 .. 2, -1 .. 2. The sine and cosine are
// rounded, so a part in 256 may go astray.
TEST_CASE("a quarter turn is clockwise and keeps the size") {
    Image source = Image::Mask(Rect{0, 0, 3, 1}, Depth::Eight);
    source.SetAlpha8(0, 0, 255);
    Transformer transformer;
    transformer.SetTransform(2.0, 1.0, 2.0, 1.0, 1.0, 1.0, 90.0);
    Rect rect;
    const auto rotated = transformer.Apply(source, rect);
    CHECK(rect.Width() >= 2);
    CHECK(rect.Width() <= 3);
    CHECK(rect.Height() >= 4);
    CHECK(rect.Height() <= 5);
    CHECK(rect.Contains(Rect(1, -1, 2, 2)));
    CHECK(ValuesAt(*rotated, 1, 2)[0] >= 253);
}

// Scaled about the origin, then rotated clockwise, then moved: (1, 0) - (1, 1) = (0, -1), scaled (0, -3), rotated by 90
// degrees (-3, 0), moved (7, 20).
TEST_CASE("the seven values apply as origin, scale, turn and move") {
    Transformer transformer;
    transformer.SetTransform(1.0, 1.0, 10.0, 20.0, 2.0, 3.0, 90.0);
    const Point2 point = transformer.Forward().Transform(1.0, 0.0);
    CHECK(point.x == doctest::Approx(7.0));
    CHECK(point.y == doctest::Approx(20.0));
    const Point2 back = transformer.Inverse().Transform(point);
    CHECK(back.x == doctest::Approx(1.0));
    CHECK(back.y == doctest::Approx(0.0));
}

TEST_CASE("a target limit keeps the rest of the result blank, and even the identity resamples") {
    const Image source = FlatImage({0, 0, 7, 7}, PixelType::Mask, Depth::Eight, {90});
    Transformer transformer;
    transformer.LimitTarget({2, 3, 4, 5});
    Rect rect;
    auto result = transformer.Apply(source, rect);
    CHECK_EQ(rect, Rect(0, 0, 7, 7));
    for (int y = 0; y <= 7; ++y)
        for (int x = 0; x <= 7; ++x) CHECK_EQ(ValuesAt(*result, x, y)[0], Rect(2, 3, 4, 5).Contains(x, y) ? 90 : 0);
    transformer.RemoveLimits();
    CHECK_EQ(ValuesAt(*transformer.Apply(source, rect), 0, 0)[0], 90);
}

// Only columns 1 and 2 are read: (0, 90), (90, 90), (90, 0) at half a pixel.
TEST_CASE("a source limit makes the rest of the source read as zero") {
    Transformer transformer = Moving(0.5, 0.0);
    transformer.LimitSource({1, 0, 2, 0});
    Rect rect;
    const auto result = transformer.Apply(MaskRow({90, 90, 90, 90}), rect);
    CHECK_EQ(reference::Picture(*result).values, Values{0, 45, 90, 45, 0});
    transformer.LimitSource({9, 9, 12, 12});  // misses it: nothing is done
    Image target = MaskRow({1, 2, 3});
    transformer.ApplyInto(MaskRow({90, 90, 90, 90}), target, target);
    CHECK_EQ(reference::Picture(target).values, Values{1, 2, 3});
}

TEST_CASE("resampling into a target writes the rectangle and nothing else") {
    const Image source = MaskRow({200, 100, 50});
    Image target = MaskRow({7, 7, 7, 7, 7, 7});
    Moving(0.5, 0.0).ApplyInto(source, target, {1, 0, 4, 0});
    CHECK_EQ(reference::Picture(target).values, Values{7, 150, 75, 25, 0, 7});
    Image colour = Image::Colour({0, 0, 5, 0}, Depth::Eight, AlphaForm::Straight);
    Moving(0.5, 0.0).ApplyInto(source, colour, colour);  // formats differ
    CHECK_EQ(reference::Picture(colour).values, Values(24, 0));
}

// -log(1/4 * 1/4) / log(4) = 2: two halvings. From level 2 the inverse is a scaling by 4 and by the zoom 1/4, so the
// result is the level itself, while the plain image is read at single pixels.
TEST_CASE("a pyramid is read at the level that fits the scale") {
    Image source = Image::Mask(Rect{0, 0, 31, 31}, Depth::Eight);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) source.SetAlpha8(x, y, (x / 3 + y / 3) % 2 == 0 ? 200 : 0);
    ImageMRImage pyramid(source);
    Transformer transformer;
    transformer.SetTransform(0.0, 0.0, 0.0, 0.0, 0.25, 0.25, 0.0);
    Rect rect;
    const auto reduced = transformer.Apply(pyramid, rect);
    CHECK_EQ(pyramid.GetScale(), 0.25);
    const Image* level = pyramid.GetWholeLevelImage(2.0, false, 0);
    REQUIRE(level != nullptr);
    for (int y = 1; y < 7; ++y)
        for (int x = 1; x < 7; ++x) CHECK_EQ(ValuesAt(*reduced, x, y), ValuesAt(*level, x, y));
    CHECK_FALSE(SamePixels(*transformer.Apply(source, rect), reference::Picture(*reduced)));
}

TEST_CASE("a pyramid at its own size is its image") {
    const Image source = NoiseImage({0, 0, 9, 9}, PixelType::Colour, Depth::Eight, 4);
    ImageMRImage pyramid(source);
    Rect rect;
    CHECK(SamePixels(*Transformer().Apply(pyramid, rect), reference::Picture(source)));
    const auto moved = Moving(0.25, 0.0).Apply(source, rect);
    CHECK(SamePixels(*Moving(0.25, 0.0).Apply(pyramid, rect), reference::Picture(*moved)));
}

TEST_CASE("matrices without inverse and results beyond any canvas give an empty image") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Image source = FlatImage({0, 0, 99, 99}, PixelType::Colour, Depth::Eight, {1, 2, 3, 4});
    ImageMRImage pyramid(source);
    for (const Matrix3& matrix :
         {Matrix3::Scaling(0.0, 1.0), Matrix3::Scaling(nan, 1.0), Matrix3::Translation(nan, 0.0),
          Matrix3::Translation(infinity, 0.0), Matrix3::Scaling(infinity, infinity), Matrix3::Scaling(1e300, 1e300),
          Matrix3::Scaling(1e-300, 1e-300), Matrix3::Scaling(1e6, 1e6), Matrix3::Translation(1e300, 0.5),
          Matrix3::Translation(2147483600.0, 0.0), Matrix3::Translation(-1e12, 7.0), Matrix3::Scaling(1e-5, 1e-5)}) {
        Transformer transformer;
        transformer.SetMatrix(matrix);
        Rect rect(1, 2, 3, 4);
        const auto result = transformer.Apply(source, rect);
        REQUIRE(result != nullptr);
        CHECK_EQ(rect, Rect());
        CHECK_EQ(transformer.Apply(pyramid, rect)->ByteSize(), 0);
        Image target = FlatImage({0, 0, 9, 9}, PixelType::Colour, Depth::Eight, {1, 2, 3, 4});
        transformer.ApplyInto(source, target, target);  // survives, whatever it gives
        transformer.ApplyInto(pyramid, target, target);
    }
}

TEST_CASE("hostile rectangles are cut to the target") {
    constexpr std::int32_t low = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t high = std::numeric_limits<std::int32_t>::max();
    const Image source = FlatImage({0, 0, 9, 9}, PixelType::Colour, Depth::Fourteen, {1, 2, 3, 4});
    for (const Rect& rect : {Rect(low, low, high, high), Rect(high, high, low, low), Rect(low, 0, low, 0),
                             Rect(high, high, high, high), Rect(3, 9, 2, 0), Rect()}) {
        for (const double scale : {1.0, 1e-9, 1e9, -1.0}) {
            Image target = FlatImage({-5, -5, 14, 14}, PixelType::Colour, Depth::Fourteen, {9, 9, 9, 9});
            Transformer transformer;
            transformer.SetTransform(0.0, 0.0, 0.25, 0.25, scale, scale, 12.0);
            transformer.LimitSource(rect);
            transformer.ApplyInto(source, target, rect);
            transformer.LimitTarget(rect);
            transformer.ApplyInto(source, target, target);
        }
    }
    Image target = FlatImage({0, 0, 9, 9}, PixelType::Colour, Depth::Fourteen, {9, 9, 9, 9});
    Moving(0.0, 0.0).ApplyInto(source, target, {low, low, high, high});
    CHECK(SamePixels(target, reference::Picture(source)));
}

TEST_CASE("an empty image transforms to an empty image") {
    const Image source = Image::Colour(Rect(), Depth::Eight, AlphaForm::Straight);
    Rect rect(1, 2, 3, 4);
    CHECK_EQ(Transformer().Apply(source, rect)->ByteSize(), 0);
    CHECK_EQ(Moving(0.5, 0.5).Apply(source, rect)->ByteSize(), 0);
    CHECK_FALSE(rect.IsValid());
}

TEST_CASE("the transformer declares the seven values") {
    const ParameterList& list = Transformer::ClassParameters();
    REQUIRE_EQ(list.size(), 4);
    const std::array labels{"Position", "Scale", "Rotation", "Origin"};
    const std::array names{"Transform Move", "Transform Scale", "Transform Rotation", "Transform Origin"};
    const std::array types{6, 5, 23, 5};
    for (std::size_t i = 0; i < 4; ++i) {
        CHECK_EQ(list[i].code, i);
        CHECK_EQ(list[i].label, labels[i]);
        CHECK_EQ(list[i].name, names[i]);
        CHECK_EQ(static_cast<int>(list[i].type), types[i]);
    }
    Transformer transformer;
    const auto setPair = [&](std::size_t index, double x, double y) {
        DoubleXYValue value(&list[index]);
        value.setDoubleXY(x, y);
        transformer.setParameter(&value);
    };
    setPair(0, 10.0, 20.0);
    setPair(1, 2.0, 3.0);
    setPair(3, 1.0, 1.0);
    FloatValue turn(&list[2]);
    turn.setFloat(90.0F);
    transformer.setParameter(&turn);
    transformer.valuesChanged();
    Transformer wanted;
    wanted.SetTransform(1.0, 1.0, 10.0, 20.0, 2.0, 3.0, 90.0);
    CHECK_EQ(transformer.Forward(), wanted.Forward());
    CHECK_EQ(transformer.Inverse(), wanted.Inverse());
}

TEST_CASE("one worker and many resample to the same bytes") {
    for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            const Image source = NoiseImage({0, 0, 399, 299}, type, depth, 12);
            Transformer transformer;
            transformer.SetTransform(200.0, 150.0, 200.0, 150.0, 1.1, 0.9, 31.0);
            Rect rect;
            MultiProcessor::Restart(1);
            const auto alone = transformer.Apply(source, rect);
            MultiProcessor::Restart(2);
            CHECK(SamePixels(*transformer.Apply(source, rect), reference::Picture(*alone)));
            MultiProcessor::Restart(0);
        }
    }
}

}  // namespace chalkpane
