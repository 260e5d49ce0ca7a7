#include <doctest/doctest.h>
#include <signal.h>

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

constexpr double left = 0.2;
constexpr double right = 0.7;

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

}  // namespace

TEST_CASE("A stroke is drawn, chosen, dragged, deleted and brought back with a real pointer") {
    PaperWindow window;
    window.SetByKey("3", "BrushColor");
    DragAlong(window, left, 0.3, right, 0.3);
    WaitUntil("the stroke is seen", [&] { return IsSeen(window, 0.3, ink); });

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
    window.Signal(SIGKILL);
    CHECK_EQ(window.WaitForEnd(), 128 + SIGKILL);
    CHECK_EQ(window.PlayedOverlay("run.json") == live, true);

    const chalkpane::ReadJournal journal = chalkpane::ReadJournalFile(window.folder / "run.journal");
    CHECK_EQ(journal.error, "");
    using chalkpane::RecordKind;
    std::vector<RecordKind> kinds;
    for (const chalkpane::JournalRecord& record : journal.records) kinds.push_back(record.kind);
    CHECK(kinds == std::vector<RecordKind>{RecordKind::Stroke, RecordKind::Move, RecordKind::Remove, RecordKind::Undo});
}

}  // namespace kel
