#pragma once

#include <cmath>
#include <cstdint>

namespace chalkpane {

// Points and the few constructions that the shape recognition needs.
//
// Elements are 32-bit floats and every result that is a Vector3 is narrowed to them; everything between is double. A
// recognised shape depends on these widths, so they are part of the contract of each function here.

// Canvas pixels, 0 .. canvasWidth - 1 from the left and from the top inside the canvas, and not clamped.
struct CanvasPosition {
    double x = 0;
    double y = 0;
};

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

[[nodiscard]] constexpr Vector3 operator+(const Vector3& a, const Vector3& b) {
    return {double{a.x} + b.x, double{a.y} + b.y, double{a.z} + b.z};
}
[[nodiscard]] constexpr Vector3 operator-(const Vector3& a, const Vector3& b) {
    return {double{a.x} - b.x, double{a.y} - b.y, double{a.z} - b.z};
}
[[nodiscard]] constexpr Vector3 operator*(const Vector3& vector, float factor) {
    return {double{vector.x} * factor, double{vector.y} * factor, double{vector.z} * factor};
}
[[nodiscard]] constexpr double Dot(const Vector3& a, const Vector3& b) {
    return double{a.x} * b.x + double{a.y} * b.y + double{a.z} * b.z;
}
inline double Vector3::Length() const { return std::sqrt(Dot(*this, *this)); }
[[nodiscard]] bool IsFinite(const Vector3& vector);

// Segments a-b and c-e seen along z, ends included. False for parallel ones. `crossing` is written whenever the lines
// are not parallel, also where they meet outside the segments.
[[nodiscard]] bool SegmentsIntersect(const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& e,
                                     Vector3& crossing);

// Truncates towards zero; values beyond the range of an int end at its ends, and NaN gives 0.
[[nodiscard]] std::int32_t TruncateToInt(double value);

}  // namespace chalkpane
