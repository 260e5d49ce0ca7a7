#include "module/geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "module/abi/host_api.h"

namespace chalkpane {

Vector3& Vector3::operator+=(const Vector3& other) { return *this = *this + other; }

Vector3& Vector3::operator/=(float divisor) {
    const double factor = 1.0 / double{divisor};
    return *this = Vector3(x * factor, y * factor, z * factor);
}

Vector3& Vector3::operator*=(float factor) { return *this = *this * factor; }

double Vector3::Length() const { return std::sqrt(Dot(*this, *this)); }

double Vector3::Normalise() {
    const double length = Length();
    if (const auto divisor = static_cast<float>(length); divisor != 0.0F) *this /= divisor;
    return length;
}

Vector3 operator+(const Vector3& a, const Vector3& b) {
    return {double{a.x} + b.x, double{a.y} + b.y, double{a.z} + b.z};
}

Vector3 operator-(const Vector3& a, const Vector3& b) {
    return {double{a.x} - b.x, double{a.y} - b.y, double{a.z} - b.z};
}

Vector3 operator*(const Vector3& vector, float factor) {
    return {double{vector.x} * factor, double{vector.y} * factor, double{vector.z} * factor};
}

double Dot(const Vector3& a, const Vector3& b) { return double{a.x} * b.x + double{a.y} * b.y + double{a.z} * b.z; }

Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {double{a.y} * b.z - double{a.z} * b.y, double{a.z} * b.x - double{a.x} * b.z,
            double{a.x} * b.y - double{a.y} * b.x};
}

bool IsFinite(const Vector3& vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

void Matrix4::SetIdentity() {
    elements.fill(0);
    for (std::size_t i = 0; i < elements.size(); i += 5) elements[i] = 1;
}

std::array<double, 16> Matrix4::Widen() const {
    std::array<double, 16> wide{};
    std::copy(elements.begin(), elements.end(), wide.begin());
    return wide;
}

Vector3 Matrix4::Transform(const Vector3& point) const {
    const auto row = [&](std::size_t i) {
        return double{elements[i]} * point.x + double{elements[i + 4]} * point.y + double{elements[i + 8]} * point.z +
               elements[i + 12];
    };
    return {row(0), row(1), row(2)};
}

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

Vector3 PlaneNormal(const Vector3& a, const Vector3& b, const Vector3& c) {
    Vector3 normal = Cross(c - b, a - b);
    normal.Normalise();
    return normal;
}

Vector3 IntersectRayPlane(const Vector3& origin, const Vector3& pointInPlane, const Vector3& normal,
                          const Vector3& direction) {
    const double t = (Dot(normal, pointInPlane) - Dot(normal, origin)) / Dot(normal, direction);
    return origin + direction * static_cast<float>(t);
}

double TriangleArea(const Vector3& a, const Vector3& b, const Vector3& c) {
    const auto squaredDistance = [](const Vector3& from, const Vector3& to) {
        const Vector3 side = from - to;
        return Dot(side, side);
    };
    const double ab = squaredDistance(a, b);
    const double bc = squaredDistance(b, c);
    const double ca = squaredDistance(c, a);
    const double difference = ab - bc + ca;
    // For a triangle without area the two products may cross by rounding: hence the absolute value.
    return std::sqrt(std::abs(4 * ca * ab - difference * difference)) / 4;
}

bool SegmentsIntersect(const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& e, Vector3& crossing) {
    const Vector3 u = b - a;
    const Vector3 v = e - c;
    const double denominator = double{u.x} * v.y - double{v.x} * u.y;
    if (denominator == 0) return false;
    const double fromX = double{a.x} - c.x;
    const double fromY = double{a.y} - c.y;
    const double s = (fromY * v.x - fromX * v.y) / denominator;
    const double t = (fromY * u.x - fromX * u.y) / denominator;
    crossing = a + u * static_cast<float>(s);
    return s >= 0 && s <= 1 && t >= 0 && t <= 1;
}

std::int32_t TruncateToInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::clamp(value, double{Limits::min()}, double{Limits::max()}));
}

}  // namespace chalkpane
