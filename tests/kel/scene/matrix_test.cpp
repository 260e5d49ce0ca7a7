#include "kel/scene/matrix.h"

#include <doctest/doctest.h>

#include <cmath>
#include <numbers>

namespace kel {
namespace {

// Divided by w.
Point3 Transformed(const Matrix& m, const Point3& p) {
    std::array<double, 4> to{};
    for (std::size_t row = 0; row < 4; ++row)
        to[row] = m[row] * p[0] + m[4 + row] * p[1] + m[8 + row] * p[2] + m[12 + row];
    return {to[0] / to[3], to[1] / to[3], to[2] / to[3]};
}

void CheckPoint(const Point3& point, const Point3& wanted) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        CAPTURE(axis);
        CHECK_EQ(point[axis], doctest::Approx(wanted[axis]).scale(1).epsilon(1e-9));
    }
}

Placement Rotated(const Point3& rotation) {
    Placement placement;
    placement.rotation = rotation;
    return placement;
}

}  // namespace

TEST_CASE("A product does its right side first") {
    Placement moved;
    moved.position = {1, 0, 0};
    Placement doubled;
    doubled.scale = {2, 2, 2};
    CheckPoint(Transformed(WorldMatrix(moved) * WorldMatrix(doubled), {1, 0, 0}), {3, 0, 0});
    CheckPoint(Transformed(WorldMatrix(doubled) * WorldMatrix(moved), {1, 0, 0}), {4, 0, 0});
}

TEST_CASE("A quarter turn about an axis leads the next axis to the one after it") {
    CheckPoint(Transformed(WorldMatrix(Rotated({90, 0, 0})), {0, 1, 0}), {0, 0, 1});
    CheckPoint(Transformed(WorldMatrix(Rotated({0, 90, 0})), {0, 0, 1}), {1, 0, 0});
    CheckPoint(Transformed(WorldMatrix(Rotated({0, 0, 90})), {1, 0, 0}), {0, 1, 0});
}

// About x: (0, 1, 0) becomes (0, 0, 1); then about y that becomes (1, 0, 0); then about z that becomes (0, 1, 0).
TEST_CASE("A container is rotated about x, then y, then z") {
    CheckPoint(Transformed(WorldMatrix(Rotated({90, 90, 90})), {0, 1, 0}), {0, 1, 0});
}

// (1, 1, 0) scaled is (2, 3, 0), a quarter turn about z makes it (-3, 2, 0), moved it is (7, 22, 30).
TEST_CASE("A container is scaled, then rotated, then moved") {
    Placement placement;
    placement.position = {10, 20, 30};
    placement.rotation = {0, 0, 90};
    placement.scale = {2, 3, 4};
    CheckPoint(Transformed(WorldMatrix(placement), {1, 1, 0}), {7, 22, 30});
    CHECK_EQ(WorldMatrix(placement)[12], 10.0);
    CHECK_EQ(WorldMatrix(placement)[13], 20.0);
    CHECK_EQ(WorldMatrix(placement)[14], 30.0);
}

// From 10 away at 90 degrees, 10 are seen to each side: tan 45 degrees = 1.
TEST_CASE("What is half the field of view above the target stands at the top of the window") {
    Camera camera;
    camera.position = {0, 0, 10};
    camera.fieldOfView = 90;
    const Matrix matrix = CameraMatrix(camera, 2);
    const Point3 top = Transformed(matrix, {0, 10, 0});
    CHECK_EQ(top[0], doctest::Approx(0));
    CHECK_EQ(top[1], doctest::Approx(1));
    CHECK_EQ(Transformed(matrix, {20, 0, 0})[0], doctest::Approx(1));  // twice as wide as high
}

// Distance 10: the near plane is 0.1 in front of the camera, the far plane 1000.
TEST_CASE("The near plane is at depth -1 and the far plane at depth 1") {
    Camera camera;
    camera.position = {0, 0, 10};
    const Matrix matrix = CameraMatrix(camera, 1);
    CHECK_EQ(Transformed(matrix, {0, 0, 9.9})[2], doctest::Approx(-1));
    CHECK_EQ(Transformed(matrix, {0, 0, -990})[2], doctest::Approx(1));
}

TEST_CASE("A camera seen from the side keeps y upwards and turns x away") {
    Camera camera;
    camera.position = {10, 0, 0};  // looks along -x, so that -z lies to the right
    camera.fieldOfView = 90;
    const Matrix matrix = CameraMatrix(camera, 1);
    CHECK_EQ(Transformed(matrix, {0, 0, -10})[0], doctest::Approx(1));
    CHECK_EQ(Transformed(matrix, {0, 10, 0})[1], doctest::Approx(1));
}

TEST_CASE("A camera that looks straight down has the far side, -z, at the top") {
    Camera camera;
    camera.position = {0, 10, 0};
    camera.fieldOfView = 90;
    const Matrix matrix = CameraMatrix(camera, 1);
    CHECK_EQ(Transformed(matrix, {0, 0, -10})[1], doctest::Approx(1));
    CHECK_EQ(Transformed(matrix, {10, 0, 0})[0], doctest::Approx(1));
}

TEST_CASE("An up that points along the view gives a picture all the same") {
    Camera camera;
    camera.position = {0, 0, -10};
    camera.up = {0, 0, 1};
    for (const double element : CameraMatrix(camera, 1)) CHECK(std::isfinite(element));
}

}  // namespace kel
