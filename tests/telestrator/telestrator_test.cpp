#include "telestrator/telestrator.h"

#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

// The pixels that differ, as a rectangle; not valid when none do.
Rect Difference(const Pixels& before, const Pixels& after, Image& canvas) {
    Rect changed;
    for (std::size_t i = 0; i < before.size(); i += 4) {
        if (std::memcmp(&before[i], &after[i], 4) == 0) continue;
        const auto pixel = static_cast<std::int32_t>(i / 4);
        const std::int32_t x = pixel % canvasSize;
        const std::int32_t y = canvas.y1 - pixel / canvasSize;  // the canvas's y grows upward
        changed = changed.Union(Rect(x, y, x, y));
    }
    return changed;
}

// Draws through the points, one a field, and waits until the result stands on the canvas.
template <typename Points>
void Draw(TelestratorFixture& fixture, const Points& points) {
    fixture.Press(points.front().x, points.front().y);
    for (const auto& point : points) fixture.Move(point.x, point.y);
    fixture.Release(points.back().x, points.back().y);
    fixture.Fields(fixture.settings.shapeDelay + 1);  // one more, or the next press would join this stroke
    fixture.telestrator.Commit();
}

std::vector<CanvasPosition> Arc(double centreX, double centreY, double a, double b, int count) {
    std::vector<CanvasPosition> points;
    for (int i = 0; i < count; ++i) {
        const double t = 0.8 + 2 * 3.141592653589793 * i / (count - 1);
        points.push_back({centreX + a * std::cos(t), centreY + b * std::sin(t)});
    }
    return points;
}

TEST_CASE("A telestrator allocates nothing before its first field, and nothing happens before it") {
    TelestratorFixture fixture(RecognisingSettings());
    CHECK_FALSE(fixture.telestrator.HasCanvas());
    CHECK_EQ(fixture.Press(100, 100), Rect());
    CHECK_EQ(fixture.telestrator.Move(fixture.settings, {120, 100}), Rect());
    CHECK_EQ(fixture.Release(140, 100), Rect());
    CHECK_FALSE(fixture.telestrator.Commit());
    CHECK(fixture.telestrator.ApplyBrushMode(fixture.settings));
    fixture.telestrator.FollowSettings(fixture.settings);
    CHECK_EQ(fixture.telestrator.strokePoints, nullptr);
    CHECK_EQ(fixture.telestrator.strokePointCount, 0);
}

TEST_CASE("Each event of a stroke returns the pixels that it changed, and no other changed") {
    TelestratorFixture fixture;
    REQUIRE(fixture.Field());
    TelestratorSurface& surface = *fixture.telestrator.canvasSurface;
    Pixels before = PixelsOf(surface);
    const auto check = [&](const Rect& changed) {
        const Pixels after = PixelsOf(surface);
        const Rect difference = Difference(before, after, *surface.canvas);
        REQUIRE(difference.IsValid());
        CHECK_EQ(changed.Intersection(difference), difference);
        CHECK_EQ(fixture.telestrator.dirtyRect, changed);
        before = after;
    };
    check(fixture.Press(100, 100));
    fixture.telestrator.Move(fixture.settings, {180, 140});
    before = PixelsOf(surface);
    check(fixture.telestrator.Move(fixture.settings, {260, 100}));
    check(fixture.Release(300, 180));
}

TEST_CASE("The first change is the whole canvas, then a stroke's rectangle until an undo") {
    TelestratorFixture fixture;
    fixture.Field();
    CHECK(fixture.telestrator.TakeChange().whole);
    const Rect changed = fixture.Press(100, 100);
    const Telestrator::Change stroke = fixture.telestrator.TakeChange();
    CHECK_FALSE(stroke.whole);
    CHECK_EQ(stroke.rect, changed);
    CHECK_EQ(fixture.telestrator.TakeChange().rect, changed);  // it stays until the next event
    fixture.Press(-500, -500);
    CHECK_FALSE(fixture.telestrator.TakeChange().rect.IsValid());
    fixture.telestrator.RestoreUndoSnapshot();
    const Telestrator::Change undone = fixture.telestrator.TakeChange();
    CHECK(undone.whole);
    CHECK_EQ(undone.rect.Width(), canvasSize);
    CHECK_EQ(undone.rect.Height(), canvasSize);
    CHECK_FALSE(fixture.telestrator.TakeChange().whole);
}

