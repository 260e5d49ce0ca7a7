#include <doctest/doctest.h>

#include <cmath>

#include "tests/obs/plugin/libobs_session.h"

using namespace chalkpane::obs::testing;

namespace {

constexpr const char* sourceId = "chalkpane_source";
constexpr const char* filterId = "chalkpane_filter";

// Strokes that stay as they are drawn, on a source of a canvas's pixels.
Settings PlainSettings(int side = 1024) {
    Settings settings = NewSettings();
    obs_data_set_bool(settings.get(), "RecoShapes", false);
    obs_data_set_int(settings.get(), "BrushWidth", 20);
    obs_data_set_int(settings.get(), "PaneWidth", side);
    obs_data_set_int(settings.get(), "PaneHeight", side);
    return settings;
}

void Press(obs_source_t* source, int x, int y) {
    const obs_mouse_event at{0, x, y};
    obs_source_send_mouse_click(source, &at, MOUSE_LEFT, false, 1);
}
void Move(obs_source_t* source, int x, int y) {
    const obs_mouse_event at{0, x, y};
    obs_source_send_mouse_move(source, &at, false);
}
void Release(obs_source_t* source, int x, int y) {
    const obs_mouse_event at{0, x, y};
    obs_source_send_mouse_click(source, &at, MOUSE_LEFT, true, 1);
}
void Line(obs_source_t* source, int x0, int y0, int x1, int y1) {
    Press(source, x0, y0);
    for (int part = 1; part < 4; ++part) Move(source, x0 + (x1 - x0) * part / 4, y0 + (y1 - y0) * part / 4);
    Release(source, x1, y1);
}

// Most of a line from left to right, whose end is still to come.
void BeginLine(obs_source_t* source, int x0, int x1, int y) {
    Press(source, x0, y);
    for (int part = 1; part <= 4; ++part) Move(source, x0 + (x1 - x0) * part / 4, y);
}

bool IsYellow(const std::array<int, 4>& pixel) { return pixel[0] > 230 && pixel[1] > 190 && pixel[2] < 20; }

void WaitForYellow(const LibobsSession& session, obs_source_t* source, std::uint32_t side, std::uint32_t x,
                   std::uint32_t y) {
    WaitUntil("ink in the texture", [&] { return IsYellow(session.Draw(source, side, side).At(x, y)); });
}

}  // namespace

TEST_CASE("Without OpenGL the plug-in loads and says so, and ink is kept") {
    const LibobsSession session(Graphics::Missing);
    CHECK_NE(TakeLog().find("but OBS has no OpenGL: what is drawn is kept and saved, and not seen"), std::string::npos);
    obs_source_t* source = obs_source_create(sourceId, "ink", PlainSettings().get(), nullptr);
    REQUIRE_NE(source, nullptr);
    Line(source, 100, 100, 300, 100);
    obs_data_t* saved = obs_save_source(source);
    obs_data_t* settings = obs_data_get_obj(saved, "settings");
    const std::string ink = obs_data_get_string(settings, "ChalkpaneInk");
    CHECK_EQ(ink.find("chalkpane-journal 1\n"), 0);
    CHECK_NE(ink.find("stroke 1"), std::string::npos);
    obs_data_release(settings);
    obs_data_release(saved);
    obs_source_release(source);
}

