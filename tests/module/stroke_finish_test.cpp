#include "module/stroke_finish.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "module/shape_recognition.h"
#include "module/stroke_points.h"
#include "tests/module/module_fixture.h"
#include "tests/module/stroke_shapes.h"

namespace chalkpane::testing {
namespace {

PluginParameters Recognising() {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.MaxUndos = 3;
    values.ShapeDelay = 3;
    return values;
}

class FinishStage : public ModuleFixture {
public:
    explicit FinishStage(const Points& points, float aspect = 1) : ModuleFixture(Recognising()) {
        host.box = {-50 * aspect, -50, 0, 50 * aspect, 50, 0};
        Field();
        StoreStroke(plugin, points);
    }
};

Points Stored(const PluginInstance& plugin) {
    const auto points = StoredStroke(plugin);
    return {points.begin(), points.end()};
}

void PaintLine(TelestratorSurface& surface, const Points& points, double aspect) {
    surface.BeginStroke(points.front().x, points.front().y * aspect, 1);
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        surface.ContinueStroke(points[i].x, points[i].y * aspect, 1);
    }
    surface.EndStroke(points.back().x, points.back().y * aspect, 1);
}

TEST_CASE("A stroke of 7 points becomes a line of 4: indices 0, 1, 5, 6") {
    const Points points = WavePoints(100, 300, 60, 7);
    FinishStage fixture(points);
    fixture.plugin.Arrow = 0;
    FinishStroke(fixture.plugin);
    const Points kept{points[0], points[1], points[5], points[6]};
    CHECK_EQ(Stored(fixture.plugin), kept);
    CHECK(fixture.plugin.shapeCommitPending);
    const auto reference = ReferenceSurface(5);
    PaintLine(*reference, kept, 1);
    CHECK(PixelsOf(*fixture.plugin.shapeSurface) == PixelsOf(*reference));
}

// Sources 1, 5, 9, ... while below the last: of 10 points 1 and 5 (9 is the last itself), of 11 points 1, 5 and 9.
TEST_CASE("Every fourth point is kept, and the last once") {
    for (const auto& [count, kept] : {std::pair{10, 4}, std::pair{11, 5}, std::pair{300, 77}}) {
        const Points points = WavePoints(100, 300, 400, count);
        FinishStage fixture(points);
        FinishStroke(fixture.plugin);
        CHECK_EQ(fixture.plugin.strokePointCount, kept);
        CHECK_EQ(Stored(fixture.plugin).back(), points.back());
    }
}

TEST_CASE("A dab of 3 or 4 points takes back the last committed state") {
    for (const int count : {3, 4}) {
        ModuleFixture fixture(Recognising());
        fixture.Field();
        std::memset(fixture.plugin.canvasSurface->GetPixels().bytes, 9, 4);
        StoreStroke(fixture.plugin, LinePoints(10, 10, 20, 20, count));
        FinishStroke(fixture.plugin);
        CHECK(IsBlank(*fixture.plugin.canvasSurface));  // the ring's newest state
        CHECK_FALSE(fixture.plugin.shapeCommitPending);
        CHECK(fixture.plugin.fullUploadPending);
    }
}

TEST_CASE("Strokes of 2, 5 and 6 points vanish at the commit") {
    for (const int count : {2, 5, 6}) {
        FinishStage fixture(LinePoints(100, 100, 130, 100, count));
        fixture.plugin.canvasSurface->BeginStroke(100, 100, 1);
        FinishStroke(fixture.plugin);
        CHECK(fixture.plugin.shapeCommitPending);
        CHECK(IsBlank(*fixture.plugin.shapeSurface));
        fixture.PreRender();
        CHECK(IsBlank(*fixture.plugin.canvasSurface));
        CHECK_EQ(fixture.plugin.undoIndex, 1);
    }
}

// A line along x of 41 points 10 apart, decimated to indices 0, 1, 5, ... 37, 40: x = 100, 110, 150, ... 470, 500. The
// chord over 30 pixels: from 470 it is 30, not below 30. u = (1, 0): e = (20, 0), b = (30, 0). The barbs end at
// (500 - 30 - 0, (y - 0 + 20) * aspect) and (470, (y - 20) * aspect).
TEST_CASE("The arrow head's barbs lie ArrowWidth beside the shaft") {
    const float aspect = 2;
    FinishStage fixture(LinePoints(100, 200, 500, 200, 41), aspect);
    FinishStroke(fixture.plugin);
    const Points line = Stored(fixture.plugin);
    const auto reference = ReferenceSurface(5);
    PaintLine(*reference, line, aspect);
    reference->BeginStroke(500, 400, 1);
    reference->EndStroke(470, 440, 1);
    reference->BeginStroke(500, 400, 1);
    reference->EndStroke(470, 360, 1);
    CHECK(PixelsOf(*fixture.plugin.shapeSurface) == PixelsOf(*reference));
}

// Seven points 2 pixels apart are 12 pixels long: the chord runs back to the first point, (1, 0) all the same.
TEST_CASE("A line shorter than the arrow takes the chord from its start and keeps the barbs' length") {
    FinishStage fixture(LinePoints(300, 300, 312, 300, 7));
    FinishStroke(fixture.plugin);
    const auto reference = ReferenceSurface(5);
    PaintLine(*reference, Stored(fixture.plugin), 1);
    reference->BeginStroke(312, 300, 1);
    reference->EndStroke(282, 320, 1);
    reference->BeginStroke(312, 300, 1);
    reference->EndStroke(282, 280, 1);
    CHECK(PixelsOf(*fixture.plugin.shapeSurface) == PixelsOf(*reference));
}

TEST_CASE("The hook of the release does not turn the arrow") {
    Points points = LinePoints(100, 300, 500, 300, 41);
    points.push_back(Vector3(500, 303, 0));  // straight down at the end
    FinishStage hooked(points);
    FinishStroke(hooked.plugin);
    // The chord of at least 30 pixels is nearly level: the barbs end near x = 470, on either side.
    CHECK_GT(AlphaAt(*hooked.plugin.shapeSurface, 474, 283), 0);
    const double angle = std::atan2(3, 30);
    const double lowerX = 500 - 30 * std::cos(angle) - 20 * std::sin(angle);
    const double lowerY = 303 - 30 * std::sin(angle) + 20 * std::cos(angle);
    CHECK_GT(AlphaAt(*hooked.plugin.shapeSurface, static_cast<int>(lowerX) + 2, static_cast<int>(lowerY) - 1), 0);
}

TEST_CASE("A stroke on one spot has an arrow without direction") {
    FinishStage fixture(Points(8, Vector3(400, 400, 0)));
    FinishStroke(fixture.plugin);
    CHECK_GT(AlphaAt(*fixture.plugin.shapeSurface, 400, 400), 0);
    CHECK_EQ(AlphaAt(*fixture.plugin.shapeSurface, 420, 400), 0);
}

TEST_CASE("A recognised shape gets no arrow head") {
    const Points ellipse = EllipsePoints(500, 500, 200, 100, 0, 120);
    FinishStage with(ellipse);
    FinishStroke(with.plugin);
    FinishStage without(ellipse);
    without.plugin.Arrow = 0;
    FinishStroke(without.plugin);
    CHECK(PixelsOf(*with.plugin.shapeSurface) == PixelsOf(*without.plugin.shapeSurface));
    CHECK_EQ(with.plugin.strokePointCount, 120);
}

TEST_CASE("A circle is taken by the ellipse test, which runs first") {
    const Points circle = EllipsePoints(500, 500, 150, 150, 0, 120);
    FinishStage fixture(circle);
    fixture.plugin.RecoCircle = 1;
    FinishStroke(fixture.plugin);
    FinishStage ellipseAlone(circle);
    REQUIRE(RecognizeEllipse(ellipseAlone.plugin));
    CHECK(PixelsOf(*fixture.plugin.shapeSurface) == PixelsOf(*ellipseAlone.plugin.shapeSurface));
    FinishStage circleAlone(circle);
    circleAlone.plugin.RecoEllipse = 0;
    circleAlone.plugin.RecoCircle = 1;
    FinishStroke(circleAlone.plugin);
    CHECK_FALSE(PixelsOf(*circleAlone.plugin.shapeSurface) == PixelsOf(*fixture.plugin.shapeSurface));
}

TEST_CASE("Cleared recognition frees the buffers when a countdown ends, and not before") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(200, 100);
    fixture.plugin.RecoShapes = 0;
    fixture.Fields(2);
    CHECK(fixture.plugin.recognitionBuffersReady);
    fixture.Field();
    CHECK_FALSE(fixture.plugin.recognitionBuffersReady);
    CHECK_FALSE(fixture.plugin.shapeCommitPending);

