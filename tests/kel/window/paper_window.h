#pragma once

#include <string>
#include <vector>

#include "kel/workspace/picture_area.h"
#include "tests/kel/pixels.h"
#include "tests/kel/window/kel_window.h"

namespace kel::testing {

constexpr Pixel paper{70, 90, 110, 255};
constexpr Pixel ink{255, 45, 45, 255};  // what key 3 sets

// The picture's place on the screen: all that has its colour, with what is drawn inside it.
[[nodiscard]] PictureArea FindPaper(const picture_io::Picture& screen);

struct ScreenPlace {
    std::int32_t x = 0;  // pixels
    std::int32_t y = 0;
};

// A window on a plain sheet of paper, recorded into run.json.
class PaperWindow : public KelWindow {
public:
    explicit PaperWindow(const std::vector<std::string>& more = {}, const std::vector<std::string>& server = {});

    // Of the screen, from shares of the paper's width and height.
    [[nodiscard]] ScreenPlace OnPaper(double x, double y) const;
    void MoveOnPaper(double x, double y);
    // The window has come to know a key by then.
    void SetByKey(const std::string& key, const std::string& parameter);
    // How many fields have passed since that happened last.
    void WaitForFields(const std::string& since, std::int64_t fields) const;
    // Until it has shown all that was done to it.
    void WaitUntilStill() const;
    [[nodiscard]] nlohmann::json ValuesSet(const std::string& parameter) const;
    [[nodiscard]] picture_io::Picture SaveOverlay(const std::string& name);

    PictureArea area;
};

}  // namespace kel::testing
