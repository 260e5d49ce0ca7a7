#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "telestrator/journal/journal_file.h"
#include "tests/kel/window/input_devices.h"
#include "tests/kel/window/paper_window.h"

// A finger and a pen, by drivers of a real X server.

namespace kel {
namespace {

using testing::InputDevices;
using testing::PaperWindow;
using testing::ScreenPlace;
using testing::WaitUntil;
using Finger = InputDevices::Finger;
using PenEnd = InputDevices::PenEnd;

// False: it is said why not.
bool CanTouch() {
    const char* ci = std::getenv("CI");
    if (InputDevices::IsPossible() || (ci != nullptr && std::string(ci) == "true")) return true;
    MESSAGE("skipped: there is no Xorg here (apt-get install xserver-xorg-core xserver-xorg-video-dummy)");
    return false;
}

class TouchedPaper {
public:
    TouchedPaper() {
        devices.Connect();
        window.SetByKey("3", "BrushColor");
    }
    void Touch(std::uint32_t finger, Finger does, double x, double y) {
        const ScreenPlace at = window.OnPaper(x, y);
        devices.Touch(finger, does, at.x, at.y);
    }
    void MovePen(PenEnd end, double x, double y, double pressure) {
        const ScreenPlace at = window.OnPaper(x, y);
        devices.MovePen(end, at.x, at.y, pressure);
    }
    [[nodiscard]] bool IsSeen(double x, double y, const testing::Pixel& colour) const {
        const ScreenPlace at = window.OnPaper(x, y);
        return testing::Difference(window.display.Screen().At(at.x, at.y), colour) < 60;
    }
    // How many of the recording's events are of this kind.
    [[nodiscard]] std::ptrdiff_t Events(const std::string& key) const {
        const nlohmann::json session = window.Recorded("run.json");
        return std::ranges::count_if(session["events"], [&](const auto& event) { return event.contains(key); });
    }
    [[nodiscard]] bool IsRecorded(const std::string& key, double pressure) const {
        const nlohmann::json session = window.Recorded("run.json");
        return std::ranges::any_of(session["events"], [&](const auto& event) {
            return event.contains(key) && event.value("pressure", 1.0) == pressure;
        });
    }

    InputDevices devices;
    PaperWindow window{{}, devices.Server()};
};

}  // namespace

TEST_CASE("A finger works the panel and draws on a touch screen, and a second one meanwhile is nothing") {
    if (!CanTouch()) return;
    TouchedPaper paper;
    const auto place = paper.window.display.FindWindow("paper.png - kel");
    REQUIRE(place);
    const ScreenPlace sixth{place->x + place->width - 129, place->y + 118};  // color of the panel
    for (const Finger does : {Finger::Down, Finger::Up}) paper.devices.Touch(1, does, sixth.x, sixth.y);
    WaitUntil("the color is set", [&] { return paper.window.ValuesSet("BrushColor").size() == 2; });
    paper.window.SetByKey("3", "BrushColor");
    paper.Touch(1, Finger::Down, 0.2, 0.3);
    WaitUntil("the finger is recorded", [&] { return paper.Events("press") == 1; });
    for (int i = 1; i <= 5; ++i) paper.Touch(1, Finger::Moves, 0.2 + 0.05 * i, 0.3);
    paper.Touch(2, Finger::Down, 0.4, 0.8);
    for (int i = 1; i <= 5; ++i) {
        paper.Touch(2, Finger::Moves, 0.4 + 0.05 * i, 0.8);
        paper.Touch(1, Finger::Moves, 0.45 + 0.05 * i, 0.3);
    }
    paper.Touch(2, Finger::Up, 0.65, 0.8);
    paper.Touch(1, Finger::Up, 0.7, 0.3);
    WaitUntil("the stroke has ended", [&] { return paper.Events("release") == 1; });
    WaitUntil("ink is seen",
              [&] { return paper.IsSeen(0.3, 0.3, testing::ink) && paper.IsSeen(0.6, 0.3, testing::ink); });
    CHECK(paper.IsSeen(0.55, 0.8, testing::paper));
    CHECK_EQ(paper.Events("press"), 1);
}

TEST_CASE("A pen's pressure is in recording and journal, and its other end erases") {
    if (!CanTouch()) return;
    TouchedPaper paper;
    paper.MovePen(PenEnd::Tip, 0.2, 0.5, 0.3);
    paper.devices.PressPen(PenEnd::Tip, true);
    WaitUntil("the press is recorded", [&] { return paper.IsRecorded("press", 0.3); });
    for (int i = 1; i <= 10; ++i) paper.MovePen(PenEnd::Tip, 0.2 + 0.05 * i, 0.5, 0.8);
    WaitUntil("the moves are recorded", [&] { return paper.IsRecorded("move", 0.8); });
    paper.devices.PressPen(PenEnd::Tip, false);
    WaitUntil("ink is seen", [&] { return paper.IsSeen(0.45, 0.5, testing::ink) && paper.Events("release") == 1; });

    paper.MovePen(PenEnd::Eraser, 0.45, 0.4, 1);
    paper.devices.PressPen(PenEnd::Eraser, true);
    for (int i = 1; i <= 10; ++i) paper.MovePen(PenEnd::Eraser, 0.45, 0.4 + 0.02 * i, 1);
    paper.devices.PressPen(PenEnd::Eraser, false);
    WaitUntil("ink is erased", [&] { return paper.IsSeen(0.45, 0.5, testing::paper); });
    CHECK(paper.IsSeen(0.3, 0.5, testing::ink));

    paper.window.display.TypeKey("q", true);
    CHECK_EQ(paper.window.WaitForEnd(), 0);
    const chalkpane::ReadJournal journal = chalkpane::ReadJournalFile(paper.window.folder / "run.journal");
    REQUIRE_FALSE(journal.records.empty());
    REQUIRE_EQ(journal.records[0].strokes.size(), 1U);
    const auto& hand = journal.records[0].strokes[0]->hand;
    REQUIRE_FALSE(hand.empty());
    CHECK_EQ(hand.front().pressure, 0.3);
    CHECK_EQ(hand.back().pressure, 0.8);
}

}  // namespace kel
