#pragma once

#include <array>
#include <cstdint>

namespace chalkpane {

// Points, matrices and the few constructions that the pointer mapping and the shape recognition need.
//
// Elements are 32-bit floats and every result that is a Vector3 is narrowed to them; everything between is double. A
// recognised shape depends on these widths, so they are part of the contract of each function here.

struct Vector3 {
    float x = 0;
    float y = 0;
    float z = 0;

    constexpr Vector3() = default;
    // Narrows.
    constexpr Vector3(double xValue, double yValue, double zValue)
        : x(static_cast<float>(xValue)), y(static_cast<float>(yValue)), z(static_cast<float>(zValue)) {}

    friend bool operator==(const Vector3&, const Vector3&) = default;

    Vector3& operator+=(const Vector3& other);
    Vector3& operator/=(float divisor);  // multiplies by 1 / divisor
    Vector3& operator*=(float factor);

    [[nodiscard]] double Length() const;
    // Gives the former length; a zero vector stays as it is.
    double Normalise();
};
static_assert(sizeof(Vector3) == 12);

[[nodiscard]] Vector3 operator+(const Vector3& a, const Vector3& b);
[[nodiscard]] Vector3 operator-(const Vector3& a, const Vector3& b);
[[nodiscard]] Vector3 operator*(const Vector3& vector, float factor);
[[nodiscard]] double Dot(const Vector3& a, const Vector3& b);
[[nodiscard]] Vector3 Cross(const Vector3& a, const Vector3& b);
[[nodiscard]] bool IsFinite(const Vector3& vector);

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

// (c - b) x (a - b), of length 1; zero for points on a line.
[[nodiscard]] Vector3 PlaneNormal(const Vector3& a, const Vector3& b, const Vector3& c);

// Where the ray from `origin` along `direction` meets the plane through `pointInPlane`; not finite when the two are
// parallel.
[[nodiscard]] Vector3 IntersectRayPlane(const Vector3& origin, const Vector3& pointInPlane, const Vector3& normal,
                                        const Vector3& direction);

// Heron's formula on squared sides.
[[nodiscard]] double TriangleArea(const Vector3& a, const Vector3& b, const Vector3& c);

// Segments a-b and c-e seen along z, ends included. False for parallel ones. `crossing` is written whenever the lines
// are not parallel, also where they meet outside the segments.
[[nodiscard]] bool SegmentsIntersect(const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& e,
                                     Vector3& crossing);

// Truncates towards zero; values beyond the range of an int end at its ends, and what is not a number gives 0.
[[nodiscard]] std::int32_t TruncateToInt(double value);

}  // namespace chalkpane