    ModuleFixture idle(Recognising());
    idle.Field();
    idle.plugin.RecoShapes = 0;
    idle.Fields(10);
    CHECK(idle.plugin.recognitionBuffersReady);
}

TEST_CASE("With a delay of 1 the finish comes in the field after the release") {
    PluginParameters values = Recognising();
    values.ShapeDelay = 1;
    ModuleFixture fixture(values);
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Move(200, 100);
    fixture.Release(200, 100);
    CHECK_FALSE(fixture.plugin.shapeCommitPending);
    fixture.Field();
    CHECK(fixture.plugin.shapeCommitPending);
    CHECK_EQ(fixture.plugin.shapeCountdown, 0);
}

// Two diagonals through the entry points, the second within the delay or after it.
void DrawTwoDiagonals(ModuleFixture& fixture, int pause) {
    fixture.Press(400, 400);
    fixture.Move(500, 500);
    fixture.Move(600, 600);
    fixture.Release(600, 600);
    fixture.Fields(pause);
    fixture.PreRender();
    fixture.Press(600, 400);
    fixture.Move(500, 500);
    fixture.Move(400, 600);
    fixture.Release(400, 600);
    fixture.Fields(6);
    fixture.PreRender();
}

TEST_CASE("Two crossing strokes within the delay give one cross; with a pause between, two lines") {
    ModuleFixture quick(Recognising());
    quick.Field();
    quick.plugin.Arrow = 0;
    quick.plugin.CrossDia = 60;
    DrawTwoDiagonals(quick, 2);
    CHECK_GT(AlphaAt(*quick.plugin.canvasSurface, 520, 520), 0);
    CHECK_EQ(AlphaAt(*quick.plugin.canvasSurface, 560, 560), 0);
    CHECK_EQ(quick.plugin.undoIndex, 1);  // one commit

    ModuleFixture slow(Recognising());
    slow.Field();
    slow.plugin.Arrow = 0;
    slow.plugin.CrossDia = 60;
    DrawTwoDiagonals(slow, 4);
    CHECK_GT(AlphaAt(*slow.plugin.canvasSurface, 560, 560), 0);
    CHECK_EQ(slow.plugin.undoIndex, 2);
}

