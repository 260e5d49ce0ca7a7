// Exported to the modules, which are the only ones to call these.
#pragma GCC visibility push(default)
#include "module/abi/host_api.h"
#pragma GCC visibility pop

#include <algorithm>
#include <string_view>

#include "cli/nearest_name.h"
#include "kel/host_functions/host_call.h"
#include "kel/scene/matrix.h"
#include "kel/scene/picking.h"

// Objects, containers, scene, camera and window.
namespace {

using kel::ContainerObject;
using kel::HostCall;
using kel::WrongUse;

void WriteMatrix(const kel::Matrix& matrix, float* place) {
    std::ranges::transform(matrix, place, [](double element) { return static_cast<float>(element); });
}

bool IsExpected(const HostCall& call, const char* name, std::string_view expected) {
    if (!call.HasPlace(name)) return false;
    if (name == expected) return true;
    call.Report(WrongUse::UnknownName, cli::Quoted(name) + " is not " + cli::Quoted(expected));
    return false;
}

bool IsExpected(const HostCall& call, std::int32_t number, std::int32_t expected) {
    if (number == expected) return true;
    call.Report(WrongUse::BadNumber, std::to_string(number) + " is not " + std::to_string(expected));
    return false;
}

void SetMultiTexture(const HostCall& call, std::int32_t id, std::int32_t unit, kel::ObjectId texture) {
    auto* container = call.Find<ContainerObject>(id);
    if (container == nullptr || !call.HasUnit(unit)) return;
    kel::ObjectId& place = container->multiTextures[static_cast<std::size_t>(unit)];
    if (place != texture) call.State().changes.AddEverything();
    place = texture;
}

}  // namespace

std::int32_t _api__object_valid(std::int32_t id) {
    const HostCall call(__func__, kel::inInstance);
    return call && call.State().objects.Contains(id) ? 1 : 0;
}

void _api__set_changed(std::int32_t id) {
    const HostCall call(__func__, kel::inInstance);
    if (!call) return;
    if (call.State().objects.Contains(id)) {
        call.State().ShowAnew();
    } else {
        call.Report(WrongUse::UnknownId, "there is no object " + std::to_string(id));
    }
}

std::int32_t _api__get_objectid_local(std::int32_t* word, std::int32_t kind) {
    constexpr std::int32_t containerKind = 2;
    const HostCall call(__func__, kel::inInstance);
    if (!call || !call.HasPlace(word) || !IsExpected(call, kind, containerKind)) return kel::noObject;
    return call.State().calling->Container();
}

void _api__container_get_drop(std::int32_t* container, std::int32_t /*reserved*/, std::int32_t x, std::int32_t y,
                              std::int32_t* result) {
    const HostCall call(__func__, kel::inInstance);
    if (!call || !call.HasPlace(container)) return;
    *container = kel::ContainerUnder(call.State(), x, y);
    if (result != nullptr) *result = *container == kel::noObject ? 0 : 1;
}

void _api__container_get_bounding_box(std::int32_t id, float* minX, float* minY, float* minZ, float* maxX, float* maxY,
                                      float* maxZ) {
    const HostCall call(__func__, kel::inInstance);
    const auto* container = call ? call.Find<ContainerObject>(id) : nullptr;
    if (container == nullptr) return;
    const auto halfWidth = static_cast<float>(container->placement.size[0] / 2);
    const auto halfHeight = static_cast<float>(container->placement.size[1] / 2);
    call.Answer(minX, -halfWidth);
    call.Answer(minY, -halfHeight);
    call.Answer(minZ, 0.0F);
    call.Answer(maxX, halfWidth);
    call.Answer(maxY, halfHeight);
    call.Answer(maxZ, 0.0F);
}

void _api__container_get_transformation_matrix(std::int32_t id, float* matrix) {
    const HostCall call(__func__, kel::inInstance);
    const auto* container = call ? call.Find<ContainerObject>(id) : nullptr;
    if (container != nullptr && call.HasPlace(matrix)) WriteMatrix(kel::WorldMatrix(container->placement), matrix);
}

void _api__container_set_multi_texture(std::int32_t id, std::int32_t unit, std::int32_t texture) {
    const HostCall call(__func__, kel::inInstance);
    if (call && call.Find<kel::TextureObject>(texture) != nullptr) SetMultiTexture(call, id, unit, texture);
}

void _api__container_delete_multi_texture(std::int32_t id, std::int32_t unit) {
    const HostCall call(__func__, kel::inInstance);
    if (call) SetMultiTexture(call, id, unit, kel::noObject);
}

// The base texture is the module's own where it has put one on unit 0, else the picture.
void _api__container_delete_texture(std::int32_t id) {
    const HostCall call(__func__, kel::inInstance);
    auto* container = call ? call.Find<ContainerObject>(id) : nullptr;
    if (container == nullptr) return;
    auto& base = container->multiTextures[0] != kel::noObject ? container->multiTextures[0] : container->picture;
    base = kel::noObject;
    call.State().ShowAnew();
}

std::int32_t _api__get_sceneid_local(char* name, std::int32_t reserved) {
    const HostCall call(__func__, kel::inInstance);
    if (!call || !IsExpected(call, name, "SCENE") || !IsExpected(call, reserved, 0)) return kel::noObject;
    return call.State().scene;
}

std::int32_t _api__get_scene_current_camera(std::int32_t scene, std::int32_t* result) {
    const HostCall call(__func__, kel::inInstance);
    const auto* found = call ? call.Find<kel::SceneObject>(scene) : nullptr;
    if (result != nullptr) *result = found != nullptr ? 1 : 0;
    return found != nullptr ? found->camera : kel::noObject;
}

std::int32_t _api__get_cameraid(std::int32_t camera, char* name, std::int32_t kind) {
    constexpr std::int32_t renderCameraKind = 62;
    const HostCall call(__func__, kel::inInstance);
    if (!call || !IsExpected(call, name, "RENDERCAMERA") || !IsExpected(call, kind, renderCameraKind))
        return kel::noObject;
    return call.Find<kel::CameraObject>(camera) != nullptr ? camera : kel::noObject;
}

void _api__get_camera_matrix(std::int32_t camera, float* matrix) {
    const HostCall call(__func__, kel::inInstance);
    const auto* found = call ? call.Find<kel::CameraObject>(camera) : nullptr;
    if (found != nullptr && call.HasPlace(matrix))
        WriteMatrix(kel::CameraMatrix(found->camera, kel::Aspect(call.State().window)), matrix);
}

// Answers 1: the render will come.
std::int32_t _api__scene_redraw() {
    const HostCall call(__func__, kel::inInstance);
    if (!call) return 0;
    call.State().redraw = true;
    return 1;
}

void _api__tessmar_query_mouse_pos(std::int32_t /*reserved*/, std::int32_t* x, std::int32_t* y) {
    const HostCall call(__func__, kel::inInstance);
    if (!call) return;
    call.Answer(x, call.State().pointerX);
    call.Answer(y, call.State().pointerY);
}

void _api__tessmar_get_window_size(std::int32_t* width, std::int32_t* height) {
    const HostCall call(__func__, kel::inInstance);
    if (!call) return;
    call.Answer(width, call.State().window.width);
    call.Answer(height, call.State().window.height);
}
