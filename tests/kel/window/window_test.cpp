#include <doctest/doctest.h>
#include <signal.h>

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>
#include <thread>

#include "kel/video/video_reader.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/window/paper_window.h"

namespace kel {
namespace {

using testing::FindPaper;
using testing::ink;
using testing::KelWindow;
using testing::paper;
using testing::PaperWindow;
using testing::WaitUntil;

// As a hand draws it: not quite round. Radii are pixels of the screen.
void DrawRing(PaperWindow& window, double radius, double wobble) {
    constexpr int places = 72;
    const double centreX = window.area.x + window.area.width / 2.0;
    const double centreY = window.area.y + window.area.height / 2.0;
    for (int i = 0; i <= places; ++i) {
        const double angle = 2 * std::numbers::pi * i / places;
        const double distance = radius + wobble * std::cos(5 * angle);
        window.display.MovePointer(static_cast<std::int32_t>(std::lround(centreX + distance * std::cos(angle))),
                                   static_cast<std::int32_t>(std::lround(centreY + distance * std::sin(angle))));
        if (i == 0) window.display.PressButton(true);
        std::this_thread::sleep_for(std::chrono::milliseconds(22));  // a hand's pace; nothing depends on it
    }
    window.display.PressButton(false);
}

// A line of ink across the middle of the paper.
void DrawAcross(PaperWindow& window) {
    window.SetByKey("3", "BrushColor");
    window.MoveOnPaper(0.3, 0.5);
    window.display.PressButton(true);
    WaitUntil("the press is recorded", [&] { return window.FieldOf("run.json", "press") >= 0; });
    window.MoveOnPaper(0.7, 0.5);
    window.display.PressButton(false);
    WaitUntil("the release is recorded", [&] { return window.FieldOf("run.json", "release") >= 0; });
    window.WaitUntilStill();
}

constexpr std::size_t directions = 72;

// How far the middle of a ring's ink lies from the middle of the picture, in every direction; 0 where there is none.
std::array<double, directions> LookAtRing(const picture_io::Picture& screen, const PictureArea& area) {
    std::array<double, directions> nearest{};
    std::array<double, directions> farthest{};
    for (std::int32_t y = area.y; y < area.y + area.height; ++y)
        for (std::int32_t x = area.x; x < area.x + area.width; ++x) {
            if (testing::Difference(screen.At(x, y), ink) > 60) continue;
            const double right = x + 0.5 - area.x - area.width / 2.0;
            const double down = y + 0.5 - area.y - area.height / 2.0;
            const double turn = std::atan2(down, right) / (2 * std::numbers::pi) + 0.5;
            const auto direction = std::min(directions - 1, static_cast<std::size_t>(turn * directions));
            const double distance = std::hypot(right, down);
            if (nearest[direction] == 0 || distance < nearest[direction]) nearest[direction] = distance;
            farthest[direction] = std::max(farthest[direction], distance);
        }
    for (std::size_t i = 0; i < directions; ++i) nearest[i] = (nearest[i] + farthest[i]) / 2;
    return nearest;
}

// How much the distances swing so many times in a turn. An ellipse swings twice, one beside the middle once, and what
// is drawn with DrawRing five times.
double Swing(const std::array<double, directions>& distances, int times) {
    double cosines = 0;
    double sines = 0;
    for (std::size_t i = 0; i < directions; ++i) {
        const double angle = 2 * std::numbers::pi * times * static_cast<double>(i) / directions;
        cosines += distances[i] * std::cos(angle);
        sines += distances[i] * std::sin(angle);
    }
    return 2 * std::hypot(cosines, sines) / directions;
}

}  // namespace

TEST_CASE("A ring drawn with a real pointer becomes a clean ellipse, and its recording plays to the same canvas") {
    PaperWindow window;
    window.SetByKey("3", "BrushColor");
    window.SetByKey("r", "RecoShapes");
    const double radius = window.area.height * 0.25;
    const double wobble = radius * 0.04;
    DrawRing(window, radius, wobble);
    window.WaitForFields("release", 50 + 30);  // the delay of 50 fields, and some to be sure
    const picture_io::Picture screen = window.display.Screen();
    const auto ring = LookAtRing(screen, window.area);
    for (const double distance : ring) CHECK_LT(std::abs(distance - radius), radius * 0.1);
    CHECK_LT(Swing(ring, 5), wobble / 4);
    CHECK_LT(Swing(ring, 7), wobble / 4);

    const picture_io::Picture live = window.SaveOverlay("paper-overlay-001.png");
    window.Signal(SIGKILL);
    CHECK_EQ(window.WaitForEnd(), 128 + SIGKILL);
    CHECK_EQ(window.PlayedOverlay("run.json") == live, true);
}

TEST_CASE("A killed window leaves a recording that plays up to the last second") {
    PaperWindow window;
    window.SetByKey("4", "BrushColor");
    window.MoveOnPaper(0.2, 0.3);
    window.display.PressButton(true);
    for (int i = 0; i <= 20; ++i) {
        window.MoveOnPaper(0.2 + 0.03 * i, 0.3 + 0.02 * i);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    WaitUntil("the stroke is recorded", [&] { return window.FieldOf("run.json", "press") >= 0; });
    window.WaitForFields("move", 5);
    const std::int64_t fields = window.Recorded("run.json")["fields"].get<std::int64_t>();
    window.Signal(SIGKILL);  // with the button down
    CHECK_EQ(window.WaitForEnd(), 128 + SIGKILL);
    CHECK_GE(window.Recorded("run.json")["fields"].get<std::int64_t>(), fields);
    const picture_io::Picture played = window.PlayedOverlay("run.json");
    CHECK_EQ(played == picture_io::Picture(played.width, played.height), false);
}

TEST_CASE("A window that is closed has recorded all, keys and panel away and the help page among what it does") {
    PaperWindow window;
    const std::int32_t withPanel = window.area.width;
    window.display.TypeKey("Tab");
    WaitUntil("the panel is away", [&] { return FindPaper(window.display.Screen()).width > withPanel; });
    window.display.TypeKey("Tab");
    WaitUntil("the panel is back", [&] { return FindPaper(window.display.Screen()).width == withPanel; });
    const auto middle = [&] {
        return window.display.Screen().At(window.area.x + window.area.width / 2,
                                          window.area.y + window.area.height / 2);
    };
    window.display.TypeKey("question");
    WaitUntil("the keys are shown", [&] { return testing::Difference(middle(), paper) > 30; });
    window.display.TypeKey("Escape");
    WaitUntil("the keys are gone", [&] { return testing::Difference(middle(), paper) <= 2; });
    window.SetByKey("bracketright", "BrushWidth");
    window.SetByKey("e", "BrushType");
    window.display.TypeKey("z");
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_EQ(cli::testing::ReadText(window.folder / "stderr"), "");
    // The push of the button came just before the end.
    CHECK_GE(window.FieldOf("run.json", "button"), 0);
    const nlohmann::json session = window.Recorded("run.json");
    CHECK_EQ(session["fields"].get<std::int64_t>() > window.FieldOf("run.json", "button"), true);
}

TEST_CASE("What was drawn is saved by Ctrl+S, and leaves as pictures when the window has been closed") {
    PaperWindow window({"--out", "drawn.png", "--canvas", "strokes.png"});
    DrawAcross(window);
    const picture_io::Picture live = window.SaveOverlay("paper-overlay-001.png");
    window.display.TypeKey("s", true);
    WaitUntil("the picture is there", [&] { return std::filesystem::exists(window.folder / "paper-picture-001.png"); });
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_EQ(picture_io::ReadPicture(window.folder / "strokes.png") == live, true);
    for (const std::string name : {"drawn.png", "paper-picture-001.png"}) {
        CAPTURE(name);
        const picture_io::Picture drawn = picture_io::ReadPicture(window.folder / name);
        CHECK_LE(testing::Difference(drawn.At(drawn.width / 2, drawn.height / 2), ink), 60);
        CHECK_LE(testing::Difference(drawn.At(drawn.width / 2, drawn.height / 4), paper), 2);
    }
}

TEST_CASE("A film of what was drawn has every field when the window has been closed") {
    PaperWindow window({"--out", "drawn.mov", "--overlay", "strokes.mov"});
    DrawAcross(window);
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    const std::int64_t fields = window.Recorded("run.json")["fields"].get<std::int64_t>();
    for (const std::string name : {"drawn.mov", "strokes.mov"}) {
        CAPTURE(name);
        VideoReader reader(window.folder / name);
        CHECK_EQ(reader.FrameCount(), fields);
        const picture_io::Picture first = reader.ReadFrame(0);
        const picture_io::Picture last = reader.ReadFrame(fields - 1);
        CHECK_GT(
            testing::Difference(last.At(last.width / 2, last.height / 2), first.At(last.width / 2, last.height / 2)),
            60);
        CHECK_EQ(last.At(last.width / 2, last.height / 4), first.At(last.width / 2, last.height / 4));
    }
}

TEST_CASE("A value typed into the panel is taken within its limits and not beyond them") {
    PaperWindow window;
    const auto place = window.display.FindWindow("paper.png - kel");
    // The field of the third row of the first group, the brush's width.
    const auto type = [&](const std::string& text) {
        window.display.MovePointer(place->x + place->width - 46, place->y + 222);
        window.display.PressButton(true);
        window.display.PressButton(false);
        window.WaitUntilStill();
        window.display.TypeText(text);
        window.display.TypeKey("Return");
        window.WaitUntilStill();
    };
    type("31");
    CHECK_EQ(window.ValuesSet("BrushWidth"), nlohmann::json::array());
    type("7");
    WaitUntil("the width is recorded", [&] { return !window.ValuesSet("BrushWidth").empty(); });
    CHECK_EQ(window.ValuesSet("BrushWidth"), nlohmann::json::array({7}));
    CHECK_EQ(window.ValuesSet("BrushColor"), nlohmann::json::array());  // the digits were no keys
}

TEST_CASE("A film plays in the window, and a frozen frame stays drawable") {
    KelWindow window;
    testing::WriteCountedVideo(window.folder / "film.mkv", 60, 320, 240, 25);
    window.Start({"film.mkv", "--record", "run.json"});
    WaitUntil("the window is on the screen", [&] { return window.display.FindWindow("film.mkv - kel").has_value(); });
    WaitUntil("fields run", [&] {
        return std::filesystem::exists(window.folder / "run.json") && window.Recorded("run.json")["fields"] > 5;
    });
    window.display.TypeKey("space");
    WaitUntil("the film is paused", [&] { return window.FieldOf("run.json", "film") >= 0; });
    window.display.TypeKey("r");  // strokes stay as they are drawn
    window.display.TypeKey("3");
    const auto place = window.display.FindWindow("film.mkv - kel");
    window.display.MovePointer(place->x + 200, place->y + 300);
    window.display.PressButton(true);
    WaitUntil("the press is recorded", [&] { return window.FieldOf("run.json", "press") >= 0; });
    window.display.MovePointer(place->x + 400, place->y + 320);
    window.display.PressButton(false);
    WaitUntil("the release is recorded", [&] { return window.FieldOf("run.json", "release") >= 0; });
    WaitUntil("ink is seen", [&] {
        const picture_io::Picture screen = window.display.Screen();
        for (std::int32_t x = place->x + 250; x < place->x + 350; ++x)
            if (testing::Difference(screen.At(x, place->y + 305 + (x - place->x - 250) / 10), ink) < 60) return true;
        return false;
    });
    window.display.TypeKey("o");
    WaitUntil("the overlay is saved", [&] { return std::filesystem::exists(window.folder / "film-overlay-001.png"); });
    const picture_io::Picture live = picture_io::ReadPicture(window.folder / "film-overlay-001.png");
    window.Signal(SIGTERM);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_EQ(window.PlayedOverlay("run.json") == live, true);
}

TEST_CASE("What is wrong with the command line is told in one line before a window opens") {
    KelWindow window;
    cli::testing::WriteText(window.folder / "keys.json", R"({"keys": [{"key": "U", "button": "Und"}]})");
    cli::testing::WriteText(window.folder / "bad.json", R"({"keys": [{"key": "U", "workspace": "paus"}]})");
    picture_io::WritePicture(testing::Plain(40, 30, paper), window.folder / "paper.png");
    const auto complaint = [&](const std::vector<std::string>& arguments) {
        window.Start(arguments);
        CHECK_EQ(window.WaitForEnd(), 2);
        return cli::testing::ReadText(window.folder / "stderr");
    };
    CHECK_EQ(complaint({"paper.png", "--keys", "keys.json"}),
             "kel: keys.json: /keys/0/button: there is no button \"Und\"; did you mean \"Undo\"?\n");
    CHECK_EQ(complaint({"paper.png", "--keys", "bad.json"}),
             "kel: bad.json: /keys/0/workspace: the workspace has no \"paus\"; did you mean \"pause\"?\n");
    CHECK_EQ(complaint({"gone.png"}), "kel: gone.png: cannot be read: No such file or directory\n");
    CHECK_EQ(complaint({"paper.png", "--record", "nowhere/run.json"}).starts_with("kel: nowhere/run.json: "), true);
    CHECK_EQ(complaint({"paper.png", "--out", "film.avi"}).starts_with("kel: film.avi: "), true);
    CHECK_EQ(complaint({"paper.png", "--fill", "fill.mov"}).starts_with("kel: fill.mov: --fill and --key"), true);
}

}  // namespace kel
