#include <doctest/doctest.h>

#include <cmath>
#include <numbers>

#include "tests/kel/pixels.h"
#include "tests/kel/telestrator.h"

namespace kel {
namespace {

using testing::Pixel;

using testing::CheckSeen;
using testing::operatorOrange;
using testing::operatorRed;
using testing::Scribble;
using testing::Telestrator;

// The worst difference in the window between what is seen and what `wanted` makes of the picture's and the canvas's
// pixel, both as stored: colours of the canvas multiplied by its alpha.
template <typename Wanted>
int WorstDifference(const Telestrator& telestrator, const picture_io::Picture& base, Wanted wanted) {
    const picture_io::Picture canvas = telestrator.host.ReadPremultipliedCanvas(telestrator.container);
    const picture_io::Picture frame = telestrator.host.ReadFrame();
    REQUIRE_EQ(canvas.width, testing::side);
    int worst = 0;
    int covered = 0;
    int halfCovered = 0;
    // The outermost pixels are mixed with the texture's border, which is clear.
    for (std::int32_t y = 1; y < testing::side - 1; ++y)
        for (std::int32_t x = 1; x < testing::side - 1; ++x) {
            const Pixel stroke = canvas.At(x, y);
            covered += stroke[3] > 240 ? 1 : 0;
            halfCovered += stroke[3] > 0 && stroke[3] <= 240 ? 1 : 0;
            Pixel expected{0, 0, 0, 255};
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const double value = wanted(base.At(x, y)[channel], stroke[channel], stroke[3] / 255.0);
                expected[channel] = static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
            }
            worst = std::max(worst, testing::Difference(frame.At(x, y), expected));
        }
    CHECK_GT(covered, 5000);  // or else nothing was drawn and nothing compared
    CHECK_GT(halfCovered, 500);
    return worst;
}

double Over(double base, double stroke, double alpha) { return base * (1 - alpha) + stroke; }

}  // namespace

TEST_CASE("The first picture is the base alone") {
    for (const std::int32_t unit : {1, 2}) {
        CAPTURE(unit);
        const picture_io::Picture base = testing::Speckled(testing::side, testing::side);
        const Telestrator telestrator(unit, &base);
        const picture_io::Picture frame = telestrator.host.ReadFrame();
        int worst = 0;
        for (std::int32_t y = 0; y < testing::side; ++y)
            for (std::int32_t x = 0; x < testing::side; ++x)
                worst = std::max(worst, testing::Difference(frame.At(x, y), base.At(x, y)));
        CHECK_LE(worst, 1);
    }
}

TEST_CASE("On a unit above 0 the strokes lie over the picture") {
    for (const std::int32_t unit : {1, 2}) {
        CAPTURE(unit);
        const picture_io::Picture base = testing::Speckled(testing::side, testing::side);
        Telestrator telestrator(unit, &base);
        Scribble(telestrator);
        CHECK_LE(WorstDifference(telestrator, base, Over), 2);
        CHECK(telestrator.host.WrongUses().empty());
    }
}

TEST_CASE("On unit 0 with a transparent base the strokes lie over what is behind the container") {
    const picture_io::Picture behind = testing::Speckled(testing::side, testing::side);
    const picture_io::Picture hidden = testing::Plain(1, 1, testing::green);
    Telestrator telestrator(0, &hidden, &behind);
    Scribble(telestrator);
    CHECK_LE(WorstDifference(telestrator, behind, Over), 2);
}

// The canvas takes the picture's place, so the container's own look is its plain white. Here the combiner weighs the
// stroke, which is multiplied by its alpha already, once more.
TEST_CASE("On unit 0 without a transparent base the strokes lie over the plain container") {
    const picture_io::Picture base = testing::Plain(testing::side, testing::side, testing::white);
    Telestrator telestrator(0);
    telestrator.Set("Transparent", 0);
    Scribble(telestrator);
    CHECK_LE(WorstDifference(telestrator, base,
                             [](double white, double stroke, double a) { return white * (1 - a) + stroke * a; }),
             2);
}

