#include "telestrator/telestrator.h"

#include <doctest/doctest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "telestrator/recognition/shape_recognition.h"
#include "tests/telestrator/stroke_shapes.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

TelestratorSettings Recognising() {
    TelestratorSettings values = TelestratorSettings();
    values.recogniseShapes = true;
    values.maxUndos = 3;
    values.shapeDelay = 3;
    return values;
}

class FinishStage : public TelestratorFixture {
public:
    explicit FinishStage(const Points& points, float aspect = 1) : TelestratorFixture(Recognising()) {
        telestrator.aspect = aspect;
        Field();
        StoreStroke(telestrator, points);
    }
};

Points Stored(const Telestrator& telestrator) {
    const auto points = telestrator.StoredStroke();
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
    fixture.settings.arrow = false;
    fixture.telestrator.FinishStroke(fixture.settings);
    const Points kept{points[0], points[1], points[5], points[6]};
    CHECK_EQ(Stored(fixture.telestrator), kept);
    CHECK(fixture.telestrator.shapeCommitPending);
    const auto reference = ReferenceSurface(5);
    PaintLine(*reference, kept, 1);
    CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
}

// Sources 1, 5, 9, ... while below the last: of 10 points 1 and 5 (9 is the last itself), of 11 points 1, 5 and 9.
TEST_CASE("Every fourth point is kept, and the last once") {
    for (const auto& [count, kept] : {std::pair{10, 4}, std::pair{11, 5}, std::pair{300, 77}}) {
        const Points points = WavePoints(100, 300, 400, count);
        FinishStage fixture(points);
        fixture.telestrator.FinishStroke(fixture.settings);
        CHECK_EQ(fixture.telestrator.strokePointCount, kept);
        CHECK_EQ(Stored(fixture.telestrator).back(), points.back());
    }
}

TEST_CASE("A dab of 3 or 4 points takes back the last committed state") {
    for (const int count : {3, 4}) {
        TelestratorFixture fixture(Recognising());
        fixture.Field();
        std::memset(fixture.telestrator.canvasSurface->GetPixels().bytes, 9, 4);
        StoreStroke(fixture.telestrator, LinePoints(10, 10, 20, 20, count));
        fixture.telestrator.FinishStroke(fixture.settings);
        CHECK(IsBlank(*fixture.telestrator.canvasSurface));  // the ring's newest state
        CHECK_FALSE(fixture.telestrator.shapeCommitPending);
        CHECK(fixture.telestrator.fullUploadPending);
    }
}

TEST_CASE("Strokes of 2, 5 and 6 points vanish at the commit") {
    for (const int count : {2, 5, 6}) {
        FinishStage fixture(LinePoints(100, 100, 130, 100, count));
        fixture.telestrator.canvasSurface->BeginStroke(100, 100, 1);
        fixture.telestrator.FinishStroke(fixture.settings);
        CHECK(fixture.telestrator.shapeCommitPending);
        CHECK(IsBlank(*fixture.telestrator.shapeSurface));
        fixture.telestrator.Commit();
        CHECK(IsBlank(*fixture.telestrator.canvasSurface));
        CHECK_EQ(fixture.telestrator.undoIndex, 1);
    }
}

// A line along x of 41 points 10 apart, decimated to indices 0, 1, 5, ... 37, 40: x = 100, 110, 150, ... 470, 500. The
// chord over 30 pixels: from 470 it is 30, not below 30. u = (1, 0): e = (20, 0), b = (30, 0). The barbs end at
// (500 - 30 - 0, (y - 0 + 20) * aspect) and (470, (y - 20) * aspect).
TEST_CASE("The arrow head's barbs lie ArrowWidth beside the shaft") {
    const float aspect = 2;
    FinishStage fixture(LinePoints(100, 200, 500, 200, 41), aspect);
    fixture.telestrator.FinishStroke(fixture.settings);
    const Points line = Stored(fixture.telestrator);
    const auto reference = ReferenceSurface(5);
    PaintLine(*reference, line, aspect);
    reference->BeginStroke(500, 400, 1);
    reference->EndStroke(470, 440, 1);
    reference->BeginStroke(500, 400, 1);
    reference->EndStroke(470, 360, 1);
    CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
}

