#include <obs-frontend-api.h>
#include <obs-module.h>

#include <algorithm>
#include <memory>

#include "obs/plugin/drawing_window.h"
#include "obs/plugin/pane_owner.h"
#include "obs/plugin/pane_settings.h"
#include "obs/plugin/pane_sources.h"
#include "obs/plugin/scene_search.h"

namespace chalkpane::obs {
namespace {

constexpr const char* widthSetting = "PaneWidth";
constexpr const char* heightSetting = "PaneHeight";
constexpr int largestSide = 16384;

struct PaneSource {
    PaneSource(obs_data_t* settings, obs_source_t* source) : owner(settings, source, [this] { OpenWindow(); }) {
        ReadSize(settings);
        owner.OfferHotkeys(source);
    }

    // A side of 0 is that of OBS's own canvas, whatever becomes of that.
    void ReadSize(obs_data_t* settings) {
        const auto side = [&](const char* name) {
            return static_cast<std::int32_t>(std::clamp<long long>(obs_data_get_int(settings, name), 0, largestSide));
        };
        wanted = {side(widthSetting), side(heightSetting)};
        owner.Pane()->SetPlace(Place());  // the pointer may come before the next frame
    }
    [[nodiscard]] PanePlace Place() const {
        obs_video_info video{};
        if (!obs_get_video_info(&video)) video.base_width = video.base_height = canvasSize;
        return {wanted.width > 0 ? wanted.width : static_cast<std::int32_t>(video.base_width),
                wanted.height > 0 ? wanted.height : static_cast<std::int32_t>(video.base_height)};
    }
    // Over the scene that is being worked on, if the source is in it; otherwise over nothing.
    void OpenWindow() {
        const std::unique_ptr<obs_source_t, void (*)(obs_source_t*)> scene(
            obs_frontend_preview_program_mode_active() ? obs_frontend_get_current_preview_scene()
                                                       : obs_frontend_get_current_scene(),
            obs_source_release);
        if (scene && FindInScene(scene.get(), owner.Source())) {
            window.Open(owner.Pane(), scene.get(), owner.Source());
        } else {
            obs_frontend_open_source_interaction(owner.Source());
        }
    }

    PaneOwner owner;
    DrawingWindow window;
    PanePlace wanted;
};

PaneSource& SourceOf(void* data) { return *static_cast<PaneSource*>(data); }

obs_properties_t* SourceProperties(void* /*data*/) {
    obs_properties_t* properties = obs_properties_create();
    AddPanel(properties, [](obs_properties_t*, obs_property_t* button, void* data) {
        if (data != nullptr) SourceOf(data).owner.PushButton(obs_property_name(button));
        return false;
    });
    obs_properties_add_int(properties, widthSetting, "Width (0: that of the canvas)", 0, largestSide, 1);
    obs_properties_add_int(properties, heightSetting, "Height (0: that of the canvas)", 0, largestSide, 1);
    return properties;
}

obs_source_info SourceInfo() {
    obs_source_info info{};
    info.id = sourceId;
    info.type = OBS_SOURCE_TYPE_INPUT;
    info.output_flags = OBS_SOURCE_VIDEO | OBS_SOURCE_CUSTOM_DRAW | OBS_SOURCE_INTERACTION | OBS_SOURCE_SRGB;
    info.icon_type = OBS_ICON_TYPE_TEXT;
    info.get_name = [](void*) { return "Chalkpane"; };
    info.create = Create<PaneSource>;
    info.destroy = [](void* data) { delete &SourceOf(data); };
    info.get_width = [](void* data) { return static_cast<std::uint32_t>(SourceOf(data).Place().width); };
    info.get_height = [](void* data) { return static_cast<std::uint32_t>(SourceOf(data).Place().height); };
    info.get_defaults = SetDefaults;
    info.get_properties = SourceProperties;
    info.update = [](void* data, obs_data_t* settings) {
        SourceOf(data).ReadSize(settings);
        SourceOf(data).owner.Update(settings);
    };
    info.save = [](void* data, obs_data_t* settings) { SourceOf(data).owner.Save(settings); };
    info.video_tick = [](void* data, float) {
        SourceOf(data).owner.Tick(SourceOf(data).Place(), SourceOf(data).owner.Source());
    };
    info.video_render = [](void* data, gs_effect_t*) { SourceOf(data).owner.Draw(); };
    info.mouse_click = [](void* data, const obs_mouse_event* event, std::int32_t button, bool isUp, std::uint32_t) {
        SendClick(*SourceOf(data).owner.Pane(), event->x, event->y, button, isUp);
    };
    info.mouse_move = [](void* data, const obs_mouse_event* event, bool hasLeft) {
        SendMove(*SourceOf(data).owner.Pane(), event->x, event->y, hasLeft);
    };
    return info;
}

}  // namespace

void RegisterPaneSource() {
    const obs_source_info info = SourceInfo();
    obs_register_source(&info);
}

}  // namespace chalkpane::obs
