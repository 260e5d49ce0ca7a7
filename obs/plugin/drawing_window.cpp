#include "obs/plugin/drawing_window.h"

#include <obs-frontend-api.h>

#include <optional>

#include "obs/plugin/pane_owner.h"
#include "obs/plugin/scene_search.h"

namespace chalkpane::obs {
namespace {

constexpr const char* windowId = "chalkpane_drawing_window";

// What a window's source knows. It holds a reference to what it shows, and none to the item, which may go.
struct Shown {
    Shown(obs_data_t* /*settings*/, obs_source_t* window) : self(window) {}
    // The stroke ends with the window.
    ~Shown() {
        if (pane) Guarded([&] { pane->Lift(); });
        if (source != nullptr) obs_source_remove_active_child(self, source);
        obs_source_release(source);
        obs_weak_source_release(item);
    }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;
    Shown(Shown&&) = delete;
    Shown& operator=(Shown&&) = delete;

    obs_source_t* self;
    std::shared_ptr<InkPane> pane;
    obs_source_t* source = nullptr;
    obs_weak_source_t* item = nullptr;
};

Shown& Of(void* data) { return *static_cast<Shown*>(data); }

// From pixels of the scene to those of the item; as they are where there is no item. Nothing: it is no longer there.
std::optional<PixelPosition> ToItem(const Shown& shown, const PixelPosition& at) {
    if (shown.item == nullptr) return at;
    const std::unique_ptr<obs_source_t, void (*)(obs_source_t*)> item(obs_weak_source_get_source(shown.item),
                                                                      obs_source_release);
    const auto places = item ? FindInScene(shown.source, item.get()) : std::nullopt;
    if (!places) return std::nullopt;
    std::optional<PixelPosition> found = at;
    for (const ItemPlace& place : *places)
        if (found) found = place.FromScene(*found);
    return found;
}

PixelPosition PositionOf(const obs_mouse_event& event) { return {double(event.x), double(event.y)}; }

void OnClick(void* data, const obs_mouse_event* event, std::int32_t button, bool isUp, std::uint32_t /*count*/) {
    const Shown& shown = Of(data);
    if (!shown.pane) return;
    Guarded([&] {
        if (const auto at = ToItem(shown, PositionOf(*event))) {
            SendClick(*shown.pane, at->x, at->y, button, isUp);
        } else if (isUp) {
            shown.pane->Lift();
        }
    });
}

void OnMove(void* data, const obs_mouse_event* event, bool hasLeft) {
    const Shown& shown = Of(data);
    if (!shown.pane) return;
    Guarded([&] {
        if (const auto at = ToItem(shown, PositionOf(*event))) SendMove(*shown.pane, at->x, at->y, hasLeft);
    });
}

obs_source_info WindowInfo() {
    obs_source_info info{};
    info.id = windowId;
    info.type = OBS_SOURCE_TYPE_INPUT;
    info.output_flags =
        OBS_SOURCE_VIDEO | OBS_SOURCE_CUSTOM_DRAW | OBS_SOURCE_INTERACTION | OBS_SOURCE_SRGB | OBS_SOURCE_CAP_DISABLED;
    info.get_name = [](void*) { return "Chalkpane, a window to draw in"; };
    info.create = Create<Shown>;
    info.destroy = [](void* data) { delete &Of(data); };
    info.get_width = [](void* data) { return obs_source_get_width(Of(data).source); };
    info.get_height = [](void* data) { return obs_source_get_height(Of(data).source); };
    info.video_render = [](void* data, gs_effect_t*) { obs_source_video_render(Of(data).source); };
    info.enum_active_sources = [](void* data, obs_source_enum_proc_t enumerate, void* param) {
        if (Of(data).source != nullptr) enumerate(Of(data).self, Of(data).source, param);
    };
    info.mouse_click = OnClick;
    info.mouse_move = OnMove;
    return info;
}

}  // namespace

void DrawingWindow::Open(const std::shared_ptr<InkPane>& pane, obs_source_t* shown, obs_source_t* item) {
    Close();
    obs_source_t* window = obs_source_create_private(windowId, obs_source_get_name(shown), nullptr);
    auto* data = window == nullptr ? nullptr : static_cast<Shown*>(obs_obj_get_data(window));
    if (data == nullptr) return obs_source_release(window);
    data->pane = pane;
    data->source = obs_source_get_ref(shown);
    data->item = item == nullptr ? nullptr : obs_source_get_weak_source(item);
    obs_source_add_active_child(window, shown);
    m_open = obs_source_get_weak_source(window);
    obs_frontend_open_source_interaction(window);  // which holds it from now on
    obs_source_release(window);
}

void DrawingWindow::Close() {
    if (obs_source_t* window = obs_weak_source_get_source(m_open)) {
        obs_source_remove(window);
        obs_source_release(window);
    }
    obs_weak_source_release(m_open);
    m_open = nullptr;
}

void RegisterDrawingWindow() {
    const obs_source_info info = WindowInfo();
    obs_register_source(&info);
}

}  // namespace chalkpane::obs