// Seven points 2 pixels apart are 12 pixels long: the chord runs back to the first point, (1, 0) all the same.
TEST_CASE("A line shorter than the arrow takes the chord from its start and keeps the barbs' length") {
    FinishStage fixture(LinePoints(300, 300, 312, 300, 7));
    fixture.telestrator.FinishStroke(fixture.settings);
    const auto reference = ReferenceSurface(5);
    PaintLine(*reference, Stored(fixture.telestrator), 1);
    reference->BeginStroke(312, 300, 1);
    reference->EndStroke(282, 320, 1);
    reference->BeginStroke(312, 300, 1);
    reference->EndStroke(282, 280, 1);
    CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
}

TEST_CASE("The hook of the release does not turn the arrow") {
    Points points = LinePoints(100, 300, 500, 300, 41);
    points.push_back(Vector3(500, 303, 0));  // straight down at the end
    FinishStage hooked(points);
    hooked.telestrator.FinishStroke(hooked.settings);
    // The chord of at least 30 pixels is nearly level: the barbs end near x = 470, on either side.
    CHECK_GT(AlphaAt(*hooked.telestrator.shapeSurface, 474, 283), 0);
    const double angle = std::atan2(3, 30);
    const double lowerX = 500 - 30 * std::cos(angle) - 20 * std::sin(angle);
    const double lowerY = 303 - 30 * std::sin(angle) + 20 * std::cos(angle);
    CHECK_GT(AlphaAt(*hooked.telestrator.shapeSurface, static_cast<int>(lowerX) + 2, static_cast<int>(lowerY) - 1), 0);
}

TEST_CASE("A stroke on one spot has an arrow without direction") {
    FinishStage fixture(Points(8, Vector3(400, 400, 0)));
    fixture.telestrator.FinishStroke(fixture.settings);
    CHECK_GT(AlphaAt(*fixture.telestrator.shapeSurface, 400, 400), 0);
    CHECK_EQ(AlphaAt(*fixture.telestrator.shapeSurface, 420, 400), 0);
}

TEST_CASE("A recognised shape gets no arrow head") {
    const Points ellipse = EllipsePoints(500, 500, 200, 100, 0, 120);
    FinishStage with(ellipse);
    with.telestrator.FinishStroke(with.settings);
    FinishStage without(ellipse);
    without.settings.arrow = false;
    without.telestrator.FinishStroke(without.settings);
    CHECK(PixelsOf(*with.telestrator.shapeSurface) == PixelsOf(*without.telestrator.shapeSurface));
    CHECK_EQ(with.telestrator.strokePointCount, 120);
}

TEST_CASE("A circle is taken by the ellipse test, which runs first") {
    const Points circle = EllipsePoints(500, 500, 150, 150, 0, 120);
    FinishStage fixture(circle);
    fixture.settings.recogniseCircle = true;
    fixture.telestrator.FinishStroke(fixture.settings);
    FinishStage ellipseAlone(circle);
    REQUIRE(RecognizeEllipse(ellipseAlone.Input()));
    CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*ellipseAlone.telestrator.shapeSurface));
    FinishStage circleAlone(circle);
    circleAlone.settings.recogniseEllipse = false;
    circleAlone.settings.recogniseCircle = true;
    circleAlone.telestrator.FinishStroke(circleAlone.settings);
    CHECK_FALSE(PixelsOf(*circleAlone.telestrator.shapeSurface) == PixelsOf(*fixture.telestrator.shapeSurface));
}

TEST_CASE("Cleared recognition frees the buffers when a countdown ends, and not before") {
    TelestratorFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Release(200, 100);
    fixture.settings.recogniseShapes = false;
    fixture.Fields(2);
    CHECK(fixture.telestrator.recognitionBuffersReady);
    fixture.Field();
    CHECK_FALSE(fixture.telestrator.recognitionBuffersReady);
    CHECK_FALSE(fixture.telestrator.shapeCommitPending);

    TelestratorFixture idle(Recognising());
    idle.Field();
    idle.settings.recogniseShapes = false;
    idle.Fields(10);
    CHECK(idle.telestrator.recognitionBuffersReady);
}

