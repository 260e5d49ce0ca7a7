#include <doctest/doctest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/kel/window/drop_source.h"
#include "tests/kel/window/paper_window.h"

// What changes only how things are shown, and what is shown beside them.

namespace kel {
namespace {

using testing::Difference;
using testing::FindPaper;
using testing::ink;
using testing::KelWindow;
using testing::paper;
using testing::PaperWindow;
using testing::WaitUntil;

nlohmann::json LastPress(const PaperWindow& window) {
    const nlohmann::json session = window.Recorded("run.json");
    nlohmann::json press;
    for (const auto& event : session["events"])
        if (event.contains("press")) press = event["press"];
    return press;
}

void Click(PaperWindow& window) {
    const std::int64_t before = window.FieldOf("run.json", "release");
    window.display.PressButton(true);
    window.display.PressButton(false);
    WaitUntil("the click is recorded", [&] { return window.FieldOf("run.json", "release") > before; });
}

testing::Pixel OnPaper(const PaperWindow& window, double x, double y) {
    return window.display.Screen().At(window.area.x + static_cast<std::int32_t>(x * window.area.width),
                                      window.area.y + static_cast<std::int32_t>(y * window.area.height));
}

void DrawBox(PaperWindow& window) {
    window.MoveOnPaper(0.4, 0.4);
    window.display.PressButton(true);
    for (const auto& [x, y] : {std::pair(0.6, 0.4), std::pair(0.6, 0.6), std::pair(0.4, 0.6), std::pair(0.4, 0.42)}) {
        window.MoveOnPaper(x, y);
        std::this_thread::sleep_for(std::chrono::milliseconds(40));  // a hand's pace; nothing depends on it
    }
    window.display.PressButton(false);
    WaitUntil("the box is recorded", [&] { return window.FieldOf("run.json", "release") >= 0; });
}

}  // namespace

TEST_CASE("A closer look lets the pen meet the same place of the picture, and comes back whole") {
    PaperWindow window;
    window.SetByKey("3", "BrushColor");
    const auto inkPixels = [&] {
        const picture_io::Picture screen = window.display.Screen();
        int count = 0;
        for (std::int32_t y = window.area.y; y < window.area.y + window.area.height; ++y)
            for (std::int32_t x = window.area.x; x < window.area.x + window.area.width; ++x)
                count += Difference(screen.At(x, y), ink) < 60 ? 1 : 0;
        return count;
    };
    window.MoveOnPaper(0.3, 0.4);
    for (int i = 0; i < 6; ++i) Click(window);  // to full ink, so that another dab adds nothing
    WaitUntil("there is a dab", [&] { return inkPixels() > 0; });
    window.WaitUntilStill();
    const int whole = inkPixels();
    const nlohmann::json before = LastPress(window);
    window.display.TurnWheel(4);
    // 1.25 to the fourth is 2.44, and its square 5.96 times as much ink.
    WaitUntil("the dab is larger", [&] { return inkPixels() > 4 * whole; });
    Click(window);
    const nlohmann::json after = LastPress(window);
    CHECK_LE(std::abs(after[0].get<int>() - before[0].get<int>()), 1);
    CHECK_LE(std::abs(after[1].get<int>() - before[1].get<int>()), 1);
    CHECK_EQ(window.Recorded("run.json")["window"]["width"], 1200);
    window.display.TypeKey("0");
    WaitUntil("the paper is whole", [&] { return inkPixels() < 2 * whole; });
}

TEST_CASE("A spotlight dims all but what was drawn around, in the window alone") {
    PaperWindow window;
    window.SetByKey("3", "BrushColor");
    DrawBox(window);
    window.display.TypeKey("d");
    WaitUntil("it is dim beside the box", [&] { return Difference(OnPaper(window, 0.05, 0.05), paper) > 30; });
    CHECK_LE(Difference(OnPaper(window, 0.5, 0.5), paper), 2);
    window.display.TypeKey("s");
    WaitUntil("the picture is saved", [&] { return std::filesystem::exists(window.folder / "paper-picture-001.png"); });
    WaitUntil("it is whole", [&] {
        try {
            return picture_io::ReadPicture(window.folder / "paper-picture-001.png").At(60, 45) == paper;
        } catch (const std::exception&) {
            return false;
        }
    });
    window.display.TypeKey("d");
    WaitUntil("all is light", [&] { return Difference(OnPaper(window, 0.05, 0.05), paper) <= 2; });
}

TEST_CASE("Ink reaches the pointer while the button is down, unless that is turned off") {
    for (const bool hasTail : {true, false}) {
        CAPTURE(hasTail);
        PaperWindow window(hasTail ? std::vector<std::string>{} : std::vector<std::string>{"--tail", "off"});
        window.SetByKey("3", "BrushColor");
        window.MoveOnPaper(0.2, 0.5);
        window.display.PressButton(true);
        for (const double x : {0.3, 0.4, 0.5}) {
            window.MoveOnPaper(x, 0.5);
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
        }
        WaitUntil("there is ink on the way", [&] { return Difference(OnPaper(window, 0.25, 0.5), ink) < 60; });
        if (hasTail)
            WaitUntil("there is ink under the pointer",
                      [&] { return Difference(OnPaper(window, 0.499, 0.5), ink) < 60; });
        else
            CHECK_GE(Difference(OnPaper(window, 0.499, 0.5), ink), 60);
        window.display.PressButton(false);
        WaitUntil("the module draws to the end", [&] { return Difference(OnPaper(window, 0.499, 0.5), ink) < 60; });
    }
}

TEST_CASE("Another file is opened from the list by a part of its name") {
    PaperWindow window;
    picture_io::WritePicture(testing::Plain(300, 200, {10, 120, 60, 255}), window.folder / "meadow.png");
    window.display.TypeKey("o", true);
    window.WaitUntilStill();
    window.display.TypeText("mead");
    window.WaitUntilStill();
    window.display.TypeKey("Return");
    WaitUntil("the meadow is open", [&] { return window.display.FindWindow("meadow.png - kel").has_value(); });
    CHECK(std::filesystem::exists(window.folder / "state" / "kel" / "recent"));
}

TEST_CASE("A file that is dropped onto the window is opened in it") {
    PaperWindow window;
    picture_io::WritePicture(testing::Plain(300, 200, {10, 120, 60, 255}), window.folder / "meadow.png");
    const auto place = window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    testing::DropFile(window.display.Name(), *place, window.folder / "meadow.png");
    WaitUntil("the meadow is open", [&] { return window.display.FindWindow("meadow.png - kel").has_value(); });
    WaitUntil("the meadow is seen", [&] { return Difference(OnPaper(window, 0.5, 0.5), {10, 120, 60, 255}) <= 2; });
}

namespace {

// A wide red one, from 0.7 to 0.8 of a paper of 1200 x 900, at 0.8 of its height.
void DrawWideStroke(KelWindow& window) {
    window.display.TypeKey("r");
    window.display.TypeKey("3");
    for (int i = 0; i < 20; ++i) window.display.TypeKey("bracketright");
    WaitUntil("the color is recorded", [&] { return window.FieldOf("run.json", "set") >= 0; });
    const auto main = window.display.FindWindow("paper.png - kel");
    const auto move = [&](double x) {
        window.display.MovePointer(main->x + static_cast<std::int32_t>(x * 1200), main->y + 720);
    };
    move(0.7);
    window.display.PressButton(true);
    move(0.8);
    window.display.PressButton(false);
    WaitUntil("the stroke has ended", [&] { return window.FieldOf("run.json", "release") >= 0; });
}

}  // namespace

TEST_CASE("A clean window shows the picture and what is drawn on it") {
    KelWindow window;
    picture_io::WritePicture(testing::Plain(1200, 900, paper), window.folder / "paper.png");
    window.Start({"paper.png", "--record", "run.json", "--clean-output"});
    const auto clean = [&] { return window.display.FindWindow("kel clean output"); };
    WaitUntil("both windows are on the screen",
              [&] { return clean().has_value() && window.display.FindWindow("paper.png - kel").has_value(); });
    CHECK_EQ(clean()->width, 1200);
    CHECK_EQ(clean()->height, 900);
    window.display.ResizeWindow(*clean(), 120, 90);  // out of the other one's way
    const auto at = [&](double x, double y) {
        return window.display.Screen().At(clean()->x + static_cast<std::int32_t>(120 * x),
                                          clean()->y + static_cast<std::int32_t>(90 * y));
    };
    WaitUntil("it shows the paper", [&] { return Difference(at(0.9, 0.9), paper) <= 2; });
    DrawWideStroke(window);
    WaitUntil("it shows the ink", [&] { return Difference(at(0.75, 0.8), ink) < 90; });
}

TEST_CASE("There is no clean window on a display that is not there") {
    KelWindow window;
    picture_io::WritePicture(testing::Plain(120, 90, paper), window.folder / "paper.png");
    window.Start({"paper.png", "--clean-output", "3"});
    CHECK_EQ(window.WaitForEnd(), 2);
    CHECK_EQ(cli::testing::ReadText(window.folder / "stderr"),
             "kel: --clean-output: there is no display 3; there is 1\n");
}

// The strokes' ink over black is the fill, and full alpha as grey, white, the key; the paper is in neither.
TEST_CASE("Two windows for a mixer show the colors and the alpha of the strokes alone") {
    KelWindow window;
    picture_io::WritePicture(testing::Plain(1200, 900, paper), window.folder / "paper.png");
    window.Start({"paper.png", "--record", "run.json", "--key-fill-display"});
    const auto place = [&](const char* title) { return window.display.FindWindow(title); };
    WaitUntil("all windows are on the screen",
              [&] { return place("kel fill") && place("kel key") && place("paper.png - kel"); });
    std::int32_t top = 0;
    for (const char* title : {"kel fill", "kel key"}) {
        window.display.ResizeWindow(*place(title), 120, 90);
        window.display.MoveWindow(*place(title), 0, top);  // out of the way of each other and of the stroke
        top += 100;
    }
    const auto at = [&](const char* title, double x, double y) {
        const auto found = place(title);
        return window.display.Screen().At(found->x + static_cast<std::int32_t>(120 * x),
                                          found->y + static_cast<std::int32_t>(90 * y));
    };
    const testing::Pixel black{0, 0, 0, 255};
    for (const char* title : {"kel fill", "kel key"})
        WaitUntil("there are no strokes yet", [&] { return Difference(at(title, 0.9, 0.9), black) <= 2; });
    DrawWideStroke(window);
    WaitUntil("the fill shows the ink", [&] { return Difference(at("kel fill", 0.75, 0.8), ink) < 90; });
    WaitUntil("the key shows it white", [&] { return Difference(at("kel key", 0.75, 0.8), testing::white) < 90; });
    CHECK_LE(Difference(at("kel fill", 0.75, 0.3), black), 2);
    CHECK_LE(Difference(at("kel key", 0.75, 0.3), black), 2);
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_EQ(cli::testing::ReadText(window.folder / "stderr"), "");  // such as what OpenGL refused
}

TEST_CASE("There are no windows for a mixer without a display for the key") {
    KelWindow window;
    picture_io::WritePicture(testing::Plain(120, 90, paper), window.folder / "paper.png");
    window.Start({"paper.png", "--key-fill-display", "1"});
    CHECK_EQ(window.WaitForEnd(), 2);
    CHECK_EQ(cli::testing::ReadText(window.folder / "stderr"),
             "kel: --key-fill-display: there is no display 2; there is 1\n");
}

namespace {

// What the panel leaves of the window's width, on a screen of its own.
std::int32_t WidthOfPanel(testing::ScreenSize screen) {
    KelWindow window(screen);
    picture_io::WritePicture(testing::Plain(2000, 600, paper), window.folder / "paper.png");
    window.Start({"paper.png"});
    std::int32_t width = 0;
    WaitUntil("the window shows the picture", [&] {
        const auto place = window.display.FindWindow("paper.png - kel");
        if (!place) return false;
        const PictureArea area = FindPaper(window.display.Screen());
        width = place->x + place->width - area.x - area.width;
        return area.width > 0 && area.x == place->x;
    });
    return width;
}

}  // namespace

TEST_CASE("Full screen has all of the display's own pixels, and gives the window back as it was") {
    PaperWindow window;
    const auto place = [&] { return window.display.FindWindow("paper.png - kel").value_or(testing::WindowPlace()); };
    const testing::WindowPlace before = place();
    const auto isAt = [&](std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
        const testing::WindowPlace now = place();
        return now.x == x && now.y == y && now.width == width && now.height == height;
    };
    window.display.TypeKey("f");
    WaitUntil("it fills the screen", [&] { return isAt(0, 0, 1600, 1000); });
    // Beside the panel of 360 pixels there are 1240 for the paper of 1200 x 900.
    WaitUntil("the picture has grown with it", [&] {
        const PictureArea area = FindPaper(window.display.Screen());
        return area.width == 1240 && area.height == 930;
    });
    window.display.TypeKey("Escape");
    WaitUntil("the window is back", [&] { return isAt(before.x, before.y, before.width, before.height); });
}

TEST_CASE("The panel is as large on a fine screen as on a usual one, and a strip on a small one") {
    CHECK_EQ(WidthOfPanel({1600, 1000, 96}), 360);
    CHECK_EQ(WidthOfPanel({2400, 1400, 192}), 720);
    CHECK_EQ(WidthOfPanel({760, 700, 96}), 64);
}

}  // namespace kel
