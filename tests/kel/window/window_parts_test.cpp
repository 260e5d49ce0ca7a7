#include <doctest/doctest.h>

#include <cstdlib>
#include <thread>

#include "tests/kel/window/paper_window.h"

namespace kel {
namespace {

using testing::FindPaper;
using testing::PaperWindow;
using testing::WaitUntil;

// Fields after one whose picture has been shown by then: a busy window runs ten of them at once at most.
constexpr std::int64_t shown = 12;

picture_io::Picture PartOf(const picture_io::Picture& screen, const PictureArea& area) {
    picture_io::Picture part(area.width, area.height);
    for (std::int32_t y = 0; y < area.height; ++y)
        for (std::int32_t x = 0; x < area.width; ++x) part.Set(x, y, screen.At(area.x + x, area.y + y));
    return part;
}

// On a busy machine the last fields may be seen late.
void WaitForPart(const PaperWindow& window, const PictureArea& area, const picture_io::Picture& part) {
    WaitUntil("that part of the screen is as it is to be",
              [&] { return PartOf(window.display.Screen(), area) == part; });
}

void DrawZigzag(PaperWindow& window, double height) {
    window.MoveOnPaper(0.1, height);
    window.display.PressButton(true);
    for (int i = 1; i <= 24; ++i) {
        window.MoveOnPaper(0.1 + 0.03 * i, height + (i % 2 == 0 ? 0.0 : 0.06));
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
    }
    window.display.PressButton(false);
}

void PanelAwayAndBack(PaperWindow& window, const PictureArea& with, const PictureArea& without) {
    window.display.TypeKey("Tab");
    WaitUntil("the panel is back", [&] { return FindPaper(window.display.Screen()).width == with.width; });
    window.display.TypeKey("Tab");
    WaitUntil("the panel is away", [&] { return FindPaper(window.display.Screen()).width == without.width; });
}

}  // namespace

TEST_CASE("A window that is drawn part by part looks like one that is drawn as a whole, scaled and not") {
    PaperWindow window;
    window.SetByKey("3", "BrushColor");
    DrawZigzag(window, 0.3);
    window.WaitForFields("release", shown);
    const PictureArea with = window.area;
    const picture_io::Picture inParts = PartOf(window.display.Screen(), with);
    CHECK_EQ(inParts == testing::Plain(with.width, with.height, testing::paper), false);

    window.display.TypeKey("Tab");
    WaitUntil("the panel is away", [&] {
        window.area = FindPaper(window.display.Screen());
        return window.area.width > with.width;
    });
    const std::int64_t firstRelease = window.FieldOf("run.json", "release");
    DrawZigzag(window, 0.6);
    WaitUntil("the second stroke is over", [&] { return window.FieldOf("run.json", "release") > firstRelease; });
    window.WaitForFields("release", shown);
    const PictureArea without = window.area;
    const picture_io::Picture scaledInParts = PartOf(window.display.Screen(), without);
    PanelAwayAndBack(window, with, without);
    WaitForPart(window, without, scaledInParts);

    window.display.TypeKey("z");  // what was drawn without the panel
    window.WaitForFields("button", shown);
    window.display.TypeKey("Tab");
    WaitUntil("the panel is back", [&] { return FindPaper(window.display.Screen()).width == with.width; });
    WaitForPart(window, with, inParts);
}

TEST_CASE("A window that is made larger and smaller while one draws goes on showing its picture whole") {
    PaperWindow window;
    const auto place = window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    const picture_io::Picture sheet = testing::Plain(window.area.width, window.area.height, testing::paper);
    window.SetByKey("3", "BrushColor");
    window.MoveOnPaper(0.2, 0.2);
    window.display.PressButton(true);
    for (int i = 0; i < 40; ++i) {
        window.MoveOnPaper(0.2 + 0.01 * i, 0.2 + 0.005 * i);
        window.display.ResizeWindow(*place, place->width - 13 * (i % 20), place->height - 9 * (i % 20));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    window.display.PressButton(false);
    window.display.ResizeWindow(*place, place->width, place->height);
    WaitUntil("the picture is as large as before", [&] {
        const PictureArea area = FindPaper(window.display.Screen());
        return area.width == window.area.width && area.height == window.area.height;
    });
    window.WaitForFields("release", shown);
    window.display.TypeKey("Delete");
    window.WaitForFields("button", shown);
    WaitForPart(window, window.area, sheet);
    CHECK_EQ(window.IsRunning(), true);
}

TEST_CASE("A closer look at the picture leaves the panel beside it as it is, part by part and as a whole") {
    PaperWindow window;
    window.SetByKey("3", "BrushColor");
    const auto place = window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    const PictureArea panel{window.area.x + window.area.width, place->y, place->width - window.area.width,
                            window.area.height};
    window.MoveOnPaper(0.5, 0.5);
    window.WaitUntilStill();
    const picture_io::Picture before = PartOf(window.display.Screen(), panel);
    window.display.TurnWheel(3);
    WaitUntil("the paper goes on under the panel", [&] { return FindPaper(window.display.Screen()).height >= 900; });
    DrawZigzag(window, 0.5);
    window.WaitForFields("release", shown);
    window.MoveOnPaper(0.5, 0.5);
    window.WaitUntilStill();
    const picture_io::Picture inParts = PartOf(window.display.Screen(), window.area);
    CHECK_EQ(PartOf(window.display.Screen(), panel) == before, true);
    window.display.TypeKey("Tab");
    WaitUntil("the panel is away", [&] { return FindPaper(window.display.Screen()).width > window.area.width; });
    window.display.TypeKey("Tab");
    WaitForPart(window, window.area, inParts);
    WaitForPart(window, panel, before);
}

// Where a part alone cannot be shown. SDL takes GLX first where it is not told otherwise.
TEST_CASE("A window that OpenGL has from EGL shows what is drawn") {
    setenv("SDL_VIDEO_X11_FORCE_EGL", "1", 1);
    PaperWindow window;
    unsetenv("SDL_VIDEO_X11_FORCE_EGL");
    window.SetByKey("3", "BrushColor");
    DrawZigzag(window, 0.3);
    WaitUntil("there is ink", [&] {
        const picture_io::Picture screen = window.display.Screen();
        const std::int32_t x = window.area.x + window.area.width / 2;
        const auto isInk = [&](std::int32_t y) {
            return testing::Difference(screen.At(x, window.area.y + y), testing::ink) < 60;
        };
        for (std::int32_t y = 0; y < window.area.height; ++y)
            if (isInk(y)) return true;
        return false;
    });
}

}  // namespace kel
