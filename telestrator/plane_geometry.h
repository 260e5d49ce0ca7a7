#pragma once

#include <array>
#include <cstdint>

#include "telestrator/geometry.h"

namespace chalkpane {

// Matrices, rays and planes: what a front end needs to map what its operator points at in a scene to the canvas. Widths
// as in telestrator/geometry.h. No host is known here: the ray through a window pixel is the front end's.

// Sixteen floats as OpenGL stores them: elements 12, 13, 14 are the translation. Starts as the identity.
struct Matrix4 {
    std::array<float, 16> elements;

    Matrix4() { SetIdentity(); }
    void SetIdentity();
    [[nodiscard]] std::array<double, 16> Widen() const;
    // No division by w.
    [[nodiscard]] Vector3 Transform(const Vector3& point) const;
};

[[nodiscard]] Vector3 Cross(const Vector3& a, const Vector3& b);

// (c - b) x (a - b), of length 1; zero for points on a line.
[[nodiscard]] Vector3 PlaneNormal(const Vector3& a, const Vector3& b, const Vector3& c);

// Where the ray from `origin` along `direction` meets the plane through `pointInPlane`; not finite when the two are
// parallel.
[[nodiscard]] Vector3 IntersectRayPlane(const Vector3& origin, const Vector3& pointInPlane, const Vector3& normal,
                                        const Vector3& direction);

// Heron's formula on squared sides.
[[nodiscard]] double TriangleArea(const Vector3& a, const Vector3& b, const Vector3& c);

// Where the line through the two points meets the plane z = 0 of what `toWorld` places in the world, in its own
// coordinates. (0, 0, -1000) where the plane is seen nearly edge-on.
[[nodiscard]] Vector3 MeetPlane(const Vector3& nearPoint, const Vector3& farPoint, const Matrix4& toWorld);

// The box in its own coordinates that a canvas is spread over.
struct PlaneBox {
    float minX = 0;
    float maxX = 0;
    float minY = 0;
    float maxY = 0;

    [[nodiscard]] double Width() const { return double{maxX} - minX; }
    [[nodiscard]] double Height() const { return double{maxY} - minY; }
    // False: too narrow or too flat to map anything.
    [[nodiscard]] bool IsMappable() const;
};

// A point of the plane as a position on the canvas of so many pixels. Not clamped: beyond the box lies beyond the
// canvas.
[[nodiscard]] CanvasPosition OnCanvas(const Vector3& point, const PlaneBox& box, std::int32_t canvasWidth,
                                      std::int32_t canvasHeight);

}  // namespace chalkpane
