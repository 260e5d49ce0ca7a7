#include <doctest/doctest.h>
#include <obs-frontend-api.h>

#include <utility>

#include "tests/obs/plugin/libobs_session.h"

// What OBS's own window does when the plug-in asks it to, without that window: the plug-in finds these functions here.

using namespace chalkpane::obs::testing;

namespace {

constexpr std::uint32_t windowSide = 256;  // OBS's canvas in these tests
obs_source_t* currentScene = nullptr;      // borrowed
obs_source_t* interactWindow = nullptr;    // what was opened last, shown and held as OBS's window does

void CloseWindow() {
    if (interactWindow == nullptr) return;
    obs_source_dec_showing(interactWindow);
    obs_source_release(std::exchange(interactWindow, nullptr));
    obs_wait_for_destroy_queue();
}

using Scene = std::unique_ptr<obs_scene_t, void (*)(obs_scene_t*)>;

Scene NewScene(const char* name) {
    return {obs_scene_create(name), [](obs_scene_t* scene) {
                obs_scene_release(scene);
                obs_wait_for_destroy_queue();
            }};
}

// The scene that is worked on; at its end the window closes.
class CurrentScene {
public:
    CurrentScene() { currentScene = obs_scene_get_source(m_scene.get()); }
    ~CurrentScene() {
        CloseWindow();
        currentScene = nullptr;
    }
    CurrentScene(const CurrentScene&) = delete;
    CurrentScene& operator=(const CurrentScene&) = delete;
    CurrentScene(CurrentScene&&) = delete;
    CurrentScene& operator=(CurrentScene&&) = delete;
    obs_sceneitem_t* Add(obs_source_t* source) { return obs_scene_add(m_scene.get(), source); }
    [[nodiscard]] obs_scene_t* Get() const { return m_scene.get(); }

private:
    Scene m_scene = NewScene("scene");
};

// 400 x 200 pixels, so that the canvas of 1024 is 400 wide and a brush of 20 has 8.
Source NewInk(LibobsSession& session) {
    const Settings settings = NewSettings();
    obs_data_set_bool(settings.get(), "RecoShapes", false);
    obs_data_set_int(settings.get(), "BrushWidth", 20);
    obs_data_set_int(settings.get(), "PaneWidth", 400);
    obs_data_set_int(settings.get(), "PaneHeight", 200);
    return session.Create("chalkpane_source", "ink", settings.get());
}

// The window has been seen before anybody draws in it; OBS places items where it renders them.
void OpenWindowOf(const LibobsSession& session, obs_source_t* ink) {
    obs_properties_t* properties = obs_source_properties(ink);
    obs_property_button_clicked(obs_properties_get(properties, "Draw"), ink);
    obs_properties_destroy(properties);
    REQUIRE_NE(interactWindow, nullptr);
    (void)session.Draw(interactWindow, windowSide, windowSide);
}

bool IsInk(const std::array<int, 4>& pixel) { return pixel[0] > 150 && pixel[1] > 100 && pixel[2] < 40; }
bool IsBare(const std::array<int, 4>& pixel) { return pixel == std::array{0, 0, 0, 0}; }

struct Point {
    int x = 0;
    int y = 0;
};

// A part of the way, in tenths.
Point Between(const Point& from, const Point& to, int tenths) {
    return {from.x + (to.x - from.x) * tenths / 10, from.y + (to.y - from.y) * tenths / 10};
}

void DrawLine(const Point& from, const Point& to) {
    obs_mouse_event at{0, from.x, from.y};
    obs_source_send_mouse_click(interactWindow, &at, MOUSE_LEFT, false, 1);
    for (int tenths = 1; tenths <= 10; ++tenths) {
        const Point next = Between(from, to, tenths);
        at = {0, next.x, next.y};
        obs_source_send_mouse_move(interactWindow, &at, false);
    }
    obs_source_send_mouse_click(interactWindow, &at, MOUSE_LEFT, true, 1);
}

// Draws in the window and sees the ink there, as OBS renders the scene: on the line, and nowhere beside it.
void CheckInkIsUnderThePointer(const LibobsSession& session, const Point& from, const Point& to) {
    const auto at = [&](const DrawnPicture& picture, const Point& place) {
        return picture.At(static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y));
    };
    REQUIRE_EQ(obs_source_get_width(interactWindow), windowSide);
    DrawLine(from, to);
    WaitUntil("ink where the pointer was",
              [&] { return IsInk(at(session.Draw(interactWindow, windowSide, windowSide), Between(from, to, 5))); });
    const DrawnPicture picture = session.Draw(interactWindow, windowSide, windowSide);
    const Point aside{(from.y - to.y) / 6, (to.x - from.x) / 6};  // at a right angle to the line
    for (const int tenths : {2, 5, 8}) {
        CAPTURE(tenths);
        const Point on = Between(from, to, tenths);
        CHECK(IsInk(at(picture, on)));
        CHECK(IsBare(at(picture, {on.x + aside.x, on.y + aside.y})));
        CHECK(IsBare(at(picture, {on.x - aside.x, on.y - aside.y})));
    }
}

void Place(obs_sceneitem_t* item, const vec2& position, const vec2& scale, float degrees) {
    obs_sceneitem_set_pos(item, &position);
    obs_sceneitem_set_scale(item, &scale);
    obs_sceneitem_set_rot(item, degrees);
}