TEST_CASE("With a delay of 1 the finish comes in the field after the release") {
    TelestratorSettings values = Recognising();
    values.shapeDelay = 1;
    TelestratorFixture fixture(values);
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Move(200, 100);
    fixture.Release(200, 100);
    CHECK_FALSE(fixture.telestrator.shapeCommitPending);
    fixture.Field();
    CHECK(fixture.telestrator.shapeCommitPending);
    CHECK_EQ(fixture.telestrator.shapeCountdown, 0);
}

// Two diagonals through the entry points, the second within the delay or after it.
void DrawTwoDiagonals(TelestratorFixture& fixture, int pause) {
    fixture.Press(400, 400);
    fixture.Move(500, 500);
    fixture.Move(600, 600);
    fixture.Release(600, 600);
    fixture.Fields(pause);
    fixture.telestrator.Commit();
    fixture.Press(600, 400);
    fixture.Move(500, 500);
    fixture.Move(400, 600);
    fixture.Release(400, 600);
    fixture.Fields(6);
    fixture.telestrator.Commit();
}

TEST_CASE("Two crossing strokes within the delay give one cross; with a pause between, two lines") {
    TelestratorFixture quick(Recognising());
    quick.Field();
    quick.settings.arrow = false;
    quick.settings.crossDiameter = 60;
    DrawTwoDiagonals(quick, 2);
    CHECK_GT(AlphaAt(*quick.telestrator.canvasSurface, 520, 520), 0);
    CHECK_EQ(AlphaAt(*quick.telestrator.canvasSurface, 560, 560), 0);
    CHECK_EQ(quick.telestrator.undoIndex, 1);  // one commit

    TelestratorFixture slow(Recognising());
    slow.Field();
    slow.settings.arrow = false;
    slow.settings.crossDiameter = 60;
    DrawTwoDiagonals(slow, 4);
    CHECK_GT(AlphaAt(*slow.telestrator.canvasSurface, 560, 560), 0);
    CHECK_EQ(slow.telestrator.undoIndex, 2);
}

TEST_CASE("Undo during the wait takes the line, and the finish still runs") {
    TelestratorFixture fixture(Recognising());
    fixture.Field();
    fixture.Press(100, 100);
    fixture.Move(300, 150);
    fixture.Release(400, 100);
    fixture.telestrator.RestoreUndoSnapshot();
    CHECK(IsBlank(*fixture.telestrator.canvasSurface));
    fixture.Fields(3);
    CHECK(fixture.telestrator.shapeCommitPending);
    fixture.telestrator.Commit();
    CHECK_FALSE(IsBlank(*fixture.telestrator.canvasSurface));
}

TEST_CASE("A committed shape can be taken back and does not return with the next one") {
    TelestratorFixture fixture(Recognising());
    fixture.Field();
    fixture.settings.arrow = false;
    const auto drawLine = [&](std::int32_t y) {
        fixture.Press(100, y);
        fixture.Move(300, y);
        fixture.Release(300, y);
        fixture.Fields(4);
        fixture.telestrator.Commit();
    };
    drawLine(200);
    CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 200, 200), 0);
    fixture.telestrator.RestoreUndoSnapshot();
    drawLine(600);
    CHECK_EQ(AlphaAt(*fixture.telestrator.canvasSurface, 200, 200), 0);
    CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 200, 600), 0);
}

// KEEP: the eraser's stroke runs through the same end as any other.
TEST_CASE("In erase mode a finished line is erased once more") {
    TelestratorFixture fixture(Recognising());
    fixture.Field();
    fixture.settings.arrow = false;
    fixture.settings.eraserWidth = 20;
    fixture.settings.brushType = BrushType::Eraser;
    REQUIRE(fixture.telestrator.ApplyBrushMode(fixture.settings));
    StoreStroke(fixture.telestrator, LinePoints(200, 300, 400, 300, 40));
    // Something to erase, painted by hand on what holds the finished shapes.
    fixture.telestrator.shapeSurface->canvas->FillChannel(1.0);
    fixture.telestrator.FinishStroke(fixture.settings);
    CHECK_LT(AlphaAt(*fixture.telestrator.shapeSurface, 300, 300), 10);
    CHECK_EQ(AlphaAt(*fixture.telestrator.shapeSurface, 300, 500), 255);
    CHECK(fixture.telestrator.shapeCommitPending);
}

}  // namespace
}  // namespace chalkpane::testing
