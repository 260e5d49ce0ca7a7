#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <new>

#include "tests/chalkpane/brush/brush_fixture.h"

using namespace chalkpane;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int maximum = std::numeric_limits<int>::max();
constexpr int minimum = std::numeric_limits<int>::min();

// Finds no memory where it is told to.
class StarvedForTest final : public FilterClass<StarvedForTest, Filter> {
public:
    static constexpr FilterIdentity identity{"Starved", "Starved", ""};
    static constexpr auto Parameters() { return std::array<ParameterRow<StarvedForTest>, 0>{}; }
    void Apply(const Image& /*source*/, std::unique_ptr<Image>& /*result*/, bool /*fast*/, const Rect* /*region*/,
               bool /*expand*/) override {
        if (atDabs) throw std::bad_alloc();
    }
    [[nodiscard]] Rect InputRegion(const Rect& /*rect*/, const Rect& region) const override {
        if (atUpdate) throw std::bad_alloc();
        return region;
    }
    bool atUpdate = false;
    bool atDabs = false;
};

}  // namespace

TEST_CASE("a brush that found no memory for its source paints nothing until it does") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    auto filter = std::make_unique<StarvedForTest>();
    StarvedForTest& starved = *filter;
    brush.Filters().push_back(std::move(filter));
    starved.atUpdate = true;
    brush.SetSize(3);
    CHECK_EQ(brush.Source(), nullptr);
    brush.SetColour(whitePaint);
    ValueOf(brush, BrushParameter::BuildUp).setBoolean(true);
    CHECK_FALSE(brush.BeginStroke(10, 10, 1).IsValid());
    CHECK_FALSE(brush.ContinueStroke(10, 10, 1).IsValid());
    CHECK_FALSE(brush.ContinueStroke(40, 10, 1).IsValid());
    CHECK_FALSE(brush.EndStroke(40, 10, 1).IsValid());
    CHECK_EQ(PaintedPixels(canvas), 0);
    starved.atUpdate = false;
    brush.Update();
    CHECK(brush.BeginStroke(10, 10, 1).IsValid());
}

TEST_CASE("a dab that found no memory is left out and the stroke goes on") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetSpacing(2.0, SpacingType::Keep);  // of 7 pixels: the dabs do not touch
    brush.SetSize(3);
    brush.SetColour(whitePaint);
    auto filter = std::make_unique<StarvedForTest>();
    StarvedForTest& starved = *filter;
    brush.Filters().push_back(std::move(filter));
    starved.atDabs = true;
    CHECK_FALSE(brush.BeginStroke(10, 10, 1).IsValid());
    CHECK_EQ(PaintedPixels(canvas), 0);
    starved.atDabs = false;
    CHECK(brush.EndStroke(40, 10, 1).IsValid());
    CHECK_EQ(Alpha(canvas, 10, 10), 0);
    CHECK_GT(Alpha(canvas, 24, 10), 0);
}

TEST_CASE("samples that are NaN, or too far away, paint nothing and leave the stroke where it was") {
    Image canvas = NewCanvas();
    Image expected = NewCanvas();
    BasicBrush brush("Chalk");
    BasicBrush plain("Chalk");
    for (auto [one, image] : {std::pair(&brush, &canvas), std::pair(&plain, &expected)}) {
        one->SetTarget(image);
        one->SetSize(3);
        one->SetColour(whitePaint);
        one->BeginStroke(10, 10, 1);
    }
    for (const double odd : {notANumber, infinity, -infinity, 1e10, -1e300, 2147483648.0}) {
        CAPTURE(odd);
        CHECK_FALSE(brush.BeginStroke(odd, 10, 1).IsValid());
        CHECK_FALSE(brush.ContinueStroke(10, odd, 1).IsValid());
        CHECK_FALSE(brush.ContinueStroke(12, 12, odd).IsValid());
        CHECK_FALSE(brush.EndStroke(odd, odd, odd).IsValid());
    }
    CHECK_EQ(brush.ContinueStroke(20, 12, 1), plain.ContinueStroke(20, 12, 1));
    CHECK_EQ(brush.EndStroke(20, 12, 1), plain.EndStroke(20, 12, 1));
    for (std::int32_t y = 0; y < 64; ++y)
        for (std::int32_t x = 0; x < 64; ++x) REQUIRE_EQ(canvas.GetPixel8(x, y), expected.GetPixel8(x, y));
}