vec2 Pair(float x, float y) {
    vec2 pair{};
    vec2_set(&pair, x, y);
    return pair;
}

}  // namespace

TEST_CASE("In the window over a scene ink lands under the pointer, wherever the item lies") {
    LibobsSession session(Graphics::OpenGl);
    const Source ink = NewInk(session);
    CurrentScene scene;
    constexpr obs_sceneitem_crop crop{100, 40, 20, 10};

    SUBCASE("moved, scaled and cropped") {
        obs_sceneitem_t* item = scene.Add(ink.get());
        Place(item, Pair(40, 30), Pair(0.5F, 0.75F), 0);
        obs_sceneitem_set_crop(item, &crop);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {60, 60}, {160, 120});
        // In the source's own pixels: (110 - 40) / 0.5 + 100 = 240; (90 - 30) / 0.75 + 40 = 120.
        CHECK(IsInk(session.Draw(ink.get(), 400, 200).At(240, 120)));
    }
    SUBCASE("rotated around its middle") {
        obs_sceneitem_t* item = scene.Add(ink.get());
        obs_sceneitem_set_alignment(item, OBS_ALIGN_CENTER);
        Place(item, Pair(120, 130), Pair(0.5F, 0.5F), 30);
        obs_sceneitem_set_crop(item, &crop);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {80, 110}, {160, 150});
    }
    SUBCASE("mirrored") {
        Place(scene.Add(ink.get()), Pair(220, 200), Pair(-0.5F, -0.75F), 0);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {60, 80}, {180, 140});
    }
    SUBCASE("fitted into bounds") {
        obs_sceneitem_t* item = scene.Add(ink.get());
        Place(item, Pair(20, 30), Pair(1, 1), 0);
        const vec2 bounds = Pair(200, 200);
        obs_sceneitem_set_bounds(item, &bounds);
        obs_sceneitem_set_bounds_type(item, OBS_BOUNDS_SCALE_OUTER);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {60, 60}, {180, 200});
    }
    SUBCASE("in a group that is scaled and rotated") {
        obs_sceneitem_t* item = scene.Add(ink.get());
        Place(item, Pair(30, 20), Pair(1, 1), 0);
        obs_sceneitem_set_crop(item, &crop);
        obs_sceneitem_t* group = obs_scene_add_group(scene.Get(), "group");
        obs_sceneitem_group_add_item(group, item);
        Place(group, Pair(200, 20), Pair(0.75F, 0.5F), 60);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {160, 60}, {220, 160});
    }
    SUBCASE("in a scene that is cropped and rotated in this one") {
        const Scene inner = NewScene("inner");
        Place(obs_scene_add(inner.get(), ink.get()), Pair(10, 20), Pair(0.5F, 1), 0);
        obs_sceneitem_t* item = scene.Add(obs_scene_get_source(inner.get()));
        constexpr obs_sceneitem_crop innerCrop{30, 40, 20, 10};
        obs_sceneitem_set_crop(item, &innerCrop);
        Place(item, Pair(220, 40), Pair(0.8F, 0.8F), 90);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {90, 60}, {170, 140});
    }
    SUBCASE("twice, of which it is the one that is seen") {
        Place(scene.Add(ink.get()), Pair(20, 30), Pair(0.5F, 0.5F), 0);
        obs_sceneitem_t* hidden = scene.Add(ink.get());
        Place(hidden, Pair(90, 90), Pair(0.3F, 0.3F), 0);
        obs_sceneitem_set_visible(hidden, false);
        OpenWindowOf(session, ink.get());
        CheckInkIsUnderThePointer(session, {60, 50}, {180, 110});
    }
}

TEST_CASE("A source that is in no scene has a window of its own, and one that leaves it in a stroke ends the stroke") {
    LibobsSession session(Graphics::OpenGl);
    const Source ink = NewInk(session);
    CurrentScene scene;
    OpenWindowOf(session, ink.get());
    CHECK_EQ(interactWindow, ink.get());
    CloseWindow();

    obs_sceneitem_t* item = scene.Add(ink.get());
    OpenWindowOf(session, ink.get());
    CHECK_NE(interactWindow, ink.get());
    obs_mouse_event at{0, 100, 50};
    obs_source_send_mouse_click(interactWindow, &at, MOUSE_LEFT, false, 1);
    at.x = 200;
    obs_source_send_mouse_move(interactWindow, &at, false);
    obs_sceneitem_remove(item);
    at.x = 300;
    obs_source_send_mouse_move(interactWindow, &at, false);
    obs_source_send_mouse_click(interactWindow, &at, MOUSE_LEFT, true, 1);
    WaitUntil("ink up to where it left", [&] { return IsInk(session.Draw(ink.get(), 400, 200).At(190, 50)); });
    CHECK(IsBare(session.Draw(ink.get(), 400, 200).At(250, 50)));
}

extern "C" {
bool obs_frontend_preview_program_mode_active() { return false; }
obs_source_t* obs_frontend_get_current_preview_scene() { return nullptr; }
obs_source_t* obs_frontend_get_current_scene() { return obs_source_get_ref(currentScene); }
void obs_frontend_open_source_interaction(obs_source_t* source) {
    CloseWindow();
    interactWindow = obs_source_get_ref(source);
    obs_source_inc_showing(interactWindow);
}
}
