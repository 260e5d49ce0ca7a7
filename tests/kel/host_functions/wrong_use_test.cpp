#include "kel/scene/wrong_use.h"

#include <doctest/doctest.h>

#include <array>
#include <thread>

#include "module/abi/host_api.h"
#include "tests/kel/gl_formats.h"
#include "tests/kel/misused_host.h"

namespace kel {
namespace {

using testing::rgba;
using testing::unsignedByte;

constexpr std::array<std::uint8_t, 64> pixels{};

// The reports after a field with this in the field callback, or in the pre render.
std::vector<std::string> ReportsOf(const std::function<void()>& call) {
    testing::MisusedHost probed;
    probed.InField(call);
    return probed.host->WrongUses();
}

std::vector<std::string> ReportsInRender(const std::function<void()>& call) {
    testing::MisusedHost probed;
    probed.InRender(call);
    return probed.host->WrongUses();
}

// Exactly one report, of this text.
void CheckOne(const std::vector<std::string>& reports, const std::string& text) {
    REQUIRE_EQ(reports.size(), 1);
    CHECK_EQ(reports.front(), "kel: wrong use by a module: " + text + " (reported once)");
}

}  // namespace

TEST_CASE("A kind of wrong use is reported once") {
    CheckOne(ReportsOf([] {
                 _api__set_changed(77);
                 _api__set_changed(78);
                 _api__rebuild_texture(79);
             }),
             "_api__set_changed: there is no object 77");
}

TEST_CASE("Each kind of wrong use is reported") {
    const auto reports = ReportsOf([] {
        _api__set_changed(77);
        _api__get_objectid_local(nullptr, 2);
        _api__create_image(-1, 4, 4, 1);
        qoHideParameter("Count");
    });
    CHECK_EQ(reports.size(), 4);
}

TEST_CASE("Asking whether an unknown id is valid is no wrong use") {
    CHECK(ReportsOf([] {
              CHECK_EQ(_api__object_valid(77), 0);
              CHECK_EQ(_api__object_valid(-1), 0);
          }).empty());
}

TEST_CASE("An id of another kind is as good as none") {
    testing::MisusedHost probed;
    const std::string id = std::to_string(probed.container);
    probed.InField([&] { _api__rebuild_texture(probed.container); });
    CheckOne(probed.host->WrongUses(), "_api__rebuild_texture: there is no image " + id);
}

TEST_CASE("A registration outside PLUGIN_INIT_EX registers nothing") {
    testing::MisusedHost probed;
    probed.InField([] { qoRegisterParameterBool("Late", "Late", 1); });
    CheckOne(probed.host->WrongUses(), "qoRegisterParameterBool: called outside PLUGIN_INIT_EX");
    CHECK_EQ(probed.host->LoadModule(PROBE_MODULE).registration.FindParameter("Late"), nullptr);
}

TEST_CASE("A registration outside any callback is survived") {
    testing::MisusedHost probed;
    qoRegisterTotalSize(12);
    CHECK_EQ(probed.host->WrongUses().size(), 1);
}

TEST_CASE("A scene function in PLUGIN_INIT_EX is refused") {
    ProbeHooks hooks;
    std::int32_t image = 0;
    hooks.registration = [&] {
        testing::RegisterProbe();
        image = _api__create_image(-1, 4, 4, rgba);
    };
    testing::UseHooks(&hooks);
    const testing::UnheardReports unheard;
    Host host({8, 8});
    host.LoadModule(PROBE_MODULE);
    CHECK_EQ(image, noObject);
    CheckOne(host.WrongUses(), "_api__create_image: called outside the callbacks of an instance");
    testing::UseHooks(nullptr);
}

TEST_CASE("OpenGL outside a render is refused") {
    CheckOne(ReportsOf([] { kelGL_glEnable(0x0BE2); }), "kelGL_glEnable: called outside the render callbacks");
}

TEST_CASE("Showing a parameter is for PLUGIN_GUI_STATUS") {
    CHECK_EQ(ReportsOf([] { CHECK_EQ(qoSendGuiParameterShow("Count", 0), 0); }).size(), 1);
}

TEST_CASE("A name that is not registered, or registered twice, is reported") {
    ProbeHooks hooks;
    hooks.registration = [] {
        testing::RegisterProbe();
        qoRegisterParameterInt("Count", "Again", 1, 0, 1);
    };
    testing::UseHooks(&hooks);
    {
        Host host({8, 8});
        CHECK_EQ(host.LoadModule(PROBE_MODULE).registration.parameters.size(), 3);
        CheckOne(host.WrongUses(), "qoRegisterParameterInt: there already is a parameter \"Count\"");
    }
    hooks.registration = [] {
        testing::RegisterProbe();
        qoHideParameter("Nobody\n");
    };
    Host host({8, 8});
    host.LoadModule(PROBE_MODULE);
    CheckOne(host.WrongUses(), "qoHideParameter: there is no parameter \"Nobody \"");
    testing::UseHooks(nullptr);
}

TEST_CASE("An upload outside the image changes nothing") {
    struct Region {
        std::int32_t x, y, width, height;
    };
    constexpr std::int32_t farthest = 2147483647;
    for (const Region region : {Region{1, 0, 4, 4}, Region{0, -1, 4, 1}, Region{0, 0, 5, 1}, Region{0, 0, -1, 1},
                                Region{farthest, 0, 1, 1}, Region{1, 1, farthest, farthest}}) {
        const auto reports = ReportsInRender([&] {
            const std::int32_t image = _api__create_image(-1, 4, 4, rgba);
            _api__image_subtexload(image, -1, region.x, region.y, region.width, region.height, rgba, unsignedByte,
                                   pixels.data());
        });
        REQUIRE_EQ(reports.size(), 1);
        CHECK_NE(reports.front().find("outside the image of 4 x 4"), std::string::npos);
    }
}

TEST_CASE("An upload of no width is nothing, and no wrong use") {
    CHECK(ReportsInRender([] {
              const std::int32_t image = _api__create_image(-1, 4, 4, rgba);
              _api__image_subtexload(image, -1, 2, 0, 0, 4, rgba, unsignedByte, pixels.data());
          }).empty());
}

TEST_CASE("An upload from nowhere, of another type, or to an image that is gone is survived") {
    CHECK_EQ(ReportsInRender([] {
                 const std::int32_t image = _api__create_image(-1, 4, 4, rgba);
                 _api__image_subtexload(image, -1, 0, 0, 4, 4, rgba, unsignedByte, nullptr);
                 _api__image_subtexload(image, -1, 0, 0, 4, 4, rgba, 0x1406, pixels.data());
                 _api__image_subtexload(image + 9, -1, 0, 0, 4, 4, rgba, unsignedByte, pixels.data());
             }).size(),
             3);
}

TEST_CASE("An image of an impossible size or format has a negative id") {
    ReportsOf([] {
        CHECK_LT(_api__create_image(-1, 0, 4, rgba), 0);
        CHECK_LT(_api__create_image(-1, 40000, 40000, rgba), 0);
        CHECK_LT(_api__create_image(-1, 4, -4, rgba), 0);
        CHECK_LT(_api__create_image(-1, 4, 4, 0), 0);
    });
}

TEST_CASE("A texture unit that does not exist is reported") {
    testing::MisusedHost probed;
    probed.InField([&] { _api__container_delete_multi_texture(probed.container, 4); });
    CheckOne(probed.host->WrongUses(), "_api__container_delete_multi_texture: there is no texture unit 4");
}

TEST_CASE("A texture unit that does not exist is not made active") {
    CheckOne(ReportsInRender([] {
                 kelGL_glActiveTexture(-1);
                 kelGL_glActiveTexture(4);
                 kelGL_glActiveTexture(3);
             }),
             "kelGL_glActiveTexture: there is no texture unit -1");
}

TEST_CASE("A texture without an image, and a container given a texture that is none, are reported") {
    testing::MisusedHost probed;
    std::int32_t texture = 5;
    probed.InField([&] {
        _api__texture_create_texture(&texture, 99);
        _api__container_set_multi_texture(probed.container, 1, 99);
    });
    CHECK_EQ(texture, noObject);
    CheckOne(probed.host->WrongUses(), "_api__texture_create_texture: there is no image 99");
    probed.host->RunField();
}

TEST_CASE("A texture setting that does not exist is reported") {
    CheckOne(ReportsOf([] {
                 std::int32_t texture = noObject;
                 _api__texture_create_texture(&texture, _api__create_image(-1, 4, 4, rgba));
                 _api__set_texture_wrap_type(texture, 0x2900);
                 _api__set_texture_env_type(texture, 0x2101);
                 _api__set_texture_qual_type(texture, 9);
             }),
             "_api__set_texture_qual_type: there is no setting 9");
}

TEST_CASE("What OpenGL refuses in a render is reported, and the render goes on") {
    testing::MisusedHost probed(8);
    probed.InRender([] { kelGL_glEnable(0xFFFFFFFF); });
    CheckOne(probed.host->WrongUses(), "OpenGL refused what was asked for in a render callback");
    CHECK(probed.host->ReadFrame().At(4, 4) == std::array<std::uint8_t, 4>{255, 255, 255, 255});
}

TEST_CASE("Results without a place to put them are reported") {
    CHECK_EQ(ReportsOf([] {
                 _api__tessmar_query_mouse_pos(0, nullptr, nullptr);
                 _api__get_image_objectid(nullptr);
                 _api__image_delete_image(nullptr);
                 _api__container_get_drop(nullptr, 0, 0, 0, nullptr);
                 _api__get_sceneid_local(nullptr, 0);
             }).size(),
             1);
}

TEST_CASE("A call on another thread, or without a host, is refused and survived") {
    testing::MisusedHost probed;
    std::int32_t answer = 5;
    probed.InField([&] { std::thread([&] { answer = _api__scene_redraw(); }).join(); });
    CHECK_EQ(answer, 0);
    CHECK(probed.host->WrongUses().empty());
    probed.host.reset();
    CHECK_EQ(_api__scene_redraw(), 0);
    CHECK_EQ(_api__object_valid(1), 0);
}

TEST_CASE("A texture deleted while a container shows it is shown no more") {
    testing::MisusedHost probed(8);
    std::int32_t texture = noObject;
    probed.InField([&] {
        const std::int32_t image = _api__create_image(-1, 4, 4, rgba);
        _api__texture_create_texture(&texture, image);
        _api__container_set_multi_texture(probed.container, 0, texture);
        _api__scene_redraw();
    });
    // The picture of zeros cuts everything away.
    CHECK(probed.host->ReadFrame().At(4, 4) == std::array<std::uint8_t, 4>{0, 0, 0, 255});
    probed.InField([&] {
        _api__texture_delete_texture(&texture);
        _api__scene_redraw();
    });
    CHECK(probed.host->ReadFrame().At(4, 4) == std::array<std::uint8_t, 4>{255, 255, 255, 255});
    CHECK(probed.host->WrongUses().empty());
}

}  // namespace kel
