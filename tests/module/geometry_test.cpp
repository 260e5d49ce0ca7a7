#include "module/geometry.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "tests/module/recording_host.h"

namespace chalkpane::testing {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

TEST_CASE("Normalise gives the former length") {
    Vector3 vector(3, 4, 0);
    CHECK_EQ(vector.Normalise(), 5.0);
    CHECK_EQ(vector, Vector3(3 * (1.0 / 5), 4 * (1.0 / 5), 0));
}

TEST_CASE("Normalise leaves a zero vector as it is") {
    Vector3 zero;
    CHECK_EQ(zero.Normalise(), 0.0);
    CHECK_EQ(zero, Vector3());
}

// 41 is a number whose reciprocal, rounded to a float, does not lead back to 1; in double the product narrows to 1.
TEST_CASE("Division multiplies by the reciprocal in double") {
    Vector3 vector(41, 82, 7);
    vector /= 41;
    CHECK_EQ(vector, Vector3(1, 2, 7 * (1.0 / 41)));
}

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

TEST_CASE("Segments that touch at their ends intersect") {
    Vector3 crossing;
    CHECK(SegmentsIntersect({0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 5, 0}, crossing));
    CHECK_EQ(crossing, Vector3(10, 0, 0));
    CHECK(SegmentsIntersect({0, 0, 0}, {10, 10, 0}, {0, 10, 0}, {10, 0, 0}, crossing));
    CHECK_EQ(crossing, Vector3(5, 5, 0));
}

TEST_CASE("Parallel segments do not intersect, not even on one line") {
    Vector3 crossing(1, 2, 3);
    CHECK_FALSE(SegmentsIntersect({0, 0, 0}, {10, 0, 0}, {5, 0, 0}, {15, 0, 0}, crossing));
    CHECK_EQ(crossing, Vector3(1, 2, 3));
}

TEST_CASE("The crossing of the lines is written also where the segments miss") {
    Vector3 crossing;
    CHECK_FALSE(SegmentsIntersect({0, 0, 0}, {1, 0, 0}, {4, -1, 0}, {4, 1, 0}, crossing));
    CHECK_EQ(crossing, Vector3(4, 0, 0));
}

TEST_CASE("Truncation goes towards zero and ends at the ends of the range") {
    CHECK_EQ(TruncateToInt(2.9), 2);
    CHECK_EQ(TruncateToInt(-2.9), -2);
    CHECK_EQ(TruncateToInt(1e300), std::numeric_limits<std::int32_t>::max());
    CHECK_EQ(TruncateToInt(-1e300), std::numeric_limits<std::int32_t>::min());
    CHECK_EQ(TruncateToInt(infinity), std::numeric_limits<std::int32_t>::max());
    CHECK_EQ(TruncateToInt(std::nan("")), 0);
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
