#include "kel/scene/picking.h"

#include <GL/glu.h>

#include <cmath>
#include <limits>
#include <optional>

namespace kel {
namespace {

// Between the near plane, 0, and the far plane, 1.
constexpr double missed = std::numeric_limits<double>::infinity();

struct Ray {
    Point3 nearPoint;
    Point3 farPoint;
};

// The ray through a window point, in the coordinates that `world` leads out of.
std::optional<Ray> RayThrough(const Matrix& world, const Matrix& camera, WindowSize window, double x, double y) {
    const std::array<GLint, 4> viewport{0, 0, window.width, window.height};
    const auto unproject = [&](double depth, Point3& point) {
        return gluUnProject(x, window.height - y, depth, world.data(), camera.data(), viewport.data(), &point[0],
                            &point[1], &point[2]) == GLU_TRUE;
    };
    Ray ray{};
    if (!unproject(0, ray.nearPoint) || !unproject(1, ray.farPoint)) return std::nullopt;
    return ray;
}

// A ray nearer to the plane than this share of its length runs within it, and what is seen edge-on is not seen.
constexpr double edgeOn = 1e-9;

// How far along the ray it meets the rectangle around the origin in the plane z = 0.
double MeetRectangle(const Ray& ray, const std::array<double, 2>& size) {
    const double across = ray.nearPoint[2] - ray.farPoint[2];
    const double length = std::hypot(ray.nearPoint[0] - ray.farPoint[0], ray.nearPoint[1] - ray.farPoint[1], across);
    if (!(std::abs(across) > edgeOn * length)) return missed;
    const double along = ray.nearPoint[2] / across;
    if (!(along >= 0 && along <= 1)) return missed;
    for (std::size_t axis = 0; axis < 2; ++axis) {
        const double at = ray.nearPoint[axis] + along * (ray.farPoint[axis] - ray.nearPoint[axis]);
        if (!(std::abs(at) <= size[axis] / 2)) return missed;
    }
    return along;
}

}  // namespace

double Aspect(WindowSize window) { return static_cast<double>(window.width) / window.height; }

Matrix CurrentCameraMatrix(HostState& state) {
    const auto* scene = state.objects.Find<SceneObject>(state.scene);
    const auto* camera = state.objects.Find<CameraObject>(scene->camera);
    return CameraMatrix(camera->camera, Aspect(state.window));
}

ObjectId ContainerUnder(HostState& state, std::int32_t x, std::int32_t y) {
    const Matrix camera = CurrentCameraMatrix(state);
    ObjectId nearest = noObject;
    double shortest = missed;
    state.objects.ForEach<ContainerObject>([&](ObjectId id, const ContainerObject& container) {
        Placement placement = container.placement;
        placement.scale[2] = 1;  // a rectangle has no depth, and a scale of 0 could not be led back
        const auto ray = RayThrough(WorldMatrix(placement), camera, state.window, x, y);
        const double along = ray ? MeetRectangle(*ray, placement.size) : missed;
        if (along == missed || along > shortest) return;
        shortest = along;
        nearest = id;
    });
    return nearest;
}

}  // namespace kel
