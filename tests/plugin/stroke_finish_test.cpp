#include "plugin/stroke_finish.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "plugin/shape_recognition.h"
#include "plugin/stroke_points.h"
#include "tests/plugin/stage.h"
#include "tests/plugin/stroke_shapes.h"

namespace chalkpane::testing {
namespace {

PluginParameters Recognising() {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.MaxUndos = 3;
    values.ShapeDelay = 3;
    return values;
}

class FinishStage : public Stage {
public:
    explicit FinishStage(const Points& points, float aspect = 1) : Stage(Recognising()) {
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
    FinishStage stage(points);
    stage.plugin.Arrow = 0;
    FinishStroke(stage.plugin);
    const Points kept{points[0], points[1], points[5], points[6]};
    CHECK_EQ(Stored(stage.plugin), kept);
    CHECK(stage.plugin.shapeCommitPending);
    const auto twin = TwinSurface(5);
    PaintLine(*twin, kept, 1);
    CHECK(PixelsOf(*stage.plugin.shapeSurface) == PixelsOf(*twin));
}

// Sources 1, 5, 9, ... while below the last: of 10 points 1 and 5 (9 is the last itself), of 11 points 1, 5 and 9.
TEST_CASE("Every fourth point is kept, and the last once") {
    for (const auto& [count, kept] : {std::pair{10, 4}, std::pair{11, 5}, std::pair{300, 77}}) {
        const Points points = WavePoints(100, 300, 400, count);
        FinishStage stage(points);
        FinishStroke(stage.plugin);
        CHECK_EQ(stage.plugin.strokePointCount, kept);
        CHECK_EQ(Stored(stage.plugin).back(), points.back());
    }
}

TEST_CASE("A dab of 3 or 4 points takes back the last committed state") {
    for (const int count : {3, 4}) {
        Stage stage(Recognising());
        stage.Field();
        std::memset(stage.plugin.canvasSurface->GetPixels().bytes, 9, 4);
        StoreStroke(stage.plugin, LinePoints(10, 10, 20, 20, count));
        FinishStroke(stage.plugin);
        CHECK(IsBlank(*stage.plugin.canvasSurface));  // the ring's newest state
        CHECK_FALSE(stage.plugin.shapeCommitPending);
        CHECK(stage.plugin.fullUploadPending);
    }
}

TEST_CASE("Strokes of 2, 5 and 6 points vanish at the commit") {
    for (const int count : {2, 5, 6}) {
        FinishStage stage(LinePoints(100, 100, 130, 100, count));
        stage.plugin.canvasSurface->BeginStroke(100, 100, 1);
        FinishStroke(stage.plugin);
        CHECK(stage.plugin.shapeCommitPending);
        CHECK(IsBlank(*stage.plugin.shapeSurface));
        stage.PreRender();
        CHECK(IsBlank(*stage.plugin.canvasSurface));
        CHECK_EQ(stage.plugin.undoIndex, 1);
    }
}

// A line along x of 41 points 10 apart, decimated to indices 0, 1, 5, ... 37, 40: x = 100, 110, 150, ... 470, 500. The
// chord over 30 pixels: from 470 it is 30, not below 30. u = (1, 0): e = (20, 0), b = (30, 0). The barbs end at
// (500 - 30 - 0, (y - 0 + 20) * aspect) and (470, (y - 20) * aspect).
TEST_CASE("The arrow head's barbs lie ArrowWidth beside the shaft") {
    const float aspect = 2;
    FinishStage stage(LinePoints(100, 200, 500, 200, 41), aspect);
    FinishStroke(stage.plugin);
    const Points line = Stored(stage.plugin);
    const auto twin = TwinSurface(5);
    PaintLine(*twin, line, aspect);
    twin->BeginStroke(500, 400, 1);
    twin->EndStroke(470, 440, 1);
    twin->BeginStroke(500, 400, 1);
    twin->EndStroke(470, 360, 1);
    CHECK(PixelsOf(*stage.plugin.shapeSurface) == PixelsOf(*twin));
}

// Seven points 2 pixels apart are 12 pixels long: the chord runs back to the first point, (1, 0) all the same.
TEST_CASE("A line shorter than the arrow takes the chord from its start and keeps the barbs' length") {
    FinishStage stage(LinePoints(300, 300, 312, 300, 7));
    FinishStroke(stage.plugin);
    const auto twin = TwinSurface(5);
    PaintLine(*twin, Stored(stage.plugin), 1);
    twin->BeginStroke(312, 300, 1);
    twin->EndStroke(282, 320, 1);
    twin->BeginStroke(312, 300, 1);
    twin->EndStroke(282, 280, 1);
    CHECK(PixelsOf(*stage.plugin.shapeSurface) == PixelsOf(*twin));
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
    FinishStage stage(Points(8, Vector3(400, 400, 0)));
    FinishStroke(stage.plugin);
    CHECK_GT(AlphaAt(*stage.plugin.shapeSurface, 400, 400), 0);
    CHECK_EQ(AlphaAt(*stage.plugin.shapeSurface, 420, 400), 0);
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
    FinishStage stage(circle);
    stage.plugin.RecoCircle = 1;
    FinishStroke(stage.plugin);
    FinishStage ellipseAlone(circle);
    REQUIRE(RecognizeEllipse(ellipseAlone.plugin));
    CHECK(PixelsOf(*stage.plugin.shapeSurface) == PixelsOf(*ellipseAlone.plugin.shapeSurface));
    FinishStage circleAlone(circle);
    circleAlone.plugin.RecoEllipse = 0;
    circleAlone.plugin.RecoCircle = 1;
    FinishStroke(circleAlone.plugin);
    CHECK_FALSE(PixelsOf(*circleAlone.plugin.shapeSurface) == PixelsOf(*stage.plugin.shapeSurface));
}

TEST_CASE("Cleared recognition frees the buffers when a countdown ends, and not before") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(100, 100);
    stage.Release(200, 100);
    stage.plugin.RecoShapes = 0;
    stage.Fields(2);
    CHECK(stage.plugin.recognitionBuffersReady);
    stage.Field();
    CHECK_FALSE(stage.plugin.recognitionBuffersReady);
    CHECK_FALSE(stage.plugin.shapeCommitPending);

