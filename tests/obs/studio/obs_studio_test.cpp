#include "tests/obs/studio/obs_studio.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "picture_io/picture.h"
#include "telestrator/journal/journal_file.h"

using namespace chalkpane::obs::testing;
using kel::testing::WindowPlace;

namespace {

constexpr int side = chalkpane::canvasSize;

// The canvas that the text of a journal leaves: premultiplied, the lowest row first.
std::vector<std::byte> CanvasOf(const std::string& journal) {
    const auto read = chalkpane::ParseJournal(journal);
    REQUIRE_EQ(read.error, "");
    chalkpane::JournaledTelestrator telestrator;
    telestrator.Field({});
    REQUIRE_EQ(Follow(telestrator, read.records), "");
    const chalkpane::CanvasPixels pixels = telestrator.Inner().canvasSurface->GetPixels();
    return {pixels.bytes, pixels.bytes + pixels.byteSize};
}

// What of the picture lies under it is covered, premultiplied over.
void CoverWith(const std::vector<std::byte>& canvas, std::vector<double>& picture) {
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const std::byte* ink =
                &canvas[(static_cast<std::size_t>(side - 1 - y) * side + static_cast<std::size_t>(x)) * 4];
            for (std::size_t channel = 0; channel < 3; ++channel) {
                double& under =
                    picture[(static_cast<std::size_t>(y) * side + static_cast<std::size_t>(x)) * 3 + channel];
                under = std::to_integer<int>(ink[channel]) + under * (255 - std::to_integer<int>(ink[3])) / 255;
            }
        }
}

// As ffmpeg decodes it, while OBS goes on writing.
picture_io::Picture FirstFrame(const std::filesystem::path& recording) {
    const std::string picture = recording.string() + ".png";
    const std::string command =
        "ffmpeg -v fatal -nostdin -i '" + recording.string() + "' -an -frames:v 1 '" + picture + "'";
    REQUIRE_EQ(std::system(command.c_str()), 0);
    return picture_io::ReadPicture(picture);
}

int HalfCovered(const std::vector<std::byte>& canvas) {
    int count = 0;
    for (std::size_t i = 3; i < canvas.size(); i += 4) {
        const int alpha = std::to_integer<int>(canvas[i]);
        if (alpha > 50 && alpha < 200) ++count;
    }
    return count;
}

// A line through the middle of the window, so many pixels to both sides; the pointer stays pressed.
void DrawFromLeft(ObsStudio& obs, const WindowPlace& window, int right, int down) {
    const int x = window.x + window.width / 2;
    const int y = window.y + window.height / 2;
    obs.display.MovePointer(x - right, y - down);
    obs.display.PressButton(true);
    for (int step = -9; step <= 10; ++step) obs.display.MovePointer(x + right * step / 10, y + down * step / 10);
}

const nlohmann::json& Named(const nlohmann::json& list, const std::string& name) {
    const auto found = std::ranges::find_if(list, [&](const nlohmann::json& each) { return each["name"] == name; });
    REQUIRE_MESSAGE(found != list.end(), name);
    return *found;
}

// Of a pixel of the source, counted from the top.
int AlphaAt(const std::vector<std::byte>& canvas, int x, int y) {
    return std::to_integer<int>(
        canvas[(static_cast<std::size_t>(side - 1 - y) * side + static_cast<std::size_t>(x)) * 4 + 3]);
}

// Moves, scales and crops the item, opens the window over the whole scene, and draws through its middle. Returns all of
// the item's ink.
std::string DrawOverTheMovedItem(ObsStudio& obs) {
    const nlohmann::json item = obs.Ask("GetSceneItemId", {{"sceneName", "Scene"}, {"sourceName", "Ink"}});
    REQUIRE_FALSE(item.is_null());
    const nlohmann::json transform = {{"positionX", 300}, {"positionY", 200}, {"scaleX", 0.5},
                                      {"scaleY", 0.75},   {"cropLeft", 100},  {"cropTop", 50}};
    REQUIRE_FALSE(
        obs.Ask("SetSceneItemTransform",
                {{"sceneName", "Scene"}, {"sceneItemId", item["sceneItemId"]}, {"sceneItemTransform", transform}})
            .is_null());
    obs.WaitForFrames(3);
    REQUIRE_FALSE(obs.Ask("PressInputPropertiesButton", {{"inputName", "Ink"}, {"propertyName", "Draw"}}).is_null());
    DrawFromLeft(obs, obs.InteractWindow("Scene"), 60, 20);
    obs.display.PressButton(false);
    obs.CloseInteractWindow("Scene");
    obs.WaitForFrames(3);
    return Named(obs.Save()["sources"], "Ink")["settings"]["ChalkpaneInk"];
}

}  // namespace

