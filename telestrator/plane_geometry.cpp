#include "telestrator/plane_geometry.h"

#include <algorithm>
#include <cmath>

namespace chalkpane {
namespace {

constexpr double narrowestBox = 0.0001;
constexpr double steepestView = 0.02;
constexpr double planeUnit = 1000;  // length of the plane's axes below, in its own coordinates

// How far `q` lies from the axis a-b towards `c`, in the plane's own coordinates: a ratio of triangle areas, which
// holds under any rotation and scaling.
double DistanceFromAxis(const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& q, const Vector3& normal) {
    const double distance = TriangleArea(a, b, q) * planeUnit / TriangleArea(a, b, c);
    return Dot(PlaneNormal(a, b, q), normal) < 0 ? -distance : distance;
}

}  // namespace

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

Vector3 MeetPlane(const Vector3& nearPoint, const Vector3& farPoint, const Matrix4& toWorld) {
    Vector3 ray = farPoint - nearPoint;
    ray.Normalise();

    const Vector3 origin = toWorld.Transform({0, 0, 0});
    const Vector3 xAxisEnd = toWorld.Transform({planeUnit, 0, 0});
    const Vector3 yAxisEnd = toWorld.Transform({0, planeUnit, 0});
    const Vector3 normal = PlaneNormal(origin, xAxisEnd, yAxisEnd);
    // KEEP: a plane seen edge-on gives a fixed point, which is mapped and painted like any other.
    if (std::abs(Dot(normal, ray)) < steepestView) return {0, 0, -planeUnit};

    const Vector3 hit = IntersectRayPlane(nearPoint, origin, normal, ray);
    const double mappedY = DistanceFromAxis(origin, xAxisEnd, yAxisEnd, hit, normal);
    const double mappedX = DistanceFromAxis(yAxisEnd, origin, xAxisEnd, hit, normal);
    return {mappedX, mappedY, 0};
}

bool PlaneBox::IsMappable() const { return Width() > narrowestBox && Height() > narrowestBox; }

CanvasPosition OnCanvas(const Vector3& point, const PlaneBox& box, std::int32_t canvasWidth,
                        std::int32_t canvasHeight) {
    const double lastColumn = canvasWidth - 1;
    const double lastRow = canvasHeight - 1;
    return {(double{point.x} - box.minX) * lastColumn / box.Width(),
            lastRow - (double{point.y} - box.minY) * lastRow / box.Height()};
}

}  // namespace chalkpane