    Stage idle(Recognising());
    idle.Field();
    idle.plugin.RecoShapes = 0;
    idle.Fields(10);
    CHECK(idle.plugin.recognitionBuffersReady);
}

TEST_CASE("With a delay of 1 the finish comes in the field after the release") {
    PluginParameters values = Recognising();
    values.ShapeDelay = 1;
    Stage stage(values);
    stage.Field();
    stage.Press(100, 100);
    stage.Move(200, 100);
    stage.Release(200, 100);
    CHECK_FALSE(stage.plugin.shapeCommitPending);
    stage.Field();
    CHECK(stage.plugin.shapeCommitPending);
    CHECK_EQ(stage.plugin.shapeCountdown, 0);
}

// Two diagonals through the entry points, the second within the delay or after it.
void DrawTwoDiagonals(Stage& stage, int pause) {
    stage.Press(400, 400);
    stage.Move(500, 500);
    stage.Move(600, 600);
    stage.Release(600, 600);
    stage.Fields(pause);
    stage.PreRender();
    stage.Press(600, 400);
    stage.Move(500, 500);
    stage.Move(400, 600);
    stage.Release(400, 600);
    stage.Fields(6);
    stage.PreRender();
}

TEST_CASE("Two crossing strokes within the delay give one cross; with a pause between, two lines") {
    Stage quick(Recognising());
    quick.Field();
    quick.plugin.Arrow = 0;
    quick.plugin.CrossDia = 60;
    DrawTwoDiagonals(quick, 2);
    CHECK_GT(AlphaAt(*quick.plugin.canvasSurface, 520, 520), 0);
    CHECK_EQ(AlphaAt(*quick.plugin.canvasSurface, 560, 560), 0);
    CHECK_EQ(quick.plugin.undoIndex, 1);  // one commit

    Stage slow(Recognising());
    slow.Field();
    slow.plugin.Arrow = 0;
    slow.plugin.CrossDia = 60;
    DrawTwoDiagonals(slow, 4);
    CHECK_GT(AlphaAt(*slow.plugin.canvasSurface, 560, 560), 0);
    CHECK_EQ(slow.plugin.undoIndex, 2);
}

TEST_CASE("Undo during the wait takes the line, and the finish still runs") {
    Stage stage(Recognising());
    stage.Field();
    stage.Press(100, 100);
    stage.Move(300, 150);
    stage.Release(400, 100);
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);
    CHECK(IsBlank(*stage.plugin.canvasSurface));
    stage.Fields(3);
    CHECK(stage.plugin.shapeCommitPending);
    stage.PreRender();
    CHECK_FALSE(IsBlank(*stage.plugin.canvasSurface));
}

TEST_CASE("A committed shape can be taken back and does not return with the next one") {
    Stage stage(Recognising());
    stage.Field();
    stage.plugin.Arrow = 0;
    const auto drawLine = [&](std::int32_t y) {
        stage.Press(100, y);
        stage.Move(300, y);
        stage.Release(300, y);
        stage.Fields(4);
        stage.PreRender();
    };
    drawLine(200);
    CHECK_GT(AlphaAt(*stage.plugin.canvasSurface, 200, 200), 0);
    PLUGIN_EXEC_ACTION(&stage.plugin, 1);
    drawLine(600);
    CHECK_EQ(AlphaAt(*stage.plugin.canvasSurface, 200, 200), 0);
    CHECK_GT(AlphaAt(*stage.plugin.canvasSurface, 200, 600), 0);
}

// KEEP: the eraser's stroke runs through the same end as any other.
TEST_CASE("In erase mode a finished line is erased once more") {
    Stage stage(Recognising());
    stage.Field();
    stage.plugin.Arrow = 0;
    stage.plugin.EraserWidth = 20;
    stage.plugin.BrushType = 1;
    PLUGIN_CHANGED_CALLBACK(&stage.plugin, 5);
    StoreStroke(stage.plugin, LinePoints(200, 300, 400, 300, 40));
    // Something to erase, painted by hand on what holds the finished shapes.
    stage.plugin.shapeSurface->canvas->FillChannel(1.0);
    stage.plugin.aspect = 1;
    FinishStroke(stage.plugin);
    CHECK_LT(AlphaAt(*stage.plugin.shapeSurface, 300, 300), 10);
    CHECK_EQ(AlphaAt(*stage.plugin.shapeSurface, 300, 500), 255);
    CHECK(stage.plugin.shapeCommitPending);
}

}  // namespace
}  // namespace chalkpane::testing
