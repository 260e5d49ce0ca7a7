#include <obs-module.h>

#include "obs/plugin/drawing_window.h"
#include "obs/plugin/pane_owner.h"
#include "obs/plugin/pane_settings.h"
#include "obs/plugin/pane_sources.h"

namespace chalkpane::obs {
namespace {

struct PaneFilter {
    PaneFilter(obs_data_t* settings, obs_source_t* source) : owner(settings, source, [this] { OpenWindow(); }) {}

    // What the filters before this one make of the source; of no size before the source has pictures.
    [[nodiscard]] PanePlace Place() const {
        obs_source_t* target = obs_filter_get_target(owner.Source());
        return {static_cast<std::int32_t>(obs_source_get_base_width(target)),
                static_cast<std::int32_t>(obs_source_get_base_height(target))};
    }

    void OpenWindow() {
        obs_source_t* parent = obs_filter_get_parent(owner.Source());
        if (parent != nullptr) window.Open(owner.Pane(), parent, nullptr);
    }

    PaneOwner owner;
    DrawingWindow window;
};

PaneFilter& FilterOf(void* data) { return *static_cast<PaneFilter*>(data); }

obs_properties_t* FilterProperties(void* /*data*/) {
    obs_properties_t* properties = obs_properties_create();
    AddPanel(properties, [](obs_properties_t*, obs_property_t* button, void* data) {
        if (data != nullptr) FilterOf(data).owner.PushButton(obs_property_name(button));
        return false;
    });
    return properties;
}

void DrawOverTarget(void* data, gs_effect_t* /*effect*/) {
    const PaneFilter& filter = FilterOf(data);
    obs_source_skip_video_filter(filter.owner.Source());
    filter.owner.Draw();
}

obs_source_info FilterInfo() {
    obs_source_info info{};
    info.id = filterId;
    info.type = OBS_SOURCE_TYPE_FILTER;
    info.output_flags = OBS_SOURCE_VIDEO | OBS_SOURCE_CUSTOM_DRAW | OBS_SOURCE_SRGB;
    info.get_name = [](void*) { return "Chalkpane"; };
    info.create = Create<PaneFilter>;
    info.destroy = [](void* data) { delete &FilterOf(data); };
    info.get_defaults = SetDefaults;
    info.get_properties = FilterProperties;
    info.update = [](void* data, obs_data_t* settings) { FilterOf(data).owner.Update(settings); };
    info.save = [](void* data, obs_data_t* settings) { FilterOf(data).owner.Save(settings); };
    info.video_tick = [](void* data, float) {
        PaneOwner& owner = FilterOf(data).owner;
        obs_source_t* parent = obs_filter_get_parent(owner.Source());
        Guarded([&] { owner.OfferHotkeys(parent); });
        owner.Tick(FilterOf(data).Place(), parent);
    };
    info.video_render = DrawOverTarget;
    info.filter_remove = [](void* data, obs_source_t*) {
        FilterOf(data).window.Close();
        FilterOf(data).owner.OfferHotkeys(nullptr);
    };
    info.video_get_color_space = [](void* data, std::size_t count, const gs_color_space* preferred) {
        return obs_source_get_color_space(obs_filter_get_target(FilterOf(data).owner.Source()), count, preferred);
    };
    return info;
}

}  // namespace

void RegisterPaneFilter() {
    const obs_source_info info = FilterInfo();
    obs_register_source(&info);
}

}  // namespace chalkpane::obs
