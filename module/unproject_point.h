#pragma once

#include <cstdint>

#include "telestrator/plane_geometry.h"

namespace chalkpane {

// `point` in window pixels and depth 0 .. 1 becomes a point of the world. `camera` is projection times view, the
// viewport (0, 0, width, height). Where the host cannot unproject, the point stays as it is.
void UnprojectPoint(Vector3& point, const Matrix4& camera, std::int32_t width, std::int32_t height);

}  // namespace chalkpane
