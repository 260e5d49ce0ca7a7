#include "tests/kel/window/paper_window.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>

namespace kel::testing {

PictureArea FindPaper(const picture_io::Picture& screen) {
    std::int32_t left = screen.width;
    std::int32_t top = screen.height;
    std::int32_t right = -1;
    std::int32_t bottom = -1;
    for (std::int32_t y = 0; y < screen.height; ++y)
        for (std::int32_t x = 0; x < screen.width; ++x) {
            if (Difference(screen.At(x, y), paper) > 2) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    return {left, top, right - left + 1, bottom - top + 1};
}

PaperWindow::PaperWindow(const std::vector<std::string>& more, const std::vector<std::string>& server)
    : KelWindow({}, server) {
    picture_io::WritePicture(Plain(1200, 900, paper), folder / "paper.png");
    std::vector<std::string> arguments = {"paper.png", "--record", "run.json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    Start(arguments);
    WaitUntil("the window is on the screen", [&] { return display.FindWindow("paper.png - kel").has_value(); });
    // The window comes to the middle of the screen, with room for the whole picture, pixel by pixel.
    WaitUntil("the window shows the picture", [&] {
        const auto scene = Recorded("run.json")["window"];
        const auto place = display.FindWindow("paper.png - kel");
        const picture_io::Picture screen = display.Screen();
        area = FindPaper(screen);
        const bool isInTheMiddle = place && place->x == (screen.width - place->width) / 2 && area.x == place->x;
        return isInTheMiddle && area.width == scene["width"] && area.height == scene["height"];
    });
    SetByKey("r", "RecoShapes");  // strokes stay as they are drawn
}

ScreenPlace PaperWindow::OnPaper(double x, double y) const {
    return {area.x + static_cast<std::int32_t>(std::lround(x * area.width)),
            area.y + static_cast<std::int32_t>(std::lround(y * area.height))};
}

void PaperWindow::MoveOnPaper(double x, double y) {
    const ScreenPlace at = OnPaper(x, y);
    display.MovePointer(at.x, at.y);
}

void PaperWindow::SetByKey(const std::string& key, const std::string& parameter) {
    const std::size_t before = ValuesSet(parameter).size();
    display.TypeKey(key);
    WaitUntil(key + " sets " + parameter, [&] { return ValuesSet(parameter).size() > before; });
}

void PaperWindow::WaitForFields(const std::string& since, std::int64_t fields) const {
    WaitUntil("fields after a " + since, [&] {
        const std::int64_t field = FieldOf("run.json", since);
        return field >= 0 && Recorded("run.json")["fields"].get<std::int64_t>() >= field + fields;
    });
}

// What is done to it shows, if only as the value of a slider or the lit field that is typed into; the figures in the
// status line below change by themselves.
void PaperWindow::WaitUntilStill() const {
    constexpr int looks = 5;  // a cursor in a text blinks at half a second
    int alike = 0;
    std::optional<picture_io::Picture> before;
    WaitUntil("the window stands still", [&] {
        picture_io::Picture screen = display.Screen();
        const auto place = display.FindWindow("paper.png - kel");
        if (!place) return false;
        const std::int32_t statusTop = place->y + place->height - 34;
        for (std::int32_t y = statusTop; y < place->y + place->height; ++y)
            for (std::int32_t x = 0; x < screen.width; ++x) screen.Set(x, y, {});
        alike = before && screen == *before ? alike + 1 : 0;
        before = std::move(screen);
        return alike >= looks;
    });
}

nlohmann::json PaperWindow::ValuesSet(const std::string& parameter) const {
    auto values = nlohmann::json::array();
    const nlohmann::json session = Recorded("run.json");
    for (const auto& event : session["events"])
        if (event.contains("set") && event["set"].contains(parameter)) values.push_back(event["set"][parameter]);
    return values;
}

picture_io::Picture PaperWindow::SaveOverlay(const std::string& name) {
    display.TypeKey("o");
    WaitUntil("the overlay is saved", [&] { return std::filesystem::exists(folder / name); });
    return picture_io::ReadPicture(folder / name);
}

}  // namespace kel::testing
