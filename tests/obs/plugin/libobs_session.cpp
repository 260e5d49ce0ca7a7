#include "tests/obs/plugin/libobs_session.h"

#include <doctest/doctest.h>
#include <graphics/vec4.h>
#include <obs-nix-platform.h>
#include <util/bmem.h>

#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include <X11/Xlib.h>  // last: its macros take names of the others

namespace chalkpane::obs::testing {
namespace {

std::mutex logMutex;
std::string logText;

void TakeLine(int level, const char* format, va_list arguments, void* /*param*/) {
    std::array<char, 4096> line{};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    const std::scoped_lock lock(logMutex);
    logText += (level <= LOG_WARNING ? "warning: " : "") + std::string(line.data()) + '\n';
}

constexpr std::uint32_t plainSide = 256;

struct PlainColour {
    vec4 colour{};
};

obs_source_info PlainColourInfo() {
    obs_source_info info{};
    info.id = "plain_color";
    info.type = OBS_SOURCE_TYPE_INPUT;
    info.output_flags = OBS_SOURCE_VIDEO | OBS_SOURCE_CUSTOM_DRAW;
    info.get_name = [](void*) { return "Plain color"; };
    info.create = [](obs_data_t* settings, obs_source_t*) -> void* {
        auto* plain = new PlainColour;
        vec4_from_rgba(&plain->colour, static_cast<std::uint32_t>(obs_data_get_int(settings, "color")));
        return plain;
    };
    info.destroy = [](void* data) { delete static_cast<PlainColour*>(data); };
    info.get_width = [](void*) { return plainSide; };
    info.get_height = [](void*) { return plainSide; };
    info.video_render = [](void* data, gs_effect_t*) {
        gs_effect_t* solid = obs_get_base_effect(OBS_EFFECT_SOLID);
        gs_effect_set_vec4(gs_effect_get_param_by_name(solid, "color"), &static_cast<PlainColour*>(data)->colour);
        while (gs_effect_loop(solid, "Solid")) gs_draw_sprite(nullptr, 0, plainSide, plainSide);
    };
    return info;
}

void StartVideo() {
    obs_video_info video{};
    video.graphics_module = "libobs-opengl";
    video.fps_num = 50;
    video.fps_den = 1;
    video.base_width = video.output_width = plainSide;
    video.base_height = video.output_height = plainSide;
    video.output_format = VIDEO_FORMAT_BGRA;
    video.colorspace = VIDEO_CS_SRGB;
    video.range = VIDEO_RANGE_FULL;
    REQUIRE_EQ(obs_reset_video(&video), OBS_VIDEO_SUCCESS);
}

// Rows without gaps.
std::vector<std::uint8_t> Rendered(obs_source_t* source, std::uint32_t width, std::uint32_t height,
                                   gs_color_format format, gs_color_space space, const std::array<float, 4>& over) {
    std::vector<std::uint8_t> bytes;
    const std::size_t rowLength = std::size_t{width} * (format == GS_RGBA16F ? 8 : 4);
    obs_enter_graphics();
    gs_texrender_t* target = gs_texrender_create(format, GS_ZS_NONE);
    gs_stagesurf_t* stage = gs_stagesurface_create(width, height, format);
    if (gs_texrender_begin_with_color_space(target, width, height, space)) {
        vec4 background{};
        vec4_set(&background, over[0], over[1], over[2], over[3]);
        gs_clear(GS_CLEAR_COLOR, &background, 0, 0);
        gs_ortho(0, static_cast<float>(width), 0, static_cast<float>(height), -100, 100);
        obs_source_video_render(source);
        gs_texrender_end(target);
        gs_stage_texture(stage, gs_texrender_get_texture(target));
        std::uint8_t* rows = nullptr;
        std::uint32_t rowBytes = 0;
        if (gs_stagesurface_map(stage, &rows, &rowBytes)) {
            for (std::size_t y = 0; y < height; ++y)
                bytes.insert(bytes.end(), rows + y * rowBytes, rows + y * rowBytes + rowLength);
            gs_stagesurface_unmap(stage);
        }
    }
    gs_stagesurface_destroy(stage);
    gs_texrender_destroy(target);
    obs_leave_graphics();
    return bytes;
}

// A half-precision number that is not subnormal, infinite or NaN: sign, 5 bits of exponent, 10 of fraction.
double OfHalf(std::uint16_t half) {
    if ((half & 0x7FFF) == 0) return 0;
    const double fraction = 1 + (half & 0x3FF) / 1024.0;
    return std::ldexp((half & 0x8000) != 0 ? -fraction : fraction, ((half >> 10) & 31) - 15);
}

}  // namespace

void WaitUntil(const std::string& what, const std::function<bool()>& isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(3);
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end) FAIL("never: " << what);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

std::string TakeLog() {
    const std::scoped_lock lock(logMutex);
    return std::exchange(logText, {});
}

Settings NewSettings() { return {obs_data_create(), obs_data_release}; }

std::array<int, 4> DrawnPicture::At(std::uint32_t x, std::uint32_t y) const {
    std::array<int, 4> pixel{};
    for (std::size_t i = 0; i < 4; ++i) pixel[i] = bytes[(std::size_t{y} * width + x) * 4 + i];
    return pixel;
}

LibobsSession::LibobsSession(Graphics graphics) {
    (void)TakeLog();
    base_set_log_handler(TakeLine, nullptr);
    m_connection = XOpenDisplay(m_display.Name().c_str());
    REQUIRE_NE(m_connection, nullptr);
    obs_set_nix_platform(OBS_NIX_PLATFORM_X11_EGL);
    obs_set_nix_platform_display(m_connection);
    setenv("DISPLAY", m_display.Name().c_str(), 1);  // for hotkeys, which are looked for on a connection of their own
    const bool isStarted = obs_startup("en-US", nullptr, nullptr);
    INFO(TakeLog());
    REQUIRE(isStarted);
    if (graphics == Graphics::OpenGl) StartVideo();
    const obs_source_info plain = PlainColourInfo();
    obs_register_source(&plain);
    obs_module_t* module = nullptr;
    REQUIRE_EQ(obs_open_module(&module, OBS_PLUGIN, nullptr), MODULE_SUCCESS);
    REQUIRE(obs_init_module(module));
}

LibobsSession::~LibobsSession() {
    // The last sources are destroyed on a thread of OBS's own, and OBS shuts its hotkeys down without waiting for it.
    obs_queue_task(
        OBS_TASK_DESTROY, [](void*) {}, nullptr, true);
    obs_shutdown();
    XCloseDisplay(static_cast<Display*>(m_connection));
    CHECK_EQ(bnum_allocs(), 0);
    base_set_log_handler(nullptr, nullptr);
}

Source LibobsSession::Create(const char* id, const char* name, obs_data_t* settings) {
    obs_source_t* source = obs_source_create(id, name, settings, nullptr);
    REQUIRE_NE(source, nullptr);
    obs_source_inc_showing(source);
    return {source, [](obs_source_t* shown) {
                obs_source_dec_showing(shown);
                obs_source_release(shown);
                obs_wait_for_destroy_queue();
            }};
}

DrawnPicture LibobsSession::Draw(obs_source_t* source, std::uint32_t width, std::uint32_t height,
                                 const std::array<float, 4>& over) const {
    DrawnPicture picture{width, Rendered(source, width, height, GS_RGBA, GS_CS_SRGB, over)};
    REQUIRE_EQ(picture.bytes.size(), std::size_t{width} * height * 4);
    return picture;
}

std::array<double, 4> LibobsSession::DrawLinear(obs_source_t* source, std::uint32_t width, std::uint32_t height,
                                                std::uint32_t x, std::uint32_t y) const {
    const auto bytes = Rendered(source, width, height, GS_RGBA16F, GS_CS_709_EXTENDED, {});
    REQUIRE_EQ(bytes.size(), std::size_t{width} * height * 8);
    std::array<double, 4> pixel{};
    for (std::size_t i = 0; i < 4; ++i) {
        std::uint16_t half = 0;
        std::memcpy(&half, &bytes[(std::size_t{y} * width + x) * 8 + i * 2], sizeof half);
        pixel[i] = OfHalf(half);
    }
    return pixel;
}

void LibobsSession::WaitForFrames(int frames) const {
    const std::uint32_t wanted = obs_get_total_frames() + static_cast<std::uint32_t>(frames);
    WaitUntil("frames of OBS", [&] { return obs_get_total_frames() >= wanted; });
}

}  // namespace chalkpane::obs::testing