TEST_CASE("What the operator picks is what is seen") {
    const picture_io::Picture base = testing::Plain(1, 1, testing::black);
    for (const ColourBytes picked : {operatorRed, ColourBytes{0, 255, 0, 255}, ColourBytes{0, 0, 255, 255},
                                     operatorOrange, ColourBytes{255, 255, 255, 255}}) {
        Telestrator telestrator(1, &base);
        telestrator.Set("BrushColor", picked);
        telestrator.Draw({{300, 300}, {400, 300}});
        telestrator.CheckSeen(350, 300, picked);
        CHECK_LE(testing::Difference(telestrator.host.ReadCanvas(telestrator.container).At(350, 300), picked), 3);
    }
}

TEST_CASE("A stroke is seen where the pointer was, and nowhere else") {
    const picture_io::Picture base = testing::Plain(1, 1, testing::black);
    Telestrator telestrator(1, &base);
    telestrator.Draw({{800, 100}, {800, 130}});
    telestrator.CheckSeen(800, 100, testing::red);
    telestrator.CheckSeen(800, 923, testing::black);
    telestrator.CheckSeen(223, 100, testing::black);
    // The pen is 30 wide in all.
    telestrator.CheckSeen(800, 60, testing::black);
    telestrator.CheckSeen(840, 115, testing::black);
}

TEST_CASE("A stroke is seen under the pointer on a container that leans, too") {
    Host host({testing::side, testing::side});
    Camera camera = testing::CameraInFront();
    camera.position[1] = 80;
    host.SetCamera(camera);
    Placement leaning;
    leaning.rotation = {-50, 20, 10};
    leaning.scale = {1.2, 0.9, 1};
    const ObjectId container = host.AddContainer(leaning);
    host.Attach(container, host.LoadModule(CHALKPANE_MODULE),
                {{"BrushWidth", 12}, {"BrushColor", operatorRed}, {"RecoShapes", 0}});
    host.RunField();
    for (const auto& [x, y] : {std::pair{400, 480}, std::pair{600, 560}, std::pair{520, 430}}) {
        for (const PointerKind kind : {PointerKind::Press, PointerKind::Release}) {
            host.QueuePointer(kind, x, y);
            host.RunField();
        }
        CheckSeen(host.ReadFrame(), x, y, testing::red);
    }
}

TEST_CASE("A press beside the container draws nothing") {
    Telestrator telestrator(1);
    const picture_io::Picture before = telestrator.host.ReadFrame();
    telestrator.Draw({{-5, 100}, {500, 500}});
    CHECK(telestrator.host.ReadFrame() == before);
}

TEST_CASE("Undo takes the last stroke back, and clear takes all") {
    const picture_io::Picture base = testing::Plain(1, 1, testing::black);
    Telestrator telestrator(1, &base);
    telestrator.Draw({{200, 200}, {260, 200}});
    telestrator.Draw({{700, 700}, {760, 700}});
    telestrator.Push("Undo");
    telestrator.CheckSeen(230, 200, testing::red);
    telestrator.CheckSeen(730, 700, testing::black);
    telestrator.Draw({{700, 700}, {760, 700}});
    telestrator.CheckSeen(730, 700, testing::red);
    telestrator.Push("Clear");
    CHECK(telestrator.host.ReadFrame() == testing::Plain(testing::side, testing::side, testing::black));
    telestrator.Push("Undo");
    telestrator.CheckSeen(730, 700, testing::red);
}

TEST_CASE("The eraser shows the picture again") {
    const picture_io::Picture base = testing::Plain(1, 1, testing::blue);
    Telestrator telestrator(2, &base);
    telestrator.Draw({{200, 200}, {400, 200}});
    telestrator.Set("BrushType", 1);
    telestrator.Set("EraserWidth", 60);
    telestrator.Draw({{300, 200}, {320, 200}});
    telestrator.CheckSeen(310, 200, testing::blue);
    telestrator.CheckSeen(220, 200, testing::red);
}

