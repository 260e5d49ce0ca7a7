#pragma once

#include <array>
#include <cstdint>

#include "telestrator/geometry.h"

namespace chalkpane {

// Matrices, rays and planes: what the mapping from window pixels to the container's plane needs. Widths as in
// telestrator/geometry.h.

// Sixteen floats as OpenGL stores them: elements 12, 13, 14 are the translation. Starts as the identity.
struct Matrix4 {
    std::array<float, 16> elements;

    Matrix4() { SetIdentity(); }
    void SetIdentity();
    [[nodiscard]] std::array<double, 16> Widen() const;
    // No division by w.
    [[nodiscard]] Vector3 Transform(const Vector3& point) const;
};

// `point` in window pixels and depth 0 .. 1 becomes a point of the world. `camera` is projection times view, the
// viewport (0, 0, width, height). Where the host cannot unproject, the point stays as it is.
void UnprojectPoint(Vector3& point, const Matrix4& camera, std::int32_t width, std::int32_t height);

[[nodiscard]] Vector3 Cross(const Vector3& a, const Vector3& b);

// (c - b) x (a - b), of length 1; zero for points on a line.
[[nodiscard]] Vector3 PlaneNormal(const Vector3& a, const Vector3& b, const Vector3& c);

// Where the ray from `origin` along `direction` meets the plane through `pointInPlane`; not finite when the two are
// parallel.
[[nodiscard]] Vector3 IntersectRayPlane(const Vector3& origin, const Vector3& pointInPlane, const Vector3& normal,
                                        const Vector3& direction);

// Heron's formula on squared sides.
[[nodiscard]] double TriangleArea(const Vector3& a, const Vector3& b, const Vector3& c);

}  // namespace chalkpane
