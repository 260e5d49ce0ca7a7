#include <doctest/doctest.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <thread>

#include "telestrator/journal/journal_file.h"
#include "tests/kel/window/paper_window.h"

namespace kel {
namespace {

using testing::ink;
using testing::paper;
using testing::PaperWindow;
using testing::Pixel;
using testing::WaitUntil;

constexpr double strokeLeft = 0.2;
constexpr double strokeRight = 0.7;

void DragAlong(PaperWindow& window, double fromX, double fromY, double toX, double toY) {
    constexpr int places = 15;
    window.MoveOnPaper(fromX, fromY);
    window.display.PressButton(true);
    for (int i = 1; i <= places; ++i) {
        window.MoveOnPaper(fromX + (toX - fromX) * i / places, fromY + (toY - fromY) * i / places);
        std::this_thread::sleep_for(std::chrono::milliseconds(22));  // a hand's pace; nothing depends on it
    }
    window.display.PressButton(false);
}

void Click(PaperWindow& window, std::int32_t x, std::int32_t y) {
    window.display.MovePointer(x, y);
    window.display.PressButton(true);
    window.display.PressButton(false);
}

using Place = std::array<std::int32_t, 2>;

// The middle of what has become another picture in the panel, right of the paper and above the status line; nothing:
// all there is as it was.
std::optional<Place> ChangeInPanel(const PaperWindow& window, const picture_io::Picture& before,
                                   const picture_io::Picture& after) {
    constexpr std::int32_t status = 34;  // pixels
    const auto place = window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    Place first{after.width, after.height};
    Place last{-1, -1};
    for (std::int32_t y = place->y; y < place->y + place->height - status; ++y)
        for (std::int32_t x = window.area.x + window.area.width; x < place->x + place->width; ++x) {
            if (before.At(x, y) == after.At(x, y)) continue;
            first = {std::min(first[0], x), std::min(first[1], y)};
            last = {std::max(last[0], x), std::max(last[1], y)};
        }
    if (last[0] < first[0]) return std::nullopt;
    return Place{(first[0] + last[0]) / 2, (first[1] + last[1]) / 2};
}

// A busy machine shows late in the panel what was done.
void WaitForPanel(const PaperWindow& window, const picture_io::Picture& before) {
    WaitUntil("the panel changes", [&] { return ChangeInPanel(window, before, window.display.Screen()).has_value(); });
}
Place SettledChangeInPanel(const PaperWindow& window, const picture_io::Picture& before) {
    WaitForPanel(window, before);
    window.WaitUntilStill();
    const auto change = ChangeInPanel(window, before, window.display.Screen());
    REQUIRE(change);
    return *change;
}

// Away from the pointer and from the outline's ends.
bool IsSeen(PaperWindow& window, double y, const Pixel& colour) {
    constexpr double x = 0.3;
    const auto at = [](std::int32_t from, std::int32_t length, double share) {
        return from + static_cast<std::int32_t>(length * share);
    };
    const picture_io::Picture screen = window.display.Screen();
    return testing::Difference(
               screen.At(at(window.area.x, window.area.width, x), at(window.area.y, window.area.height, y)), colour) <=
           60;
}

// The window is killed; its recording plays to the same strokes.
void CheckPlayedAlike(PaperWindow& window, const picture_io::Picture& live) {
    window.Signal(SIGKILL);
    CHECK_EQ(window.WaitForEnd(), 128 + SIGKILL);
    CHECK_EQ(window.PlayedOverlay("run.json") == live, true);
}

std::ptrdiff_t Recolourings(const PaperWindow& window) {
    const nlohmann::json session = window.Recorded("run.json");
    return std::ranges::count_if(session["events"], [](const auto& event) { return event.contains("recolourStroke"); });
}

// A red one, and then the pointer elsewhere.
void DrawStroke(PaperWindow& window) {
    window.SetByKey("3", "BrushColor");
    DragAlong(window, strokeLeft, 0.3, strokeRight, 0.3);
    WaitUntil("the stroke is seen", [&] { return IsSeen(window, 0.3, ink); });
    window.MoveOnPaper(0.5, 0.8);
    window.WaitUntilStill();
}

}  // namespace

TEST_CASE("A stroke is drawn, chosen, dragged, deleted and brought back with a real pointer") {
    PaperWindow window;
    DrawStroke(window);

    window.display.TypeKey("c");
    DragAlong(window, 0.5, 0.3, 0.5, 0.6);
    window.display.TypeKey("c");
    WaitUntil("the stroke is seen elsewhere", [&] { return IsSeen(window, 0.6, ink) && IsSeen(window, 0.3, paper); });

    window.display.TypeKey("c");
    DragAlong(window, 0.5, 0.6, 0.5, 0.6);
    window.display.TypeKey("Delete");
    window.display.TypeKey("c");
    WaitUntil("the stroke is gone", [&] { return IsSeen(window, 0.6, paper); });

    window.display.TypeKey("z", true);
    WaitUntil("the stroke is back", [&] { return IsSeen(window, 0.6, ink); });
    CHECK(IsSeen(window, 0.3, paper));

    const picture_io::Picture live = window.SaveOverlay("paper-overlay-001.png");
    WaitUntil("all is recorded", [&] { return window.FieldOf("run.json", "undo") >= 0; });
    window.WaitForFields("undo", 5);
    CheckPlayedAlike(window, live);

    const chalkpane::ReadJournal journal = chalkpane::ReadJournalFile(window.folder / "run.journal");
    CHECK_EQ(journal.error, "");
    using chalkpane::RecordKind;
    std::vector<RecordKind> kinds;
    for (const chalkpane::JournalRecord& record : journal.records) kinds.push_back(record.kind);
    CHECK(kinds == std::vector<RecordKind>{RecordKind::Stroke, RecordKind::Move, RecordKind::Remove, RecordKind::Undo});
}

TEST_CASE("A chosen stroke takes the color of a key, and the panel's buttons take that back and bring it again") {
    PaperWindow window;
    DrawStroke(window);
    const picture_io::Picture drawing = window.display.Screen();
    window.display.TypeKey("c");
    // Choose is the third of three buttons across the panel; it is lit.
    const auto [x, y] = SettledChangeInPanel(window, drawing);
    const auto place = window.display.FindWindow("paper.png - kel");
    const std::int32_t apart = (place->x + place->width - window.area.x - window.area.width) / 3;

    DragAlong(window, 0.5, 0.3, 0.5, 0.3);
    window.display.TypeKey("6");
    constexpr Pixel green{40, 200, 80, 255};
    window.display.TypeKey("c");
    WaitUntil("the stroke is green", [&] { return IsSeen(window, 0.3, green); });
    CHECK_EQ(window.ValuesSet("BrushColor").size(), 1);  // the pen's color is what it was

    Click(window, x - 2 * apart, y);
    WaitUntil("the stroke is red again", [&] { return IsSeen(window, 0.3, ink); });
    Click(window, x - apart, y);
    WaitUntil("the stroke is green again", [&] { return IsSeen(window, 0.3, green); });

    // The fifth color of the panel, with the stroke chosen.
    window.display.TypeKey("c");
    DragAlong(window, 0.5, 0.3, 0.5, 0.3);
    constexpr Pixel blue{36, 84, 255, 255};
    Click(window, place->x + place->width - 165, place->y + 118);
    window.display.TypeKey("c");  // at once
    WaitUntil("that is recorded", [&] { return Recolourings(window) == 2; });
    WaitUntil("the stroke is blue", [&] { return IsSeen(window, 0.3, blue); });
    CHECK_EQ(window.ValuesSet("BrushColor").size(), 1);
    const picture_io::Picture live = window.SaveOverlay("paper-overlay-001.png");
    CheckPlayedAlike(window, live);
}

TEST_CASE("A drawing kept by a key is seen small in the panel, and comes back by a press there and by keys") {
    PaperWindow window;
    DrawStroke(window);
    const picture_io::Picture empty = window.display.Screen();
    window.display.TypeKey("1", true);
    const std::filesystem::path slot = window.folder / "paper-slot-1.journal";
    WaitUntil("the drawing is kept", [&] { return std::filesystem::exists(slot); });
    const auto [x, y] = SettledChangeInPanel(window, empty);
    CHECK_EQ(chalkpane::ReadJournalFile(slot).records.size(), 1);

    window.display.TypeKey("Delete");
    WaitUntil("all is cleared", [&] { return IsSeen(window, 0.3, paper); });
    DragAlong(window, strokeLeft, 0.6, strokeRight, 0.6);
    WaitUntil("another stroke is seen", [&] { return IsSeen(window, 0.6, ink); });
    Click(window, x, y);
    WaitUntil("the drawing is over it", [&] { return IsSeen(window, 0.3, ink) && IsSeen(window, 0.6, ink); });
    window.display.TypeKey("z", true);
    WaitUntil("the drawing is undone", [&] { return IsSeen(window, 0.3, paper) && IsSeen(window, 0.6, ink); });
    window.display.TypeChord({"Alt_L"}, "1");
    WaitUntil("the drawing is over it again", [&] { return IsSeen(window, 0.3, ink) && IsSeen(window, 0.6, ink); });
    window.display.TypeChord({"Shift_L", "Alt_L"}, "1");
    WaitUntil("the drawing is there alone", [&] { return IsSeen(window, 0.3, ink) && IsSeen(window, 0.6, paper); });
}

TEST_CASE("A key lets ink fade by itself in the window, undo brings it back, and the key again lets it stay") {
    PaperWindow window;
    DrawStroke(window);
    const picture_io::Picture stays = window.display.Screen();
    window.display.TypeKey("v");
    WaitUntil("fading is recorded", [&] { return window.FieldOf("run.json", "fade") >= 0; });
    // The switch and the time beside it are lit in the panel.
    WaitForPanel(window, stays);
    WaitUntil("the ink is all but gone", [&] { return IsSeen(window, 0.3, paper); });
    window.WaitUntilStill();
    window.display.TypeKey("z", true);
    WaitUntil("the ink is back", [&] { return IsSeen(window, 0.3, ink); });
    window.display.TypeKey("v");
    WaitUntil("fading is off", [&] {
        const nlohmann::json session = window.Recorded("run.json");
        return std::ranges::any_of(session["events"],
                                   [](const auto& event) { return event.contains("fade") && event["fade"] == false; });
    });
    // Longer than the three seconds of the wait and the one of fading.
    std::this_thread::sleep_for(std::chrono::milliseconds(4500));
    CHECK(IsSeen(window, 0.3, ink));
}

}  // namespace kel
