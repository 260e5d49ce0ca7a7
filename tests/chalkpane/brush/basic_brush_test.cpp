#include "chalkpane/brush/basic_brush.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "chalkpane/brush/profiles/profile_preset.h"
#include "tests/chalkpane/brush/brush_fixture.h"

using namespace chalkpane;

namespace {

constexpr Rect nothing{};

}  // namespace

TEST_CASE("the parameters of a brush stand in their order with their defaults") {
    struct Row {
        const char* label;
        const char* name;
        int code;
        int type;
    };
    const Row rows[] = {
        {"Name", "Brush Name", 0, 11},
        {"Source Type", "Brush Source Type", 1, 8},
        {"File", "Cutout File", 2, 17},
        {"Opacity", "Brush Opacity", 3, 1},
        {"Decay", "Brush Decay", 4, 1},
        {"Spacing", "Brush Spacing", 5, 1},
        {"Adjust Spacing", "Brush Adjust Spacing", 6, 2},
        {"Spacing Type", "Brush Space Type", 7, 8},
        {"Match Path", "Brush Match Path", 8, 2},
        {"Build Up", "Brush Build Up", 9, 2},
        {"Profile Graph", "Profile Graph", 10, 7},
        {"Global Parameters", "Brush Global Parameters", 11, 2},
        {"Blend Mode", "Brush Blend Mode", 12, 8},
        {"Group", "Brush Group", 13, 11},
    };
    const ParameterList& list = BasicBrush::ClassParameters();
    REQUIRE_EQ(list.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        CAPTURE(i);
        CHECK_EQ(static_cast<int>(list[i].code), rows[i].code);
        CHECK_EQ(list[i].label, rows[i].label);
        CHECK_EQ(list[i].name, rows[i].name);
        CHECK_EQ(static_cast<int>(list[i].type), rows[i].type);
    }
    CHECK_EQ(list[3].flagC, 1);
    CHECK_EQ(list[4].flagC, 1);

    BasicBrush brush("Chalk");
    std::string text;
    ValueOf(brush, BrushParameter::Name).getString(text);
    CHECK_EQ(text, "Chalk");
    ValueOf(brush, BrushParameter::Group).getString(text);
    CHECK_EQ(text, "Other");
    double number = 0;
    ValueOf(brush, BrushParameter::Spacing).getDouble(number);
    CHECK_EQ(number, 0.15);
    ValueOf(brush, BrushParameter::Opacity).getDouble(number);
    CHECK_EQ(number, 1.0);
    std::uint8_t index = 0;
    ValueOf(brush, BrushParameter::SpacingType).getEnumeration(index);
    CHECK_EQ(index, 2);
}

TEST_CASE("a brush without a target changes nothing and gives the empty rectangle") {
    BasicBrush brush("Chalk");
    brush.SetColour(whitePaint);
    DabRecorder& recorder = Record(brush);
    CHECK_EQ(brush.BeginStroke(10, 10, 1), nothing);
    CHECK_EQ(brush.ContinueStroke(30, 10, 1), nothing);
    CHECK_EQ(brush.EndStroke(30, 10, 1), nothing);
    CHECK(recorder.dabs.empty());
    CHECK_EQ(recorder.advances, 0);
}

TEST_CASE("a click without movement paints exactly one dab") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    DabRecorder& recorder = Record(brush);
    // Size 5: 11 pixels, the offset is 5.5. In the middle of a pixel the dab is not shifted by a part of one.
    brush.SetSize(5);
    brush.SetColour(whitePaint);
    CHECK_EQ(brush.BeginStroke(20.5, 30.5, 1), Rect(15, 25, 25, 35));
    CHECK_EQ(brush.EndStroke(20.5, 30.5, 1), nothing);
    CHECK_EQ(recorder.dabs.size(), 1);
    CHECK_GT(Alpha(canvas, 20, 30), 200);
}