TEST_CASE("The strokes move to another unit with the whole canvas") {
    const picture_io::Picture base = testing::Plain(1, 1, testing::blue);
    Telestrator telestrator(1, &base);
    telestrator.Draw({{200, 200}, {400, 200}});
    for (const std::int32_t unit : {2, 1, 2}) {
        CAPTURE(unit);
        telestrator.Set("TexUnit", unit);
        telestrator.CheckSeen(300, 200, testing::red);
        telestrator.CheckSeen(300, 400, testing::blue);
    }
    // The canvas takes the picture's place; without a transparent base the plain container is seen.
    telestrator.Set("Transparent", 0);
    telestrator.Set("TexUnit", 0);
    telestrator.CheckSeen(300, 200, testing::red);
    telestrator.CheckSeen(300, 400, testing::white);
    telestrator.Set("TexUnit", 1);
    telestrator.CheckSeen(300, 200, testing::red);
    telestrator.CheckSeen(300, 400, testing::blue);
    CHECK(telestrator.host.WrongUses().empty());
}

// KEEP: the picture is loaded and carried along, and the pen goes on in its plain colour.
TEST_CASE("A picture as a brush changes nothing of what is painted") {
    const auto painted = [](bool withPicture) {
        const picture_io::Picture base = testing::Plain(1, 1, testing::black);
        Telestrator telestrator(1, &base);
        telestrator.host.AddImage("stamp", testing::Plain(40, 40, testing::green));
        if (withPicture) telestrator.Set("BrushImage", std::string("stamp"));
        telestrator.Draw({{500, 500}, {560, 500}});
        CHECK(telestrator.host.WrongUses().empty());
        return telestrator.host.ReadFrame();
    };
    const picture_io::Picture plain = painted(false);
    CheckSeen(plain, 530, 500, testing::red);
    CHECK(painted(true) == plain);
}

TEST_CASE("The same session gives the same bytes") {
    const auto play = [] {
        const picture_io::Picture base = testing::Speckled(testing::side, testing::side);
        Telestrator telestrator(1, &base);
        Scribble(telestrator);
        return std::pair{telestrator.host.ReadFrame(), telestrator.host.ReadCanvas(telestrator.container)};
    };
    const auto first = play();
    const auto second = play();
    CHECK(first.first == second.first);
    CHECK(first.second == second.second);
}

// A change of unit uploads the whole canvas.
TEST_CASE("Whatever a stroke changes reaches the texture piece by piece") {
    Telestrator telestrator(1);
    Scribble(telestrator);
    const picture_io::Picture pieces = telestrator.host.ReadPremultipliedCanvas(telestrator.container);
    telestrator.Set("TexUnit", 2);
    CHECK(telestrator.host.ReadPremultipliedCanvas(telestrator.container) == pieces);
}

TEST_CASE("Events that come faster than fields lose nothing of what they paint") {
    Telestrator telestrator(1);
    for (std::int32_t x = 100; x < 900; x += 200) {
        telestrator.host.QueuePointer(PointerKind::Press, x, 300);
        telestrator.host.QueuePointer(PointerKind::Move, x + 80, 600);
        telestrator.host.QueuePointer(PointerKind::Release, x + 50, 700);
    }
    while (telestrator.host.HasQueuedPointer()) telestrator.host.RunField();
    const picture_io::Picture pieces = telestrator.host.ReadPremultipliedCanvas(telestrator.container);
    CHECK_GT(pieces.At(100, 300)[3], 0);
    CHECK_GT(pieces.At(700, 300)[3], 0);
    telestrator.Set("TexUnit", 2);
    CHECK(telestrator.host.ReadPremultipliedCanvas(telestrator.container) == pieces);
}

TEST_CASE("The panel follows the brush type and the texture unit") {
    Telestrator telestrator(1);
    const auto shown = [&](const char* name) { return telestrator.host.IsParameterShown(telestrator.container, name); };
    CHECK(shown("BrushWidth"));
    CHECK_FALSE(shown("EraserWidth"));
    CHECK_FALSE(shown("Transparent"));
    CHECK_FALSE(shown("Alpha"));
    telestrator.Set("BrushType", 1);
    telestrator.Set("TexUnit", 0);
    CHECK_FALSE(shown("BrushWidth"));
    CHECK_FALSE(shown("BrushImage"));
    CHECK(shown("EraserWidth"));
    CHECK(shown("Transparent"));
}

}  // namespace kel
