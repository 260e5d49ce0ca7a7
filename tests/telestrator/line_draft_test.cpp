#include "telestrator/line_draft.h"

#include <doctest/doctest.h>

#include <cmath>
#include <random>
#include <tuple>
#include <vector>

#include "tests/telestrator/stroke_shapes.h"
#include "tests/telestrator/telestrator_fixture.h"

using namespace chalkpane;
using namespace chalkpane::testing;

namespace {

using Step = std::tuple<StrokeStage, double, double>;

class StepRecorder final : public StepListener {
public:
    void OnStep(const TelestratorSurface& /*surface*/, StrokeStage stage, double x, double y,
                double /*pressure*/) noexcept override {
        steps.emplace_back(stage, x, y);
    }
    std::vector<Step> steps;
};

constexpr float aspect = 1.25F;

// What is stored of a scribble within and around the canvas.
Points LongStroke(int count = 3000) {
    Points points;
    for (int i = 0; i < count; ++i)
        points.emplace_back(512 + 560 * std::sin(i * 0.013), 400 + 450 * std::cos(i * 0.0171), 0.0);
    return points;
}

Points Smoothed(const Points& stored) {
    Points line;
    for (std::size_t i = 0; LineDraft::StoredIndex(i) + 1 < stored.size(); ++i)
        line.push_back(stored[LineDraft::StoredIndex(i)]);
    line.push_back(stored.back());
    return line;
}

void DrawPoint(TelestratorSurface& surface, std::size_t number, const Vector3& point) {
    const double y = double{point.y} * aspect;
    if (number == 0)
        surface.BeginStroke(point.x, y, 1);
    else
        surface.ContinueStroke(point.x, y, 1);
}

// Draws all of the line but its first `from` points and the last.
void DrawRest(TelestratorSurface& surface, const Points& line, std::size_t from) {
    for (std::size_t i = from; i + 1 < line.size(); ++i) DrawPoint(surface, i, line[i]);
    surface.EndStroke(line.back().x, double{line.back().y} * aspect, 1);
}

// The draft follows a stroke that grows by some points an event.
void FollowAll(LineDraft& draft, TelestratorSurface& surface, const Points& stored) {
    for (std::size_t count = 100; count <= stored.size(); count += 100)
        draft.Follow(surface, std::span(stored).first(count), aspect);
}

void ChangeNothing(TelestratorSurface& /*surface*/, Points& /*line*/, float& /*last*/) {}
void ChangeColour(TelestratorSurface& surface, Points& /*line*/, float& /*last*/) {
    surface.SetBrushColour(9000, 0, 0);
}
void ChangeWidth(TelestratorSurface& surface, Points& /*line*/, float& /*last*/) { surface.SetBrushWidth(7); }
void ChangePixel(TelestratorSurface& surface, Points& /*line*/, float& /*last*/) {
    surface.GetPixels().bytes[4 * 1024 * 1024 - 1] = std::byte{1};
}
void ChangePoint(TelestratorSurface& /*surface*/, Points& line, float& /*last*/) { line[40].x += 1; }
void ChangeAspect(TelestratorSurface& /*surface*/, Points& /*line*/, float& last) { last = 1.5F; }
void DrawSomethingElse(TelestratorSurface& surface, Points& /*line*/, float& /*last*/) {
    surface.BeginStroke(-500, -500, 1);
}

}  // namespace

TEST_CASE("a long stroke's draft leaves the pixels, the steps and the brush that drawing its line would") {
    const Points stored = LongStroke();
    const Points line = Smoothed(stored);
    for (const std::int32_t width : {1, 2, 5, 30}) {
        CAPTURE(width);
        const auto drafted = ReferenceSurface(width);
        const auto drawn = ReferenceSurface(width);
        StepRecorder draftedSteps;
        StepRecorder drawnSteps;
        for (TelestratorSurface* surface : {drafted.get(), drawn.get()}) surface->BeginStroke(300, 310, 1);
        drafted->listener = &draftedSteps;
        drawn->listener = &drawnSteps;
        LineDraft draft;
        FollowAll(draft, *drafted, stored);
        CHECK(draftedSteps.steps.empty());
        const std::size_t taken = draft.Take(*drafted, line, aspect);
        CHECK_GT(taken, line.size() * 9 / 10);
        DrawRest(*drafted, line, taken);
        DrawRest(*drawn, line, 0);
        CHECK(PixelsOf(*drafted) == PixelsOf(*drawn));
        CHECK(draftedSteps.steps == drawnSteps.steps);
        drafted->ContinueStroke(700, 200, 1);
        drawn->ContinueStroke(700, 200, 1);
        CHECK(PixelsOf(*drafted) == PixelsOf(*drawn));
        CHECK_EQ(draft.Take(*drafted, line, aspect), 0);
    }
}

