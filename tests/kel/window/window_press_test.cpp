#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/kel/window/paper_window.h"

namespace kel {

using testing::PaperWindow;
using testing::WaitUntil;

namespace {

// The field of the third row of the panel's first group, the brush's width.
void PointAtBrushWidth(PaperWindow& window) {
    const auto place = window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    window.display.MovePointer(place->x + place->width - 46, place->y + 222);
}

int CountOf(const PaperWindow& window, const char* key) {
    int count = 0;
    const nlohmann::json session = window.Recorded("run.json");
    for (const auto& event : session["events"]) count += event.contains(key) ? 1 : 0;
    return count;
}

// Where the pointer is, and at once a stroke at that height of the paper.
void ClickAndDraw(PaperWindow& window, double y) {
    window.display.PressButton(true);
    window.display.PressButton(false);
    window.MoveOnPaper(0.3, y);
    window.display.PressButton(true);
    window.MoveOnPaper(0.6, y);
    window.display.PressButton(false);
}

}  // namespace

TEST_CASE("The first press on the picture after one on the panel draws, however soon it comes") {
    PaperWindow window;
    for (int stroke = 1; stroke <= 5; ++stroke) {
        PointAtBrushWidth(window);
        ClickAndDraw(window, 0.1 * stroke);
        WaitUntil("the stroke is recorded", [&] { return CountOf(window, "press") == stroke; });
    }
}

TEST_CASE("Colors pressed on the panel hold for the strokes that follow each of them at once") {
    PaperWindow window;
    const auto place = window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    // The fifth and the fourth color of the panel.
    constexpr std::int32_t fifth = 165;  // pixels left of the edge
    constexpr std::int32_t fourth = 201;
    for (int stroke = 1; stroke <= 4; ++stroke) {
        window.display.MovePointer(place->x + place->width - (stroke % 2 == 0 ? fifth : fourth), place->y + 118);
        ClickAndDraw(window, 0.1 * stroke);
    }
    WaitUntil("the strokes are recorded", [&] { return CountOf(window, "release") == 4; });
    std::string order;
    const nlohmann::json session = window.Recorded("run.json");
    for (const auto& event : session["events"])
        order += event.contains("set") && event["set"].contains("BrushColor") ? "s"
                 : event.contains("press")                                    ? "p"
                                                                              : "";
    CHECK_EQ(order, "spspspsp");
}

TEST_CASE("A value that is typed and left by a press on the picture takes hold before that stroke") {
    PaperWindow window;
    PointAtBrushWidth(window);
    window.display.PressButton(true);
    window.display.PressButton(false);
    window.WaitUntilStill();
    window.display.TypeText("9");
    window.WaitUntilStill();
    window.MoveOnPaper(0.3, 0.3);
    window.display.PressButton(true);
    window.MoveOnPaper(0.6, 0.3);
    window.display.PressButton(false);
    WaitUntil("the stroke is recorded", [&] { return window.FieldOf("run.json", "release") >= 0; });
    CHECK_EQ(window.ValuesSet("BrushWidth"), nlohmann::json::array({9}));
    CHECK_LT(window.FieldOf("run.json", "set"), window.FieldOf("run.json", "press"));
}

}  // namespace kel
