#include "module/plane_geometry.h"

#include <algorithm>
#include <cmath>

#include "module/abi/host_api.h"

namespace chalkpane {

Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {double{a.y} * b.z - double{a.z} * b.y, double{a.z} * b.x - double{a.x} * b.z,
            double{a.x} * b.y - double{a.y} * b.x};
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

}  // namespace chalkpane