TEST_CASE("Undo during the wait takes the line, and the finish still runs") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Move(300, 150);
    fixture.Release(400, 100);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    CHECK(IsBlank(*fixture.plugin.canvasSurface));
    fixture.Fields(3);
    CHECK(fixture.plugin.shapeCommitPending);
    fixture.PreRender();
    CHECK_FALSE(IsBlank(*fixture.plugin.canvasSurface));
}

TEST_CASE("A committed shape can be taken back and does not return with the next one") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.plugin.Arrow = 0;
    const auto drawLine = [&](std::int32_t y) {
        fixture.Press(100, y);
        fixture.Move(300, y);
        fixture.Release(300, y);
        fixture.Fields(4);
        fixture.PreRender();
    };
    drawLine(200);
    CHECK_GT(AlphaAt(*fixture.plugin.canvasSurface, 200, 200), 0);
    PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    drawLine(600);
    CHECK_EQ(AlphaAt(*fixture.plugin.canvasSurface, 200, 200), 0);
    CHECK_GT(AlphaAt(*fixture.plugin.canvasSurface, 200, 600), 0);
}

// KEEP: the eraser's stroke runs through the same end as any other.
TEST_CASE("In erase mode a finished line is erased once more") {
    ModuleFixture fixture(Recognising());
    fixture.Field();
    fixture.plugin.Arrow = 0;
    fixture.plugin.EraserWidth = 20;
    fixture.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    StoreStroke(fixture.plugin, LinePoints(200, 300, 400, 300, 40));
    // Something to erase, painted by hand on what holds the finished shapes.
    fixture.plugin.shapeSurface->canvas->FillChannel(1.0);
    fixture.plugin.aspect = 1;
    FinishStroke(fixture.plugin);
    CHECK_LT(AlphaAt(*fixture.plugin.shapeSurface, 300, 300), 10);
    CHECK_EQ(AlphaAt(*fixture.plugin.shapeSurface, 300, 500), 255);
    CHECK(fixture.plugin.shapeCommitPending);
}

}  // namespace
}  // namespace chalkpane::testing
