#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "kel/video/video_reader.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/window/kel_window.h"

namespace kel {
namespace {

using testing::KelWindow;
using testing::WaitUntil;

constexpr testing::Pixel drawnInk{255, 45, 45, 255};  // what key 3 sets

// A window on a film, which stands still and has a stroke across its middle.
class DrawnOnFilm : public KelWindow {
public:
    DrawnOnFilm(std::int32_t width, std::int32_t height, const std::vector<std::string>& more) {
        testing::WriteCountedVideo(folder / "film.mkv", 60, width, height, 25);
        std::vector<std::string> arguments = {"film.mkv", "--record", "run.json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Start(arguments);
        WaitUntil("the window is on the screen", [&] { return display.FindWindow("film.mkv - kel").has_value(); });
        WaitUntil("fields run",
                  [&] { return std::filesystem::exists(folder / "run.json") && Recorded("run.json")["fields"] > 5; });
        display.TypeKey("space");
        WaitUntil("the film is paused", [&] { return FrozenFrame() >= 0; });
        display.TypeKey("3");
        display.TypeKey("r");  // strokes stay as they are drawn
        const auto place = display.FindWindow("film.mkv - kel");
        display.MovePointer(place->x + 200, place->y + 300);
        display.PressButton(true);
        WaitUntil("the press is recorded", [&] { return FieldOf("run.json", "press") >= 0; });
        display.MovePointer(place->x + 500, place->y + 300);
        display.PressButton(false);
        WaitUntil("the release is recorded", [&] { return FieldOf("run.json", "release") >= 0; });
    }
    // Where it was made to stand still, by a key; -1: it was not yet. A late machine makes changes of its own.
    [[nodiscard]] std::int64_t FrozenFrame() const {
        const nlohmann::json session = Recorded("run.json");
        for (const auto& event : session["events"])
            if (event.contains("film") && event["film"].contains("play"))
                return event["film"]["frame"].get<std::int64_t>();
        return -1;
    }
};

bool HasInk(const picture_io::Picture& picture) {
    for (std::int32_t y = 0; y < picture.height; ++y)
        for (std::int32_t x = 0; x < picture.width; ++x)
            if (testing::Difference(picture.At(x, y), drawnInk) < 40) return true;
    return false;
}

}  // namespace

TEST_CASE("What was drawn on a film leaves with the film's own frames and rate, however long it stood still") {
    DrawnOnFilm window(320, 240, {"--out", "drawn.mov", "--overlay", "strokes.mov"});
    const std::int64_t frozen = window.FrozenFrame();
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    VideoReader drawn(window.folder / "drawn.mov");
    CHECK_EQ(drawn.FrameCount(), 60);
    CHECK_EQ(drawn.FramesPerSecond(), doctest::Approx(25));
    CHECK_EQ(drawn.Width(), 320);
    CHECK_EQ(drawn.Height(), 240);
    for (const std::int64_t frame : {std::int64_t{0}, frozen, std::int64_t{59}})
        CHECK_EQ(testing::NumberOf(drawn.ReadFrame(frame)), frame);
    VideoReader strokes(window.folder / "strokes.mov");
    CHECK_EQ(strokes.FrameCount(), 60);
    CHECK_FALSE(HasInk(strokes.ReadFrame(0)));
    CHECK(HasInk(strokes.ReadFrame(frozen)));
    CHECK(HasInk(strokes.ReadFrame(59)));
}

TEST_CASE("A film with all pauses has a frame for every field") {
    DrawnOnFilm window(320, 240, {"--out", "drawn.mov", "--timeline", "session"});
    window.display.TypeKey("q", true);
    CHECK_EQ(window.WaitForEnd(), 0);
    const VideoReader drawn(window.folder / "drawn.mov");
    CHECK_EQ(drawn.FrameCount(), window.Recorded("run.json")["fields"].get<std::int64_t>());
    CHECK_EQ(drawn.FramesPerSecond(), doctest::Approx(50));
}

TEST_CASE("Outputs that are made when the window has been closed show how far they are, and can be stopped") {
    DrawnOnFilm window(1280, 960, {"--out", "drawn.webm"});
    window.display.TypeKey("q", true);
    const auto isWriting = [&] { return window.display.FindWindow("Writing drawn.webm - kel").has_value(); };
    WaitUntil("the progress is on the screen", isWriting);
    WaitUntil("that is stopped", [&] {
        window.display.TypeKey("Escape");  // the window is seen before it has the keys
        return !isWriting();
    });
    CHECK_EQ(window.WaitForEnd(), 0);
    CHECK_FALSE(std::filesystem::exists(window.folder / "drawn.webm"));
    CHECK(std::filesystem::exists(window.folder / "run.json"));
}

}  // namespace kel
