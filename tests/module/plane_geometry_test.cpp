#include "telestrator/plane_geometry.h"

#include <doctest/doctest.h>

#include <cmath>

#include "module/unproject_point.h"
#include "tests/module/recording_host.h"

namespace chalkpane::testing {
namespace {

TEST_CASE("A matrix moves points by elements 12, 13, 14 and does not divide by w") {
    Matrix4 matrix;
    matrix.elements[12] = 10;
    matrix.elements[13] = 20;
    matrix.elements[14] = 30;
    matrix.elements[15] = 5;
    matrix.elements[4] = 2;  // x' takes 2 y
    CHECK_EQ(matrix.Transform({1, 2, 3}), Vector3(1 + 2 * 2 + 10, 22, 33));
}

TEST_CASE("The plane's normal is (c - b) x (a - b)") {
    // (0,1,0) - (1,0,0) = (-1,1,0); (0,0,0) - (1,0,0) = (-1,0,0); their product is (0,0,1).
    CHECK_EQ(PlaneNormal({0, 0, 0}, {1, 0, 0}, {0, 1, 0}), Vector3(0, 0, 1));
    CHECK_EQ(PlaneNormal({0, 0, 0}, {1, 0, 0}, {2, 0, 0}), Vector3());
}

TEST_CASE("A ray meets a plane") {
    // t = (N.P - N.O) / (N.D) = (2 - 5) / -1 = 3.
    CHECK_EQ(IntersectRayPlane({1, 1, 5}, {0, 0, 2}, {0, 0, 1}, {0, 0, -1}), Vector3(1, 1, 2));
}

TEST_CASE("A ray along the plane meets it nowhere finite") {
    CHECK_FALSE(IsFinite(IntersectRayPlane({0, 0, 5}, {0, 0, 2}, {0, 0, 1}, {1, 0, 0})));
}

TEST_CASE("Heron's formula on squared sides") {
    // Sides squared 9, 16, 25 in some order: sqrt(4 * 9 * 16) / 4 = 24 / 4 = 6.
    CHECK_EQ(TriangleArea({0, 0, 0}, {3, 0, 0}, {0, 4, 0}), 6.0);
    CHECK_EQ(TriangleArea({0, 0, 0}, {1, 0, 0}, {3, 0, 0}), 0.0);
}

TEST_CASE("A triangle without area never gives the root of a negative number") {
    for (int i = 1; i < 1000; ++i) {
        const Vector3 along(0.1 * i, 0.3 * i, 0.7 * i);
        CHECK_FALSE(std::isnan(TriangleArea({0, 0, 0}, along, along * 1.7F)));
    }
}

TEST_CASE("A point that cannot be unprojected stays as it is") {
    RecordingHost host;
    host.unprojects = false;
    Vector3 point(12, 34, 1);
    UnprojectPoint(point, Matrix4(), 100, 100);
    CHECK_EQ(point, Vector3(12, 34, 1));
}

TEST_CASE("Unprojection takes window pixels to the world") {
    RecordingHost host;
    Vector3 point(75, 50, 1);  // in a window of 100 x 100: (0.5, 0, 1) in the unit cube
    UnprojectPoint(point, Matrix4(), 100, 100);
    CHECK_EQ(point, Vector3(0.5, 0, 1));
}

}  // namespace
}  // namespace chalkpane::testing