// The bytes of the setting are red, green, blue, alpha in memory: 0x11, 0x22, 0x33. Many dabs make it opaque.
TEST_CASE("A pixel of a thick stroke lies in memory as red, green, blue, alpha") {
    TelestratorSettings settings;
    settings.brushWidth = 30;
    settings.brushColour = 0xFF332211U;
    TelestratorFixture fixture(settings);
    fixture.Field();
    for (int i = 0; i < 40; ++i) fixture.Press(300, 300);
    const std::byte* pixel = fixture.telestrator.canvasSurface->canvas->Address(300, 300);
    CHECK_EQ(static_cast<int>(pixel[0]), doctest::Approx(0x11).epsilon(0.1));
    CHECK_EQ(static_cast<int>(pixel[1]), doctest::Approx(0x22).epsilon(0.1));
    CHECK_EQ(static_cast<int>(pixel[2]), doctest::Approx(0x33).epsilon(0.1));
    CHECK_GT(static_cast<int>(pixel[3]), 250);
}

TEST_CASE("A drawn ellipse, circle and cross each become the clean shape") {
    TelestratorFixture ellipse(RecognisingSettings());
    ellipse.Field();
    Draw(ellipse, Arc(500, 480, 240, 120, 90));
    CHECK_GT(AlphaAt(*ellipse.telestrator.canvasSurface, 740, 480), 0);
    CHECK_EQ(AlphaAt(*ellipse.telestrator.canvasSurface, 500, 480), 0);
    CHECK(PixelsOf(*ellipse.telestrator.canvasSurface) == PixelsOf(*ellipse.telestrator.shapeSurface));

    TelestratorSettings circles = RecognisingSettings();
    circles.recogniseEllipse = false;
    TelestratorFixture circle(circles);
    circle.Field();
    Draw(circle, Arc(500, 500, 150, 150, 90));
    // The polygon's first corner lies at angle 0.
    CHECK_GT(AlphaAt(*circle.telestrator.canvasSurface, 650, 500), 0);
    CHECK_EQ(AlphaAt(*circle.telestrator.canvasSurface, 500, 500), 0);

    TelestratorSettings crosses = RecognisingSettings();
    crosses.crossDiameter = 100;
    TelestratorFixture cross(crosses);
    cross.Field();
    cross.Press(400, 400);
    cross.Move(600, 600);
    cross.Release(600, 600);
    cross.Press(600, 400);
    cross.Move(400, 600);
    cross.Release(400, 600);
    cross.Fields(2);
    CHECK(cross.telestrator.Commit());
    CHECK_GT(AlphaAt(*cross.telestrator.canvasSurface, 545, 545), 0);
    CHECK_EQ(AlphaAt(*cross.telestrator.canvasSurface, 580, 580), 0);  // half of 100 from the crossing, no further
}

TEST_CASE("A dab of three points undoes the last shape") {
    TelestratorFixture fixture(RecognisingSettings());
    fixture.Field();
    Draw(fixture, Arc(500, 480, 240, 120, 90));
    Draw(fixture, Arc(500, 480, 100, 50, 60));
    CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 600, 480), 0);
    fixture.Press(10, 10);
    fixture.Move(16, 10);
    fixture.Release(18, 10);
    CHECK_EQ(fixture.telestrator.strokePointCount, 3);
    fixture.Fields(2);
    CHECK_EQ(AlphaAt(*fixture.telestrator.canvasSurface, 600, 480), 0);
    CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 740, 480), 0);
}

TEST_CASE("The eraser takes off the canvas and the finished shapes alike") {
    TelestratorFixture fixture;
    fixture.settings.eraserWidth = 60;
    fixture.Field();
    fixture.Press(100, 300);
    fixture.Move(300, 300);
    fixture.Move(500, 300);
    fixture.Release(500, 300);
    REQUIRE_GT(AlphaAt(*fixture.telestrator.canvasSurface, 250, 300), 0);
    fixture.settings.brushType = BrushType::Eraser;
    REQUIRE(fixture.telestrator.ApplyBrushMode(fixture.settings));
    for (int i = 0; i < 20; ++i) fixture.Press(250, 300);
    CHECK_EQ(AlphaAt(*fixture.telestrator.canvasSurface, 250, 300), 0);
    CHECK_EQ(AlphaAt(*fixture.telestrator.shapeSurface, 250, 300), 0);
    CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 450, 300), 0);
}