TEST_CASE("a stroke to the farthest place and back is survived") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetSize(1);
    brush.SetColour(whitePaint);
    brush.BeginStroke(-BasicBrush::farthest, BasicBrush::farthest, BasicBrush::farthest);
    brush.ContinueStroke(BasicBrush::farthest, -BasicBrush::farthest, -BasicBrush::farthest);
    brush.EndStroke(10, 10, 1);
    CHECK(brush.BeginStroke(10, 10, 1).IsValid());
}

TEST_CASE("a spacing of nothing places one dab a step at most") {
    for (const double spacing : {0.0, -0.0, notANumber, infinity, -infinity, 1e308, -1e308, 1e-308}) {
        for (const int type : {0, 1, 2, 255}) {
            CAPTURE(spacing);
            CAPTURE(type);
            Image canvas = NewCanvas();
            BasicBrush brush("Chalk");
            brush.SetTarget(&canvas);
            brush.SetSpacing(spacing, type);
            brush.SetSize(1);
            brush.SetColour(whitePaint);
            DabRecorder& recorder = Record(brush);
            brush.BeginStroke(10, 10, 1);
            brush.ContinueStroke(50, 50, 1);
            CHECK_LE(recorder.dabs.size(), 1 + SplineIterator::steps);
            brush.EndStroke(50, 50, 1);
            CHECK_LE(recorder.dabs.size(), 1 + 5 * SplineIterator::steps);
        }
    }
}

// A negative spacing acts by its size, since it is squared.
TEST_CASE("a negative spacing places dabs as its positive reference does, where the spacing type keeps it") {
    std::size_t dabs[2] = {};
    for (const int sign : {0, 1}) {
        Image canvas = NewCanvas();
        BasicBrush brush("Chalk");
        brush.SetTarget(&canvas);
        brush.SetSpacing(sign == 0 ? 0.5 : -0.5, SpacingType::Keep);
        brush.SetSize(2);
        brush.SetColour(whitePaint);
        DabRecorder& recorder = Record(brush);
        brush.BeginStroke(10, 10, 1);
        brush.EndStroke(50, 50, 1);
        dabs[sign] = recorder.dabs.size();
    }
    CHECK_EQ(dabs[0], dabs[1]);
    CHECK_GT(dabs[0], 10);
}

TEST_CASE("sizes that cannot be built paint nothing and are recovered from") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    for (const char* profile : {"Soft", "Texture", "Feathered"}) {
        for (const int size : {-1, -7, minimum, maximum, 1 << 30, 70000, 5000}) {
            CAPTURE(size);
            SourceValueOf(brush, SourceParameter::ProfileName).setString(profile);
            brush.SetSize(size);
            brush.SetColour(whitePaint);
            brush.BeginStroke(10, 10, 1);
            brush.ContinueStroke(40, 10, 1);
            brush.EndStroke(40, 10, 1);
        }
        brush.SetSize(2);
        CHECK(brush.BeginStroke(10, 10, 1).IsValid());
    }
}

