#include "telestrator/geometry.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

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

}  // namespace
}  // namespace chalkpane::testing
