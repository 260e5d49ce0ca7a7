#pragma once

#include <array>

#include "kel/scene/scene.h"

namespace kel {

// Four by four, in OpenGL's order: elements 12, 13, 14 are the translation. (a * b) does b first.
using Matrix = std::array<double, 16>;

[[nodiscard]] Matrix Identity();
[[nodiscard]] Matrix operator*(const Matrix& a, const Matrix& b);

// A container's own coordinates divided by this are its texture coordinates, on all units.
constexpr double coordinatesPerTexture = 100.0;

// From the container's own coordinates to the world.
[[nodiscard]] Matrix WorldMatrix(const Placement& placement);

// From the world to the unit cube: projection times view. The near plane lies at a hundredth of the distance to the
// target, the far plane at a hundred times the distance.
//   aspect  width over height of the window
[[nodiscard]] Matrix CameraMatrix(const Camera& camera, double aspect);

}  // namespace kel
