#include "module/unproject_point.h"

#include <array>

#include "module/abi/host_api.h"

namespace chalkpane {

void UnprojectPoint(Vector3& point, const Matrix4& camera, std::int32_t width, std::int32_t height) {
    const auto model = Matrix4().Widen();
    const auto projection = camera.Widen();
    const std::array<std::int32_t, 4> viewport{0, 0, width, height};
    double x = 0;
    double y = 0;
    double z = 0;
    if (kelGL_gluUnProject(point.x, point.y, point.z, model.data(), projection.data(), viewport.data(), &x, &y, &z) !=
        0) {
        point = Vector3(x, y, z);
    }
}

}  // namespace chalkpane
