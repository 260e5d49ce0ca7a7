#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "tests/kel/window/paper_window.h"

namespace kel {
namespace {

using testing::PaperWindow;
using testing::WaitUntil;

// A window on any port that is free, and the client that finds it there.
class ControlledWindow : public PaperWindow {
public:
    explicit ControlledWindow() : PaperWindow({"--control", "0"}) {
        const std::filesystem::path state = folder / "state/kel";
        constexpr std::string_view prefix = "control-";
        WaitUntil("the window keeps its token", [&] {
            for (const auto& entry : std::filesystem::directory_iterator(state))
                if (const std::string name = entry.path().filename().string(); name.starts_with(prefix))
                    m_port = name.substr(prefix.size());
            return !m_port.empty();
        });
    }

    // What `kel control` prints; the last line is its exit code.
    std::string Control(const std::string& command) {
        const std::string line = "XDG_STATE_HOME='" + (folder / "state").string() + "' '" KEL_PROGRAM "' control " +
                                 m_port + " " + command + " > '" + (folder / "said").string() + "' 2>&1; echo $? >> '" +
                                 (folder / "said").string() + "'";
        REQUIRE_EQ(std::system(line.c_str()), 0);
        return cli::testing::ReadText(folder / "said");
    }

private:
    std::string m_port;
};

}  // namespace

TEST_CASE("kel control sets a color, pushes a button, presses a key and quits, as the hand does") {
    ControlledWindow window;
    CHECK_EQ(window.Control("'set BrushColor #00ff00'"), "0\n");
    CHECK_EQ(window.Control("'get BrushColor'"), "#00ff00ff\n0\n");
    WaitUntil("the color is recorded", [&] { return window.ValuesSet("BrushColor").size() == 1; });
    CHECK_EQ(window.ValuesSet("BrushColor")[0], "#00ff00ff");

    window.MoveOnPaper(0.3, 0.5);
    window.display.PressButton(true);
    WaitUntil("the press is recorded", [&] { return window.FieldOf("run.json", "press") >= 0; });
    window.MoveOnPaper(0.7, 0.5);
    window.display.PressButton(false);
    WaitUntil("the release is recorded", [&] { return window.FieldOf("run.json", "release") >= 0; });
    const auto middle = [&] {
        return window.display.Screen().At(window.area.x + window.area.width / 2,
                                          window.area.y + window.area.height / 2);
    };
    const testing::Pixel green{0, 255, 0, 255};
    WaitUntil("the line is green", [&] { return testing::Difference(middle(), green) < 60; });
    CHECK_EQ(window.Control("'button Clear'"), "0\n");
    WaitUntil("the line is gone", [&] { return testing::Difference(middle(), testing::paper) < 10; });
    CHECK_EQ(window.Control("'key 3' 'get BrushColor'"), "#ff2d2dff\n0\n");

    CHECK_EQ(window.Control("'set BrushColr #00ff00'"),
             "kel: there is no parameter \"BrushColr\"; did you mean \"BrushColor\"?\n2\n");
    CHECK_EQ(window.Control("quit"), "0\n");
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_GE(window.FieldOf("run.json", "button"), 0);
}

}  // namespace kel
