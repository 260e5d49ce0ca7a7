#include "module/object_handle.h"

namespace chalkpane {
namespace {

// The host hands this word through to itself; the module only lends the place.
std::int32_t localObjectWord = 0;

constexpr std::int32_t containerKind = 2;

}  // namespace

ObjectHandle ObjectHandle::OwnContainer() { return {_api__get_objectid_local(&localObjectWord, containerKind)}; }

ObjectHandle ObjectHandle::ContainerAt(std::int32_t x, std::int32_t y) {
    ObjectHandle found;
    std::int32_t unreadResult = 0;
    _api__container_get_drop(&found.id, 0, x, y, &unreadResult);
    return found;
}

}  // namespace chalkpane