TEST_CASE("a draft is forgotten when brush, canvas, points or aspect are not those it was drawn with") {
    const Points stored = LongStroke();
    using Change = void (*)(TelestratorSurface&, Points&, float&);
    for (const Change change :
         {&ChangeNothing, &ChangeColour, &ChangeWidth, &ChangePixel, &ChangePoint, &ChangeAspect, &DrawSomethingElse}) {
        const auto surface = ReferenceSurface(3);
        LineDraft draft;
        FollowAll(draft, *surface, stored);
        Points line = Smoothed(stored);
        float last = aspect;
        change(*surface, line, last);
        const Pixels before = PixelsOf(*surface);
        const std::size_t taken = draft.Take(*surface, line, last);
        CHECK_EQ(taken != 0, change == &ChangeNothing);
        CHECK_EQ(PixelsOf(*surface) == before, change != &ChangeNothing);
    }
}

// A mode that changes in the middle of a stroke has the brush go on with whatever it did last.
TEST_CASE("following a stroke disturbs neither the surface nor the stroke its brush was in") {
    const auto followed = ReferenceSurface(4);
    const auto alone = ReferenceSurface(4);
    for (TelestratorSurface* surface : {followed.get(), alone.get()}) {
        surface->BeginStroke(100, 100, 1);
        surface->ContinueStroke(140, 120, 1);
    }
    LineDraft draft;
    FollowAll(draft, *followed, LongStroke());
    CHECK(PixelsOf(*followed) == PixelsOf(*alone));
    for (TelestratorSurface* surface : {followed.get(), alone.get()}) surface->ContinueStroke(200, 90, 1);
    CHECK(PixelsOf(*followed) == PixelsOf(*alone));
}

TEST_CASE("a short stroke, and one whose first point no brush can reach, have no draft") {
    const Points stored = LongStroke();
    const auto surface = ReferenceSurface(3);
    LineDraft draft;
    FollowAll(draft, *surface, LongStroke(900));
    CHECK_EQ(draft.Take(*surface, Smoothed(LongStroke(900)), aspect), 0);
    Points far = stored;
    far.front().x = 2e9F;
    FollowAll(draft, *surface, far);
    CHECK_EQ(draft.Take(*surface, Smoothed(far), aspect), 0);
}

// The second telestrator's brush is set up again, as it was, just before the end, so that its draft does not count.
TEST_CASE("strokes with and without a draft end in the same pixels, whatever happens while they are drawn") {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        CAPTURE(seed);
        std::vector<Pixels> ends;
        for (const bool isDrafted : {true, false}) {
            std::mt19937 random(seed);
            const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
            TelestratorSettings settings = RecognisingSettings();
            settings.recogniseCross = false;
            settings.arrow = seed % 2 == 0;
            settings.brushWidth = 1 + below(6);
            TelestratorFixture fixture(settings);
            fixture.Field();
            fixture.telestrator.aspect = 1.5F;
            if (seed % 4 == 3) {
                fixture.settings.brushType = BrushType::Eraser;
                fixture.telestrator.ApplyBrushMode(fixture.settings);
                fixture.telestrator.shapeSurface->canvas->FillChannel(1.0);
            }
            fixture.Press(500, 500);
            for (int i = 0; i < 60; ++i) {
                fixture.Move(below(1200) - 100, below(1200) - 100);
                if (below(40) == 0) fixture.settings.brushColour = static_cast<std::uint32_t>(random());
                if (below(40) == 0) fixture.settings.brushWidth = 1 + below(6);
                if (below(60) == 0) fixture.telestrator.ClearCanvas();
                if (below(60) == 0) fixture.telestrator.RestoreUndoSnapshot();
                if (below(60) == 0) fixture.telestrator.aspect = 1.25F;
                if (below(30) == 0) {
                    fixture.Release(below(1000), below(1000));
                    fixture.Press(below(1000), below(1000));
                }
            }
            fixture.Release(300, 700);
            if (!isDrafted) fixture.telestrator.shapeSurface->ApplyBrushSettings();
            fixture.Fields(3);
            CHECK_GE(static_cast<int>(fixture.telestrator.result), static_cast<int>(StrokeResult::Line));
            ends.push_back(PixelsOf(*fixture.telestrator.shapeSurface));
        }
        CHECK(ends[0] == ends[1]);
    }
}