TEST_CASE("numbers that are none in every setting are survived") {
    for (const double odd : {notANumber, infinity, -infinity, 1e300, -1e300}) {
        for (const int sourceType : {0, 1, 2, 3, 4, 5, 6, 7, 8, 200}) {
            CAPTURE(odd);
            CAPTURE(sourceType);
            Image canvas = NewCanvas();
            BasicBrush brush("Chalk");
            brush.SetTarget(&canvas);
            brush.SetSourceType(sourceType);
            brush.SetBlendMode(sourceType);
            brush.SetMatchPath(true);
            ValueOf(brush, BrushParameter::Opacity).setDouble(odd);
            ValueOf(brush, BrushParameter::Decay).setDouble(odd);
            ValueOf(brush, BrushParameter::AdjustSpacing).setBoolean(true);
            SourceValueOf(brush, SourceParameter::Flatness).setDouble(odd);
            SourceValueOf(brush, SourceParameter::Rotation)
                .setFloat(static_cast<float>(std::isfinite(odd) ? 1e30 : odd));
            SourceValueOf(brush, SourceParameter::Roundness)
                .setFloat(static_cast<float>(std::isfinite(odd) ? 1e30 : odd));
            SourceValueOf(brush, SourceParameter::Feather).setDouble(odd);
            SourceValueOf(brush, SourceParameter::Offset).setDoubleXY(odd, odd);
            SourceValueOf(brush, SourceParameter::Pickup)
                .setEnumeration(static_cast<std::uint8_t>(PickupMode::EveryDab));
            SourceValueOf(brush, SourceParameter::Rows).setInteger(0);
            SourceValueOf(brush, SourceParameter::Columns).setInteger(0);
            brush.SetSize(2);
            brush.SetColour(whitePaint);
            brush.BeginStroke(10, 10, 1);
            brush.ContinueStroke(30, 14, 1);
            brush.EndStroke(30, 14, 1);
        }
    }
}

TEST_CASE("a stroke that is ended without a beginning is survived") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    brush.EndStroke(30, 30, 1);
    brush.ContinueStroke(10, 10, 1);
    CHECK(brush.BeginStroke(10, 10, 1).IsValid());
}

TEST_CASE("a target of one channel, or of no size, is left alone") {
    Image mask = Image::Mask(16, 16, Depth::Eight);
    Image empty = Image::Colour(0, 0, Depth::Eight, AlphaForm::Straight);
    BasicBrush brush("Chalk");
    for (Image* target : {&mask, &empty}) {
        brush.SetTarget(target);
        brush.SetColour(whitePaint);
        brush.BeginStroke(4, 4, 1);
        brush.EndStroke(9, 9, 1);
    }
    for (std::int32_t y = 0; y < 16; ++y)
        for (const auto value : mask.Row8(y)) REQUIRE_EQ(value, 0);
}

TEST_CASE("values that an owner has taken out of a brush are not missed") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    for (std::uint8_t code = 0; code < 14; ++code) {
        if (code != 10) brush.Values().removeValue(BasicBrush::ClassParameters().find(code));
        brush.SourceValues().removeValue(BrushSource::ClassParameters().find(code));
    }
    brush.SetSourceType(SourceType::Eraser);
    brush.SetBlendMode(1);
    brush.SetSpacing(1, SpacingType::ShortenAndThin);
    brush.SetMatchPath(true);
    brush.SetSize(3);
    brush.SetColour(whitePaint);
    CHECK(brush.BeginStroke(10, 10, 1).IsValid());
}

// A dab of radius 2 touches the canvas, whose pixels are 0 .. 63, from some 4 + 2 pixels beside it at most; with the
// room for rounding a whole dab further is surely far enough.
TEST_CASE("samples surely miss a target that lies beside all of them, or everywhere when there are no dabs") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    brush.SetSize(2);
    brush.BeginStroke(10, 10, 1);
    CHECK(brush.SurelyMisses({75, -500, 900, 500}));
    CHECK(brush.SurelyMisses({-500, 75, 500, 76}));
    CHECK(brush.SurelyMisses({-500, -900, 500, -12}));
    CHECK_FALSE(brush.SurelyMisses({-500, -500, 500, 500}));
    CHECK_FALSE(brush.SurelyMisses({65, 10, 900, 20}));
    CHECK_FALSE(brush.SurelyMisses({notANumber, notANumber, notANumber, notANumber}));
    for (const int radius : {-1, 1025}) {
        brush.SetSize(radius);
        brush.BeginStroke(10, 10, 1);
        CHECK(brush.SurelyMisses({0, 0, 63, 63}));
        CHECK_FALSE(brush.ContinueStroke(50, 50, 1).IsValid());
    }
    brush.SetSize(2);
    brush.SetMatchPath(true);
    brush.Update();
    brush.BeginStroke(10, 10, 1);
    CHECK_FALSE(brush.SurelyMisses({75, -500, 900, 500}));
}