TEST_CASE("A brush picture is carried along by the canvas's surface alone") {
    TelestratorFixture fixture;
    fixture.Field();
    const std::array<std::uint8_t, 8> bytes{1, 2, 3, 4, 5, 6, 7, 8};
    const BrushPicture picture{2, 1, bytes.data()};
    CHECK(fixture.telestrator.ApplyBrushMode(fixture.settings, &picture));
    REQUIRE_NE(fixture.telestrator.canvasSurface->brushImage, nullptr);
    CHECK_EQ(fixture.telestrator.canvasSurface->brushImage->GetPixel8(1, 0), Pixel8{5, 6, 7, 8});
    CHECK_EQ(fixture.telestrator.shapeSurface->brushImage, nullptr);
    CHECK(fixture.telestrator.ApplyBrushMode(fixture.settings));
    CHECK_EQ(fixture.telestrator.canvasSurface->brushImage, nullptr);
}

TEST_CASE("A shape drawn twice from the same events gives the same pixels") {
    TelestratorFixture first(RecognisingSettings());
    TelestratorFixture second(RecognisingSettings());
    for (TelestratorFixture* fixture : {&first, &second}) {
        fixture->telestrator.aspect = 1.5F;
        fixture->Field();
        Draw(*fixture, Arc(500, 480, 240, 120, 90));
        fixture->telestrator.ClearCanvas();
        Draw(*fixture, Arc(300, 300, 100, 140, 70));
        fixture->telestrator.RestoreUndoSnapshot();
    }
    CHECK(PixelsOf(*first.telestrator.canvasSurface) == PixelsOf(*second.telestrator.canvasSurface));
    CHECK_EQ(first.telestrator.undoIndex, second.telestrator.undoIndex);
}

TEST_CASE("Events with NaN, infinite and huge positions are survived, and the next stroke paints") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    TelestratorFixture fixture(RecognisingSettings());
    fixture.Field();
    const std::array<double, 10> values{nan, infinity, -infinity, 1e300, -1e9, 1e9, 2147483647.0, 0.0, -0.0, 512.0};
    for (const double x : values) {
        for (const double y : values) {
            fixture.Press(x, y);
            fixture.telestrator.Move(fixture.settings, {y, x});
            fixture.Release(x, y);
        }
    }
    fixture.Fields(2);
    fixture.telestrator.Commit();
    fixture.telestrator.ClearCanvas();
    fixture.settings.recogniseShapes = false;
    fixture.Press(300, 300);
    CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 300, 300), 0);
}

TEST_CASE("Any settings in any order are survived") {
    constexpr std::uint32_t seed = 20250301;
    CAPTURE(seed);
    std::mt19937 random(seed);
    constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    const std::array<std::int32_t, 9> numbers{-1, 0, 1, 2, 5, 100, greatest, least, 70000};
    const auto number = [&] { return numbers[random() % numbers.size()]; };
    const auto flag = [&] { return random() % 2 == 0; };
    const auto place = [&] { return static_cast<double>(random() % 1400) - 200; };
    TelestratorFixture fixture;
    for (int step = 0; step < 400; ++step) {
        TelestratorSettings& settings = fixture.settings;
        settings.brushType = static_cast<BrushType>(random() % 3);
        settings.brushWidth = static_cast<std::int32_t>(random() % 40) - 3;
        settings.eraserWidth = static_cast<std::int32_t>(random() % 70) - 3;
        settings.brushColour = static_cast<std::uint32_t>(random());
        settings.recogniseShapes = random() % 4 != 0;
        settings.recogniseEllipse = flag();
        settings.recogniseCircle = flag();
        settings.recogniseCross = flag();
        settings.shapeDelay = static_cast<std::int32_t>(random() % 4);
        settings.arrow = flag();
        settings.arrowLength = number();
        settings.arrowWidth = number();
        settings.crossDiameter = number();
        settings.maxUndos = static_cast<std::int32_t>(random() % 4) - 1;
        fixture.telestrator.ApplyBrushMode(settings);
        switch (random() % 6) {
            case 0:
                fixture.Press(place(), place());
                break;
            case 1:
                fixture.Release(place(), place());
                break;
            case 2:
                fixture.telestrator.RestoreUndoSnapshot();
                break;
            case 3:
                fixture.telestrator.Commit();
                break;
            default:
                fixture.Move(place(), place());
                break;
        }
    }
    CHECK(fixture.telestrator.HasCanvas());
}

}  // namespace
}  // namespace chalkpane::testing