TEST_CASE("In OBS's library") {
    LibobsSession session(Graphics::OpenGl);
    CHECK_NE(TakeLog().find("[chalkpane] loaded, version"), std::string::npos);

    SUBCASE("a stroke is drawn premultiplied, and over a color as premultiplied over") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        Line(source.get(), 100, 200, 900, 200);
        WaitForYellow(session, source.get(), 1024, 500, 200);
        const DrawnPicture alone = session.Draw(source.get(), 1024, 1024);
        // Gray of a half: 0.5 of 255 is kept as 128 (127.5, to the nearest even).
        const DrawnPicture over = session.Draw(source.get(), 1024, 1024, {0.5F, 0.5F, 0.5F, 1});
        int half = 0;
        int furthest = 0;
        for (std::uint32_t y = 150; y < 250; ++y)
            for (std::uint32_t x = 60; x < 940; ++x) {
                const auto ink = alone.At(x, y);
                const auto seen = over.At(x, y);
                if (ink[3] > 50 && ink[3] < 200) ++half;
                const int under = over.At(10, 10)[0];
                for (std::size_t i = 0; i < 3; ++i)
                    furthest = std::max(
                        furthest,
                        std::abs(seen[i] - static_cast<int>(std::lround(ink[i] + under * (255 - ink[3]) / 255.0))));
            }
        CHECK(half > 500);
        CHECK(furthest <= 1);
        CHECK_EQ(alone.At(500, 800), std::array<int, 4>{});
        CHECK_EQ(alone.At(500, 820), std::array<int, 4>{});  // where it would be upside down
    }

    SUBCASE("a filter draws over its source, in that source's pixels, the ink that it was saved with") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        Line(source.get(), 80, 240, 920, 240);
        obs_data_t* saved = obs_save_source(source.get());
        obs_data_t* settings = obs_data_get_obj(saved, "settings");
        const Settings blue = NewSettings();
        obs_data_set_int(blue.get(), "color", 0xFFFF0000LL);
        const Source under = session.Create("plain_color", "blue", blue.get());
        obs_source_t* filter = obs_source_create(filterId, "ink on it", settings, nullptr);
        obs_source_filter_add(under.get(), filter);
        WaitForYellow(session, under.get(), 256, 128, 60);  // a quarter of the canvas's pixels
        CHECK_EQ(session.Draw(under.get(), 256, 256).At(128, 128), std::array{0, 0, 255, 255});
        obs_source_filter_remove(under.get(), filter);
        obs_source_release(filter);
        obs_data_release(settings);
        obs_data_release(saved);
    }

    SUBCASE("where OBS renders in linear light, ink has that of its color") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        Line(source.get(), 100, 200, 900, 200);
        WaitForYellow(session, source.get(), 1024, 500, 200);
        const auto ink = session.Draw(source.get(), 1024, 1024).At(500, 200);
        const auto light = session.DrawLinear(source.get(), 1024, 1024, 500, 200);
        const double alpha = ink[3] / 255.0;
        CHECK_EQ(light[3], doctest::Approx(alpha).epsilon(0.002));
        // 214 of 255 is 0.8392, whose light is ((0.8392 + 0.055) / 1.055) ^ 2.4 = 0.6724; half floats have 11 bits.
        CHECK_EQ(light[0], doctest::Approx(alpha).epsilon(0.01));
        CHECK_EQ(light[1], doctest::Approx(0.6724 * alpha).epsilon(0.01));
    }

    SUBCASE("two sources have ink of their own, and one that is removed in a stroke leaves the other") {
        const Source left = session.Create(sourceId, "left", PlainSettings().get());
        Source right = session.Create(sourceId, "right", PlainSettings().get());
        BeginLine(right.get(), 100, 300, 800);
        Line(left.get(), 100, 200, 900, 200);
        right.reset();
        WaitForYellow(session, left.get(), 1024, 500, 200);
        CHECK_EQ(session.Draw(left.get(), 1024, 1024).At(200, 800), std::array<int, 4>{});
    }

    SUBCASE("what is hidden while one draws has all of its ink when it is shown again") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        BeginLine(source.get(), 100, 300, 200);
        WaitForYellow(session, source.get(), 1024, 150, 200);
        obs_source_dec_showing(source.get());
        Move(source.get(), 500, 200);
        Move(source.get(), 700, 200);
        Release(source.get(), 900, 200);
        session.WaitForFrames(2);
        obs_source_inc_showing(source.get());
        WaitForYellow(session, source.get(), 1024, 800, 200);
    }

    SUBCASE("a source takes another size in a stroke, and its ink with it") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        BeginLine(source.get(), 100, 400, 200);
        WaitForYellow(session, source.get(), 1024, 200, 200);
        obs_source_update(source.get(), PlainSettings(512).get());
        WaitUntil("the new size", [&] { return obs_source_get_width(source.get()) == 512; });
        session.WaitForFrames(2);
        Move(source.get(), 300, 100);
        Release(source.get(), 450, 100);
        WaitForYellow(session, source.get(), 512, 100, 100);
        WaitForYellow(session, source.get(), 512, 350, 100);
    }

    SUBCASE("a saved stroke that was not finished comes back up to the pen, and hotkeys undo it") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        BeginLine(source.get(), 100, 600, 200);
        obs_data_t* saved = obs_save_source(source.get());
        obs_data_set_string(saved, "name", "later");
        obs_source_t* loaded = obs_load_source(saved);
        obs_data_release(saved);
        REQUIRE_NE(loaded, nullptr);
        obs_source_inc_showing(loaded);
        WaitForYellow(session, loaded, 1024, 400, 200);
        struct Sought {
            obs_source_t* source;
            std::string name;
            obs_hotkey_id id = OBS_INVALID_HOTKEY_ID;
            int count = 0;
        } sought{loaded, "chalkpane.button.Undo"};
        obs_enum_hotkeys(
            [](void* data, obs_hotkey_id id, obs_hotkey_t* hotkey) {
                auto& wanted = *static_cast<Sought*>(data);
                if (obs_hotkey_get_registerer_type(hotkey) != OBS_HOTKEY_REGISTERER_SOURCE) return true;
                auto* weak = static_cast<obs_weak_source_t*>(obs_hotkey_get_registerer(hotkey));
                if (!obs_weak_source_references_source(weak, wanted.source)) return true;
                ++wanted.count;
                if (wanted.name == obs_hotkey_get_name(hotkey)) wanted.id = id;
                return true;
            },
            &sought);
        CHECK(sought.count > 15);
        REQUIRE_NE(sought.id, OBS_INVALID_HOTKEY_ID);
        obs_hotkey_enable_callback_rerouting(true);  // as OBS's window does, which then calls on its own thread
        obs_hotkey_trigger_routed_callback(sought.id, true);
        WaitUntil("the stroke taken back",
                  [&] { return session.Draw(loaded, 1024, 1024).At(400, 200) == std::array<int, 4>{}; });
        obs_source_dec_showing(loaded);
        obs_source_release(loaded);
    }

    SUBCASE("the properties are the panel, and show what the module shows") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        obs_properties_t* properties = obs_source_properties(source.get());
        for (const char* name : {"Clear", "Undo", "Redo", "BrushColor", "BrushWidth", "RecoShapes", "Arrow"}) {
            CAPTURE(name);
            CHECK_NE(obs_properties_get(properties, name), nullptr);
        }
        CHECK_EQ(obs_properties_get(properties, "TexUnit"), nullptr);
        obs_property_t* width = obs_properties_get(properties, "BrushWidth");
        CHECK_EQ(obs_property_int_min(width), 1);
        CHECK_EQ(obs_property_int_max(width), 30);
        CHECK(obs_property_visible(width));
        obs_data_t* settings = obs_source_get_settings(source.get());
        obs_data_set_int(settings, "BrushType", 1);
        obs_property_modified(obs_properties_get(properties, "BrushType"), settings);
        CHECK_FALSE(obs_property_visible(width));
        CHECK(obs_property_visible(obs_properties_get(properties, "EraserWidth")));
        obs_data_release(settings);
        obs_properties_destroy(properties);
    }

    SUBCASE("ink that cannot be read is told of in the log and saved as it was") {
        const Settings settings = PlainSettings();
        obs_data_set_string(settings.get(), "ChalkpaneInk", "scribble");
        const Source source = session.Create(sourceId, "ink", settings.get());
        CHECK_NE(TakeLog().find("warning: [chalkpane] ink: what was drawn cannot be read: "), std::string::npos);
        obs_data_t* saved = obs_save_source(source.get());
        obs_data_t* kept = obs_data_get_obj(saved, "settings");
        CHECK_EQ(std::string(obs_data_get_string(kept, "ChalkpaneInk")), "scribble");
        obs_data_release(kept);
        obs_data_release(saved);
    }

    SUBCASE("it closes in a stroke") {
        const Source source = session.Create(sourceId, "ink", PlainSettings().get());
        BeginLine(source.get(), 100, 300, 200);
    }
}
