#include "module/container_mapping.h"

#include "module/abi/host_api.h"
#include "module/unproject_point.h"

namespace chalkpane {
namespace {

// The host's look-ups take these in writable storage.
char sceneName[] = "SCENE";
char renderCameraName[] = "RENDERCAMERA";
constexpr std::int32_t renderCameraKind = 62;

Matrix4 CameraMatrix() {
    std::int32_t unreadResult = 0;
    const std::int32_t scene = _api__get_sceneid_local(sceneName, 0);
    const std::int32_t current = _api__get_scene_current_camera(scene, &unreadResult);
    const std::int32_t camera = _api__get_cameraid(current, renderCameraName, renderCameraKind);
    Matrix4 matrix;
    _api__get_camera_matrix(camera, matrix.elements.data());
    return matrix;
}

PlaneBox BoxOf(const PluginInstance& instance) {
    return {instance.boxMinX, instance.boxMaxX, instance.boxMinY, instance.boxMaxY};
}

}  // namespace

bool ReadBoundingBox(PluginInstance& instance, ObjectHandle container) {
    float unreadMinZ = 0;
    float unreadMaxZ = 0;
    _api__container_get_bounding_box(container.id, &instance.boxMinX, &instance.boxMinY, &unreadMinZ, &instance.boxMaxX,
                                     &instance.boxMaxY, &unreadMaxZ);
    const PlaneBox box = BoxOf(instance);
    instance.telestrator.aspect = static_cast<float>(box.Width() / box.Height());
    return box.IsMappable();
}

Vector3 MapPointerToContainer(const PluginInstance& instance, ObjectHandle container, std::int32_t x, std::int32_t y) {
    const Matrix4 camera = CameraMatrix();
    Matrix4 toWorld;
    _api__container_get_transformation_matrix(container.id, toWorld.elements.data());

    const double fromBottom = static_cast<double>(instance.windowHeight) - y;
    Vector3 nearPoint(x, fromBottom, 0);
    Vector3 farPoint(x, fromBottom, 1);
    UnprojectPoint(nearPoint, camera, instance.windowWidth, instance.windowHeight);
    UnprojectPoint(farPoint, camera, instance.windowWidth, instance.windowHeight);
    return MeetPlane(nearPoint, farPoint, toWorld);
}

CanvasPosition MapPointerToCanvas(const PluginInstance& instance, ObjectHandle container, std::int32_t x,
                                  std::int32_t y) {
    return OnCanvas(MapPointerToContainer(instance, container, x, y), BoxOf(instance), instance.telestrator.canvasWidth,
                    instance.telestrator.canvasHeight);
}

}  // namespace chalkpane