TEST_CASE("a brush that was never given a colour paints nothing") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    CHECK_EQ(brush.BeginStroke(20, 30, 1), nothing);
    CHECK_EQ(PaintedPixels(canvas), 0);
    brush.SetColour(whitePaint);
    CHECK_NE(brush.BeginStroke(20, 30, 1), nothing);
    CHECK_NE(PaintedPixels(canvas), 0);
}

TEST_CASE("the rectangle is that of the dab within the target") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetSize(5);
    brush.SetColour(whitePaint);
    CHECK_EQ(brush.BeginStroke(0.5, 0.5, 1), Rect(0, 0, 5, 5));
    CHECK_EQ(brush.BeginStroke(-300, 0, 1), nothing);
}

// One dab: op = trunc(255.001) = 255, w = 256 * 255 = 65280, (255 * 65280) >> 16 = 254.
TEST_CASE("one dab of one pixel at full opacity leaves 254") {
    Image canvas = NewCanvas();
    BasicBrush brush("Pixel");
    MakePixelBrush(brush, canvas);
    CHECK_EQ(brush.BeginStroke(4.5, 6.5, 1), Rect(4, 6, 4, 6));
    CHECK_EQ(Alpha(canvas, 4, 6), 254);
    CHECK_EQ(PaintedPixels(canvas), 1);
}

