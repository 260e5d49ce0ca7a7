#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

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

}  // namespace

TEST_CASE("The first press on the picture after one on the panel draws, however soon it comes") {
    PaperWindow window;
    for (int stroke = 1; stroke <= 5; ++stroke) {
        PointAtBrushWidth(window);
        window.display.PressButton(true);
        window.display.PressButton(false);
        window.MoveOnPaper(0.3, 0.1 * stroke);
        window.display.PressButton(true);
        window.MoveOnPaper(0.6, 0.1 * stroke);
        window.display.PressButton(false);
        WaitUntil("the stroke is recorded", [&] {
            int presses = 0;
            const nlohmann::json session = window.Recorded("run.json");
            for (const auto& event : session["events"]) presses += event.contains("press") ? 1 : 0;
            return presses == stroke;
        });
    }
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
