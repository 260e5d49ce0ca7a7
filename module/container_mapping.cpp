#include "module/container_mapping.h"

#include <cmath>

#include "module/abi/host_api.h"
#include "module/plane_geometry.h"

namespace chalkpane {
namespace {

// The host's look-ups take these in writable storage.
char sceneName[] = "SCENE";
char renderCameraName[] = "RENDERCAMERA";
constexpr std::int32_t renderCameraKind = 62;

constexpr double narrowestBox = 0.0001;
constexpr double steepestView = 0.02;
constexpr double planeUnit = 1000;  // length of the plane's axes below, in the container's coordinates

Matrix4 CameraMatrix() {
    std::int32_t unreadResult = 0;
    const std::int32_t scene = _api__get_sceneid_local(sceneName, 0);
    const std::int32_t current = _api__get_scene_current_camera(scene, &unreadResult);
    const std::int32_t camera = _api__get_cameraid(current, renderCameraName, renderCameraKind);
    Matrix4 matrix;
    _api__get_camera_matrix(camera, matrix.elements.data());
    return matrix;
}

// How far `q` lies from the axis a-b towards `c`, in the container's coordinates: a ratio of triangle areas, which
// holds under any rotation and scaling of the container.
double DistanceFromAxis(const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& q, const Vector3& normal) {
    const double distance = TriangleArea(a, b, q) * planeUnit / TriangleArea(a, b, c);
    return Dot(PlaneNormal(a, b, q), normal) < 0 ? -distance : distance;
}

}  // namespace

bool ReadBoundingBox(PluginInstance& instance, ObjectHandle container) {
    float unreadMinZ = 0;
    float unreadMaxZ = 0;
    _api__container_get_bounding_box(container.id, &instance.boxMinX, &instance.boxMinY, &unreadMinZ, &instance.boxMaxX,
                                     &instance.boxMaxY, &unreadMaxZ);
    const double width = double{instance.boxMaxX} - instance.boxMinX;
    const double height = double{instance.boxMaxY} - instance.boxMinY;
    instance.telestrator.aspect = static_cast<float>(width / height);
    return width > narrowestBox && height > narrowestBox;
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
    Vector3 ray = farPoint - nearPoint;
    ray.Normalise();

    const Vector3 origin = toWorld.Transform({0, 0, 0});
    const Vector3 xAxisEnd = toWorld.Transform({planeUnit, 0, 0});
    const Vector3 yAxisEnd = toWorld.Transform({0, planeUnit, 0});
    const Vector3 normal = PlaneNormal(origin, xAxisEnd, yAxisEnd);
    // KEEP: a container seen edge-on gives a fixed point, which is mapped and painted like any other.
    if (std::abs(Dot(normal, ray)) < steepestView) return {0, 0, -planeUnit};

    const Vector3 hit = IntersectRayPlane(nearPoint, origin, normal, ray);
    const double mappedY = DistanceFromAxis(origin, xAxisEnd, yAxisEnd, hit, normal);
    const double mappedX = DistanceFromAxis(yAxisEnd, origin, xAxisEnd, hit, normal);
    return {mappedX, mappedY, 0};
}

CanvasPosition MapPointerToCanvas(const PluginInstance& instance, ObjectHandle container, std::int32_t x,
                                  std::int32_t y) {
    const Vector3 point = MapPointerToContainer(instance, container, x, y);
    const double lastColumn = instance.telestrator.canvasWidth - 1;
    const double lastRow = instance.telestrator.canvasHeight - 1;
    const double boxWidth = double{instance.boxMaxX} - instance.boxMinX;
    const double boxHeight = double{instance.boxMaxY} - instance.boxMinY;
    return {(double{point.x} - instance.boxMinX) * lastColumn / boxWidth,
            lastRow - (double{point.y} - instance.boxMinY) * lastRow / boxHeight};
}

}  // namespace chalkpane