// Spacing 3 of a dab of one pixel. Samples 4.5, 4.5, 4.5, 28.5: x = 4.5 + 24 * t^3 / 6, beyond 7.5 from t^3 = 0.75 on
// and never beyond 10.5. The first dab takes the whole opacity and leaves sqrt(1 - 0.75) = 0.5 of it: op = trunc(127.5)
// = 127, w = 256 * 127 = 32512, (255 * 32512) >> 16 = 126.
TEST_CASE("every dab fades the rest of the stroke by the square root of what decay leaves") {
    const auto secondDab = [](double decay) {
        Image canvas = NewCanvas();
        BasicBrush brush("Pixel");
        ValueOf(brush, BrushParameter::Decay).setDouble(decay);
        brush.SetSpacing(3.0, SpacingType::Keep);
        MakePixelBrush(brush, canvas);
        brush.BeginStroke(4.5, 4.5, 1);
        CHECK_EQ(brush.ContinueStroke(28.5, 4.5, 1), Rect(7, 4, 7, 4));
        CHECK_EQ(Alpha(canvas, 4, 4), 254);
        return Alpha(canvas, 7, 4);
    };
    CHECK_EQ(secondDab(0.0), 254);
    CHECK_EQ(secondDab(0.75), 126);
    CHECK_EQ(secondDab(1.0), 0);
    // A root of a negative number does not exist; such a brush is spent like that of decay 1.
    CHECK_EQ(secondDab(3.0), 0);
    CHECK_EQ(secondDab(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST_CASE("a new stroke has its whole opacity again") {
    Image canvas = NewCanvas();
    BasicBrush brush("Pixel");
    ValueOf(brush, BrushParameter::Decay).setDouble(1.0);
    MakePixelBrush(brush, canvas);
    brush.BeginStroke(4.5, 4.5, 1);
    brush.BeginStroke(9.5, 4.5, 1);
    CHECK_EQ(Alpha(canvas, 9, 4), 254);
}

// 0.5 * 255.001 = 127.5: op 127 and, as above, 126.
TEST_CASE("opacity is the brush's times the pressure") {
    Image canvas = NewCanvas();
    BasicBrush brush("Pixel");
    MakePixelBrush(brush, canvas);
    brush.BeginStroke(4.5, 4.5, 0.5);
    CHECK_EQ(Alpha(canvas, 4, 4), 126);
    ValueOf(brush, BrushParameter::Opacity).setDouble(0.5);
    brush.Update();
    brush.BeginStroke(8.5, 4.5, 1);
    CHECK_EQ(Alpha(canvas, 8, 4), 126);
}

// 0.15 * 41 = 6.15, and a step along the curve adds at most 0.02 here.
TEST_CASE("spacing 0.15 at size 20 places dabs 6.15 apart") {
    Image canvas = NewCanvas(600, 64);
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetSize(20);
    brush.SetColour(whitePaint);
    DabRecorder& recorder = Record(brush);
    brush.BeginStroke(40, 30, 1);
    for (int x = 60; x <= 560; x += 20) brush.ContinueStroke(x, 30, 1);
    REQUIRE_GT(recorder.dabs.size(), 60);
    const int first = recorder.dabs.front().x0;
    for (std::size_t i = 0; i < recorder.dabs.size(); ++i) {
        const double moved = recorder.dabs[i].x0 - first;
        const auto gaps = static_cast<double>(i);
        CHECK_GE(moved, std::floor(6.15 * gaps) - 1);
        CHECK_LE(moved, 6.18 * gaps + 1);
    }
}

// One pixel, spacing 4, samples one pixel apart: L = 1 and the old spacing is 4. The third sample after the first one
// takes the curve from 5.5 to 6.5, where the first point beyond 4.5 + 1 gets a dab in pixel 5. Type 1 thins it by
// sqrt(1 / 4) = 0.5: op = 127 and 126 is left. Type 0 keeps the spacing: nothing until beyond 8.5.
TEST_CASE("a segment shorter than the spacing shortens it, and thins the stroke in type 1 alone") {
    const auto stroke = [](int spacingType, int expectedPixels) {
        Image canvas = NewCanvas();
        BasicBrush brush("Pixel");
        brush.SetSpacing(4.0, spacingType);
        MakePixelBrush(brush, canvas);
        brush.BeginStroke(4.5, 4.5, 1);
        brush.ContinueStroke(5.5, 4.5, 1);
        brush.ContinueStroke(6.5, 4.5, 1);
        CHECK_EQ(PaintedPixels(canvas), 1);
        brush.ContinueStroke(7.5, 4.5, 1);
        CHECK_EQ(PaintedPixels(canvas), expectedPixels);
        return Alpha(canvas, 5, 4);
    };
    CHECK_EQ(stroke(0, 1), 0);
    CHECK_EQ(stroke(1, 2), 126);
    CHECK_EQ(stroke(2, 2), 254);
}

// Samples 20.5, 20.5, 20.5, 20.5 + L lead the curve to 20.5 + L / 6. L = 12: 2 pixels, squared 4, short of 5. L =
// 15: 2.5, squared 6.25; the spacing is 6.15 and not reached. The dab falls at the start, where a dab of size 20 has
// its left at 20.5 - 20.5 = 0 and its right at 40.
TEST_CASE("a brush that matches the path waits for a direction and then begins at the start") {
    for (const double length : {12.0, 15.0}) {
        CAPTURE(length);
        Image canvas = NewCanvas();
        BasicBrush brush("Chalk");
        brush.SetTarget(&canvas);
        brush.SetMatchPath(true);
        brush.SetSize(20);
        brush.SetColour(whitePaint);
        DabRecorder& recorder = Record(brush);
        CHECK_EQ(brush.BeginStroke(20.5, 20.5, 1), nothing);
        const Rect changed = brush.ContinueStroke(20.5 + length, 20.5, 1);
        if (length < 15) {
            CHECK_EQ(changed, nothing);
            CHECK(recorder.dabs.empty());
        } else {
            CHECK_EQ(changed, Rect(0, 0, 40, 40));
            CHECK_EQ(recorder.dabs.size(), 1);
        }
    }
}

TEST_CASE("a brush that matches the path paints nothing at a click without movement") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    brush.SetTarget(&canvas);
    brush.SetMatchPath(true);
    brush.Update();
    brush.SetColour(whitePaint);
    CHECK_EQ(brush.BeginStroke(20, 20, 1), nothing);
    CHECK_EQ(brush.EndStroke(20, 20, 1), nothing);
    CHECK_EQ(PaintedPixels(canvas), 0);
}

// One pixel, spacing 2: squared 4, so a path is beyond the spacing before it has come the root of 5. Samples 10.5 three
// times and 28.5: x = 10.5 + 3 * t^3 is beyond 12.5 from t^3 = 2/3 on, in pixel 12. Pixel 10, the start, stays empty.
TEST_CASE("a path that outruns the spacing at once begins where it is, not at the start") {
    Image canvas = NewCanvas();
    BasicBrush brush("Pixel");
    brush.SetSpacing(2.0, SpacingType::Keep);
    brush.SetMatchPath(true);
    MakePixelBrush(brush, canvas);
    brush.BeginStroke(10.5, 10.5, 1);
    CHECK_EQ(brush.ContinueStroke(28.5, 10.5, 1), Rect(12, 10, 12, 10));
    CHECK_EQ(PaintedPixels(canvas), 1);
}

// A dab of size 5 and flatness 5 is 2 wide along its rotated axis. Along x the angle is 0, along y it is
// -atan2(negative, 0) = 90 degrees: the same dab, lying down.
TEST_CASE("a brush that matches the path turns its dabs along the movement") {
    const auto extent = [](double dx, double dy) {
        Image canvas = NewCanvas();
        BasicBrush brush("Chalk");
        brush.SetTarget(&canvas);
        brush.SetMatchPath(true);
        brush.SetSpacing(3.0, SpacingType::Keep);
        SourceValueOf(brush, SourceParameter::Flatness).setDouble(5.0);
        brush.SetSize(5);
        brush.SetColour(whitePaint);
        brush.BeginStroke(30.5, 30.5, 1);
        brush.ContinueStroke(30.5 + dx, 30.5 + dy, 1);
        Rect painted;
        for (std::int32_t y = 0; y < 64; ++y)
            for (std::int32_t x = 0; x < 64; ++x)
                if (Alpha(canvas, x, y) != 0) painted.ExtendTo(x, y);
        return painted;
    };
    const Rect along = extent(18, 0);
    const Rect up = extent(0, 18);
    CHECK_GT(along.Height(), along.Width());
    CHECK_GT(up.Width(), up.Height());
}

// Flatness 2: along x the angle is atan2(dx, 0) = a quarter turn, so the size is w / sqrt(cos^2 + (2 sin)^2) = w / 2;
// along y it is 0 and the size w. Were the arguments the usual way round, it would be the other way about.
TEST_CASE("adjusted spacing takes the angle with the x difference first") {
    const auto dabs = [](double dx, double dy) {
        Image canvas = NewCanvas();
        BasicBrush brush("Chalk");
        ValueOf(brush, BrushParameter::AdjustSpacing).setBoolean(true);
        brush.SetSpacing(1.0, SpacingType::Keep);
        brush.SetTarget(&canvas);
        SourceValueOf(brush, SourceParameter::Flatness).setDouble(2.0);
        brush.SetSize(2);
        brush.SetColour(whitePaint);
        DabRecorder& recorder = Record(brush);
        brush.BeginStroke(10, 10, 1);
        for (int i = 1; i <= 10; ++i) brush.ContinueStroke(10 + i * dx, 10 + i * dy, 1);
        return recorder.dabs.size();
    };
    // 40 pixels, less the one the curve trails behind, at 2.5 and at 5.
    CHECK_EQ(dabs(4, 0), 15);
    CHECK_EQ(dabs(0, 4), 8);
}

TEST_CASE("a pointer held still builds up only when asked, and only once its last four samples agree") {
    for (const bool buildUp : {false, true}) {
        CAPTURE(buildUp);
        Image canvas = NewCanvas();
        BasicBrush brush("Chalk");
        ValueOf(brush, BrushParameter::BuildUp).setBoolean(buildUp);
        brush.SetSpacing(0.15, SpacingType::Keep);
        brush.SetTarget(&canvas);
        brush.SetSize(20);
        brush.SetColour(whitePaint);
        DabRecorder& recorder = Record(brush);
        brush.BeginStroke(20, 20, 1);
        brush.ContinueStroke(20, 20, 1);
        brush.ContinueStroke(20, 20, 1);
        CHECK_EQ(recorder.dabs.size(), buildUp ? 3 : 1);
        recorder.dabs.clear();
        // Half a pixel on: too short for a dab, and the samples differ for three more.
        for (int i = 0; i < 3; ++i) brush.ContinueStroke(20.5, 20, 1);
        CHECK(recorder.dabs.empty());
        CHECK_EQ(brush.ContinueStroke(20.5, 20, 1).IsValid(), buildUp);
        CHECK_EQ(recorder.dabs.size(), buildUp ? 1 : 0);
        // Another pressure is another sample.
        recorder.dabs.clear();
        brush.ContinueStroke(20.5, 20, 0.5);
        CHECK(recorder.dabs.empty());
    }
}

// 20.1 is no 32-bit float; the samples that are compared are, and so a sample that rounds to the same one is the same.
TEST_CASE("build up compares samples as they are stored") {
    Image canvas = NewCanvas();
    BasicBrush brush("Chalk");
    ValueOf(brush, BrushParameter::BuildUp).setBoolean(true);
    brush.SetTarget(&canvas);
    brush.Update();
    brush.SetColour(whitePaint);
    DabRecorder& recorder = Record(brush);
    brush.BeginStroke(20.1, 20, 1);
    brush.ContinueStroke(20.1F, 20, 1);
    CHECK_EQ(recorder.dabs.size(), 2);
}

// A curve trails behind its samples by up to two of them; the four steps of the end bring it to the last.
TEST_CASE("the end of a stroke leads the curve to its last sample") {
    Image canvas = NewCanvas(200, 64);
    BasicBrush brush("Pixel");
    brush.SetSpacing(1.0, SpacingType::Keep);
    MakePixelBrush(brush, canvas);
    brush.BeginStroke(10.5, 10.5, 1);
    brush.ContinueStroke(150.5, 10.5, 1);
    CHECK_EQ(Alpha(canvas, 40, 10), 0);
    const Rect changed = brush.EndStroke(150.5, 10.5, 1);
    CHECK_EQ(changed.y0, 10);
    CHECK_EQ(changed.y1, 10);
    CHECK_GE(changed.x1, 149);
    CHECK_GT(PaintedPixels(canvas), 120);  // of 140; steps of up to 0.2 make the dabs a little over one apart
}

TEST_CASE("settings take hold at the next update, a size at once") {
    Image canvas = NewCanvas();
    BasicBrush brush("Pixel");
    MakePixelBrush(brush, canvas);
    brush.BeginStroke(4.5, 4.5, 1);
    brush.SetSourceType(SourceType::Eraser);
    brush.SetBlendMode(2);
    brush.BeginStroke(6.5, 4.5, 1);
    CHECK_EQ(Alpha(canvas, 6, 4), 254);
    brush.Update();
    brush.BeginStroke(4.5, 4.5, 1);
    CHECK_EQ(Alpha(canvas, 4, 4), 0);

    SourceValueOf(brush, SourceParameter::ProfileName).setString("Soft");
    SourceValueOf(brush, SourceParameter::ProfileType).setEnumeration(static_cast<std::uint8_t>(ProfileType::Graph));
    brush.SetSize(3);
    CHECK_EQ(brush.BeginStroke(20.5, 20.5, 1).Width(), 7);
}

TEST_CASE("an update keeps the colour") {
    Image canvas = NewCanvas();
    BasicBrush brush("Pixel");
    MakePixelBrush(brush, canvas);
    brush.SetColour({16383, 0, 0});
    brush.Update();
    brush.BeginStroke(4.5, 4.5, 1);
    CHECK_EQ(canvas.GetPixel8(4, 4), Pixel8{0, 0, 254, 254});
}

// An image source without an image gives a dab of zeros. Composited, it changes nothing; in place of what is there, it
// takes it away: 255 - 255 = 0.
TEST_CASE("sources 6 and 7 replace what they cover, source 2 lies over it") {
    const auto left = [](SourceType sourceType) {
        Image canvas = NewCanvas();
        canvas.FillChannel(1.0);
        BasicBrush brush("Pixel");
        brush.SetSourceType(sourceType);
        MakePixelBrush(brush, canvas);
        brush.BeginStroke(4.5, 4.5, 1);
        return Alpha(canvas, 4, 4);
    };
    CHECK_EQ(left(SourceType::Image), 255);
    CHECK_EQ(left(SourceType::Replace), 0);
    CHECK_EQ(left(SourceType::ReplaceToo), 0);
}

TEST_CASE("a cutout is painted while it is in use, and gone with null") {
    Image canvas = NewCanvas();
    Image picture = Image::Colour(3, 3, Depth::Eight, AlphaForm::Straight);
    picture.FillChannel(1.0);
    BasicBrush brush("Cutout");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    brush.SetCutoutImage(&picture, true);
    brush.Update();
    CHECK_EQ(brush.Source()->GetSize(), 3.0);
    CHECK_LE(brush.BeginStroke(20, 20, 1).Width(), 5);
    brush.SetCutoutImage(&picture, false);
    brush.Update();
    CHECK_EQ(brush.Source()->GetSize(), 41.0);
    brush.SetCutoutImage(&picture, true);
    brush.SetCutoutImage(nullptr, true);
    brush.Update();
    CHECK_EQ(brush.Source()->GetSize(), 41.0);
}

TEST_CASE("a cutout outlives the picture it was made of") {
    Image canvas = NewCanvas();
    BasicBrush brush("Cutout");
    brush.SetTarget(&canvas);
    brush.SetColour(whitePaint);
    {
        Image picture = Image::Colour(3, 3, Depth::Eight, AlphaForm::Straight);
        picture.FillChannel(1.0);
        brush.SetCutoutImage(&picture, true);
    }
    brush.Update();
    CHECK_NE(brush.BeginStroke(20, 20, 1), nothing);
}

// The name stands for a type only where it is one of the three; any other leaves the type, the last name's included.
TEST_CASE("a profile's name picks its type, and an unknown name keeps the type there was") {
    BasicBrush brush("Chalk");
    const auto typeAfter = [&](const char* name) {
        SourceValueOf(brush, SourceParameter::ProfileName).setString(name);
        brush.Update();
        std::uint8_t type = 99;
        SourceValueOf(brush, SourceParameter::ProfileType).getEnumeration(type);
        return static_cast<int>(type);
    };
    CHECK_EQ(typeAfter("Soft"), 0);
    CHECK_EQ(typeAfter("Texture"), 3);
    CHECK_EQ(typeAfter("Soft"), 3);
    CHECK_EQ(typeAfter("Feathered"), 4);
    CHECK_EQ(typeAfter("OnePixel"), 2);
    CHECK_EQ(typeAfter("onepixel"), 2);
}

TEST_CASE("a preset stands before the built-in names and brings its mask or its graph") {
    BasicBrush brush("Chalk");
    GraphValue curve(&BasicBrush::ClassParameters()[10]);
    ProfilePresets() = {{"Texture", ProfileType::Image, FileName("grain.png"), nullptr},
                        {"Curved", ProfileType::Graph, FileName(), &curve}};
    SourceValueOf(brush, SourceParameter::ProfileName).setString("Texture");
    brush.Update();
    std::uint8_t type = 99;
    SourceValueOf(brush, SourceParameter::ProfileType).getEnumeration(type);
    CHECK_EQ(type, 1);
    FileName mask;
    FileNameValue::ask(SourceValueOf(brush, SourceParameter::ProfileMask), mask);
    CHECK_EQ(mask, FileName("grain.png"));
    SourceValueOf(brush, SourceParameter::ProfileName).setString("Curved");
    brush.Update();
    SourceValueOf(brush, SourceParameter::ProfileType).getEnumeration(type);
    CHECK_EQ(type, 0);
    CHECK_EQ(ValueOf(brush, BrushParameter::ProfileGraph).getParent(), &curve);
    ValueOf(brush, BrushParameter::ProfileGraph).setParent(nullptr);
    ProfilePresets().clear();
}

TEST_CASE("a target of the other depth has its dabs in that depth") {
    Image canvas = NewCanvas(64, 64, Depth::Fourteen);
    Image first = NewCanvas();
    BasicBrush brush("Pixel");
    MakePixelBrush(brush, first);
    brush.SetTarget(&canvas);
    CHECK_EQ(brush.BeginStroke(4.5, 4.5, 1), Rect(4, 4, 4, 4));
    // op = trunc(16383.001) = 16383, so A is 16383 and the pixel is the source's.
    CHECK_EQ(canvas.GetPixel14(4, 4), Pixel14{16383, 16383, 16383, 16383});
}

namespace {

// A brush whose mask plane is in use.
class MaskingBrush final : public BasicBrush {
public:
    MaskingBrush(Image& canvas, Image& maskImage) : BasicBrush("Mask") {
        MakePixelBrush(*this, canvas);
        maskTarget = &maskImage;
    }
    using BasicBrush::extraValues;
    using BasicBrush::maskPlaneClips;
    using BasicBrush::maskPlaneOn;
    using BasicBrush::maskValue;
    using BasicBrush::paintEraserFlag;
    using BasicBrush::paintPlaneOn;
};

Image NewMask() { return Image::Mask(64, 64, Depth::Eight); }

}  // namespace

// op = trunc(256.01) = 256, f = trunc(255 * 256 * 1.0039216) = 65536, v = (256 * 65536) >> 8: the value is reached.
TEST_CASE("the mask plane takes the mask value, and 0 from an erasing dab") {
    Image canvas = NewCanvas();
    Image mask = NewMask();
    MaskingBrush brush(canvas, mask);
    brush.maskPlaneOn = true;
    brush.maskValue = 200;
    brush.paintPlaneOn = false;
    CHECK_EQ(brush.BeginStroke(4.5, 4.5, 1), nothing);
    CHECK_EQ(PaintedPixels(canvas), 0);
    CHECK_EQ(mask.Row8(4)[4], 200);
    brush.paintEraserFlag = true;
    brush.paintPlaneOn = true;
    CHECK_EQ(brush.BeginStroke(4.5, 4.5, 1), Rect(4, 4, 4, 4));
    CHECK_EQ(mask.Row8(4)[4], 0);
    CHECK_EQ(Alpha(canvas, 4, 4), 0);
}

TEST_CASE("the mask plane keeps paint out where it has values") {
    Image canvas = NewCanvas();
    Image mask = NewMask();
    mask.Row8(4)[4] = 255;
    MaskingBrush brush(canvas, mask);
    brush.maskPlaneClips = true;
    brush.BeginStroke(4.5, 4.5, 1);
    brush.BeginStroke(6.5, 4.5, 1);
    CHECK_EQ(Alpha(canvas, 4, 4), 0);
    CHECK_EQ(Alpha(canvas, 6, 4), 254);
}

TEST_CASE("a new colour puts the mask plane out of use") {
    Image canvas = NewCanvas();
    Image mask = NewMask();
    MaskingBrush brush(canvas, mask);
    brush.maskPlaneOn = brush.maskPlaneClips = brush.paintEraserFlag = true;
    brush.maskValue = 9;
    brush.paintPlaneOn = false;
    brush.SetColour(whitePaint);
    CHECK(brush.paintPlaneOn);
    CHECK_FALSE(brush.maskPlaneOn);
    CHECK_FALSE(brush.maskPlaneClips);
    CHECK_FALSE(brush.paintEraserFlag);
    CHECK_EQ(brush.maskValue, 0);
}

TEST_CASE("extra values are handed over once and read") {
    Image canvas = NewCanvas();
    Image mask = NewMask();
    MaskingBrush brush(canvas, mask);
    const std::size_t before = brush.Values().size();
    auto extra = DataSet::createValue(BasicBrush::ClassParameters().find(BrushParameter::Opacity), false, nullptr);
    extra->setDouble(0.5);
    brush.extraValues.push_back(std::move(extra));
    brush.Update();
    brush.Update();
    CHECK_EQ(brush.Values().size(), before + 1);
    brush.BeginStroke(4.5, 4.5, 1);
    CHECK_EQ(Alpha(canvas, 4, 4), 126);
}
