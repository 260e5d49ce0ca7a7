#pragma once

#include <cstdint>

#include "module/abi/host_api.h"

namespace chalkpane {

// Says which of the host's objects is meant. -1, and any id that the host rejects, mean that there is none.
// Copied freely; owns nothing: deleting a host object is an explicit call of its own.
struct ObjectHandle {
    std::int32_t id = -1;

    friend bool operator==(const ObjectHandle&, const ObjectHandle&) = default;

    // True: the host knows a living object of this id.
    [[nodiscard]] bool IsValid() const { return id != -1 && _api__object_valid(id) != 0; }
    void SetChanged() const { _api__set_changed(id); }

    // The container that the calling instance is attached to.
    [[nodiscard]] static ObjectHandle OwnContainer();
    // The container under window pixel (x, y), y from the top.
    [[nodiscard]] static ObjectHandle ContainerAt(std::int32_t x, std::int32_t y);

    void SetMultiTexture(std::int32_t unit, ObjectHandle texture) const {
        _api__container_set_multi_texture(id, unit, texture.id);
    }
    void DeleteMultiTexture(std::int32_t unit) const { _api__container_delete_multi_texture(id, unit); }
    void DeleteTexture() const { _api__container_delete_texture(id); }
};
static_assert(sizeof(ObjectHandle) == sizeof(std::int32_t));

}  // namespace chalkpane
