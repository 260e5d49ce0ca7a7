#include "obs/plugin/scene_search.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>

#include <graphics/matrix4.h>

namespace chalkpane::obs {
namespace {

using Item = std::unique_ptr<obs_sceneitem_t, void (*)(obs_sceneitem_t*)>;

// The lowest first.
std::vector<Item> ItemsOf(obs_scene_t* scene) {
    std::vector<Item> items;
    const auto keep = [](obs_scene_t*, obs_sceneitem_t* item, void* list) {
        obs_sceneitem_addref(item);
        static_cast<std::vector<Item>*>(list)->emplace_back(item, obs_sceneitem_release);
        return true;
    };
    obs_scene_enum_items(scene, keep, &items);
    return items;
}

// OBS multiplies rows by matrices from the left, so that the matrix's rows are where the axes lead.
ItemPlace PlaceOf(obs_sceneitem_t* item) {
    matrix4 toScene{};
    obs_sceneitem_get_draw_transform(item, &toScene);
    obs_sceneitem_crop crop{};
    obs_sceneitem_get_crop(item, &crop);
    const auto position = [](const vec4& row) { return PixelPosition{double{row.x}, double{row.y}}; };
    return {position(toScene.x), position(toScene.y), position(toScene.t), double(crop.left), double(crop.top)};
}

enum class Seen : std::uint8_t { Only, OrHidden };

class SceneSearch {
public:
    SceneSearch(obs_source_t* sought, Seen seen) : m_sought(sought), m_seen(seen) {}

    // Each scene is looked through once, however often it lies in others.
    bool Look(obs_source_t* in) {
        obs_scene_t* scene = obs_group_or_scene_from_source(in);
        if (scene == nullptr || !m_lookedThrough.insert(scene).second) return false;
        const std::vector<Item> items = ItemsOf(scene);
        return std::any_of(items.rbegin(), items.rend(), [&](const Item& item) {
            obs_source_t* source = obs_sceneitem_get_source(item.get());
            if (m_seen == Seen::Only && !obs_sceneitem_visible(item.get())) return false;
            m_places.push_back(PlaceOf(item.get()));
            if (source == m_sought || Look(source)) return true;
            m_places.pop_back();
            return false;
        });
    }
    [[nodiscard]] std::vector<ItemPlace> Places() const { return m_places; }

private:
    obs_source_t* m_sought;
    Seen m_seen;
    std::vector<ItemPlace> m_places;
    std::set<obs_scene_t*> m_lookedThrough;
};

}  // namespace

std::optional<std::vector<ItemPlace>> FindInScene(obs_source_t* scene, obs_source_t* sought) {
    for (const Seen seen : {Seen::Only, Seen::OrHidden})
        if (SceneSearch search(sought, seen); search.Look(scene)) return search.Places();
    return std::nullopt;
}

}  // namespace chalkpane::obs
