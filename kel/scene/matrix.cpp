#include "kel/scene/matrix.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace kel {
namespace {

constexpr double nearShare = 0.01;
constexpr double farShare = 100.0;

double Radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

Point3 Difference(const Point3& a, const Point3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
double Dot(const Point3& a, const Point3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double Length(const Point3& a) { return std::sqrt(Dot(a, a)); }

Point3 Cross(const Point3& a, const Point3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Point3 Normalised(const Point3& a) {
    const double length = Length(a);
    return {a[0] / length, a[1] / length, a[2] / length};
}

Matrix Translation(const Point3& by) {
    Matrix matrix = Identity();
    for (std::size_t axis = 0; axis < 3; ++axis) matrix[12 + axis] = by[axis];
    return matrix;
}

Matrix Scaling(const Point3& by) {
    Matrix matrix = Identity();
    for (std::size_t axis = 0; axis < 3; ++axis) matrix[axis * 5] = by[axis];
    return matrix;
}

// Rotates the axis after `axis` towards the one after that: about x, y towards z.
Matrix Rotation(std::size_t axis, double degrees) {
    const std::size_t from = (axis + 1) % 3;
    const std::size_t to = (axis + 2) % 3;
    Matrix matrix = Identity();
    matrix[from * 5] = matrix[to * 5] = std::cos(Radians(degrees));
    matrix[from * 4 + to] = std::sin(Radians(degrees));
    matrix[to * 4 + from] = -std::sin(Radians(degrees));
    return matrix;
}

Matrix View(const Camera& camera) {
    const Point3 back = Normalised(Difference(camera.position, camera.target));
    Point3 right = Cross(camera.up, back);
    // Straight along `up`: any other axis keeps the picture from collapsing; -z is up on a map seen from above.
    if (Length(right) < 1e-9 * Length(camera.up)) right = Cross({0, 0, -1}, back);
    if (Length(right) < 1e-9) right = Cross({0, 1, 0}, back);
    right = Normalised(right);
    const Point3 up = Cross(back, right);
    const Matrix turn{right[0], up[0], back[0], 0, right[1], up[1], back[1], 0,
                      right[2], up[2], back[2], 0, 0,        0,     0,       1};
    return turn * Translation({-camera.position[0], -camera.position[1], -camera.position[2]});
}

Matrix Perspective(double fieldOfView, double aspect, double nearPlane, double farPlane) {
    const double focal = 1.0 / std::tan(Radians(fieldOfView) / 2.0);
    Matrix matrix{};
    matrix[0] = focal / aspect;
    matrix[5] = focal;
    matrix[10] = (farPlane + nearPlane) / (nearPlane - farPlane);
    matrix[11] = -1;
    matrix[14] = 2.0 * farPlane * nearPlane / (nearPlane - farPlane);
    return matrix;
}

}  // namespace

Matrix Identity() { return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; }

Matrix operator*(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t i = 0; i < 4; ++i) product[column * 4 + row] += a[i * 4 + row] * b[column * 4 + i];
    return product;
}

Matrix WorldMatrix(const Placement& placement) {
    const auto& angle = placement.rotation;
    return Translation(placement.position) * Rotation(2, angle[2]) * Rotation(1, angle[1]) * Rotation(0, angle[0]) *
           Scaling(placement.scale);
}

Matrix CameraMatrix(const Camera& camera, double aspect) {
    const double distance = Length(Difference(camera.position, camera.target));
    return Perspective(camera.fieldOfView, aspect, nearShare * distance, farShare * distance) * View(camera);
}

}  // namespace kel