TEST_CASE("In OBS Studio a real pointer draws on a source and through a filter, as its lossless recording shows") {
    ObsStudio obs;
    const nlohmann::json pen = {{"RecoShapes", false}, {"BrushWidth", 20}};
    const nlohmann::json gray = {{"color", 0xFF806040U}, {"width", side}, {"height", side}};  // red lowest
    REQUIRE_FALSE(obs.Ask("CreateInput", {{"sceneName", "Scene"},
                                          {"inputName", "Under"},
                                          {"inputKind", "color_source_v3"},
                                          {"inputSettings", gray}})
                      .is_null());
    REQUIRE_FALSE(obs.Ask("CreateSourceFilter", {{"sourceName", "Under"},
                                                 {"filterName", "Ink on it"},
                                                 {"filterKind", "chalkpane_filter"},
                                                 {"filterSettings", pen}})
                      .is_null());

    // A filter has its window by its hotkey, which is there once it has been put on.
    WaitUntil("the filter's hotkey", [&] {
        return !obs.Ask("TriggerHotkeyByName", {{"hotkeyName", "chalkpane.button.Draw"}}).is_null();
    });
    DrawFromLeft(obs, obs.InteractWindow("Under"), 60, 120);
    obs.display.PressButton(false);
    obs.CloseInteractWindow("Under");

    REQUIRE_FALSE(obs.Ask("CreateInput", {{"sceneName", "Scene"},
                                          {"inputName", "Ink"},
                                          {"inputKind", "chalkpane_source"},
                                          {"inputSettings", pen}})
                      .is_null());
    REQUIRE_FALSE(obs.Ask("OpenInputInteractDialog", {{"inputName", "Ink"}}).is_null());
    DrawFromLeft(obs, obs.InteractWindow("Ink"), 150, 20);
    obs.display.PressButton(false);
    obs.CloseInteractWindow("Ink");
    obs.WaitForFrames(3);
    const nlohmann::json sources = obs.Save()["sources"];
    const picture_io::Picture shown = FirstFrame(obs.Record());
    const std::string inkText = Named(sources, "Ink")["settings"]["ChalkpaneInk"];
    const auto inkOfFilter =
        CanvasOf(Named(Named(sources, "Under")["filters"], "Ink on it")["settings"]["ChalkpaneInk"]);
    const auto ink = CanvasOf(inkText);
    CHECK(HalfCovered(inkOfFilter) > 500);
    CHECK(HalfCovered(ink) > 500);

    REQUIRE_EQ(shown.width, side);
    REQUIRE_EQ(shown.height, side);
    std::vector<double> expected;
    for (int i = 0; i < side * side; ++i) expected.insert(expected.end(), {0x40, 0x60, 0x80});
    CoverWith(inkOfFilter, expected);
    CoverWith(ink, expected);
    double furthest = 0;
    for (std::size_t pixel = 0; pixel < expected.size() / 3; ++pixel)
        for (std::size_t channel = 0; channel < 3; ++channel)
            furthest = std::max(furthest, std::abs(expected[pixel * 3 + channel] - shown.rgba[pixel * 4 + channel]));
    CHECK(furthest <= 1);

    obs.BeginAgain();
    const std::string inScene = DrawOverTheMovedItem(obs);
    CHECK(inScene.starts_with(inkText));
    // Where the middle of the scene is in the item: (512 - 300) / 0.5 + 100 = 524, (512 - 200) / 0.75 + 50 = 466.
    CHECK(AlphaAt(ink, 524, 466) == 0);
    CHECK(AlphaAt(CanvasOf(inScene), 524, 466) > 200);

    // OBS is closed in a stroke.
    const std::string before = obs.Screenshot("Ink");
    REQUIRE_FALSE(obs.Ask("OpenInputInteractDialog", {{"inputName", "Ink"}}).is_null());
    DrawFromLeft(obs, obs.InteractWindow("Ink"), 150, -100);
    WaitUntil("ink of the stroke", [&] { return obs.Screenshot("Ink") != before; });
    const std::string after = Named(obs.Close()["sources"], "Ink")["settings"]["ChalkpaneInk"];
    CHECK(after.starts_with(inScene));
    CHECK_EQ(chalkpane::ParseJournal(after).records.size(), chalkpane::ParseJournal(inScene).records.size() + 1);
    const std::string log = obs.Log();
    CHECK_NE(log.find("[chalkpane] loaded"), std::string::npos);
    CHECK_NE(log.find("Number of memory leaks: 0"), std::string::npos);
}
