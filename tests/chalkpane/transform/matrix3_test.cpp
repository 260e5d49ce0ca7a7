#include "chalkpane/transform/matrix3.h"

#include <doctest/doctest.h>

#include <limits>
#include <numbers>

namespace chalkpane {

TEST_CASE("a fresh matrix is the identity") {
    CHECK_EQ(Matrix3().Transform(3.5, -2.0), Point2{3.5, -2.0});
    CHECK_EQ(Matrix3() * Matrix3(), Matrix3());
}

// (2, 3) moved by (1, 1) is (3, 4), then scaled by (10, 100) is (30, 400); the other way round (21, 301).
TEST_CASE("a product reads in the order in which its transforms happen") {
    const Matrix3 move = Matrix3::Translation(1.0, 1.0);
    const Matrix3 scale = Matrix3::Scaling(10.0, 100.0);
    CHECK_EQ((move * scale).Transform(2.0, 3.0), Point2{30.0, 400.0});
    CHECK_EQ((scale * move).Transform(2.0, 3.0), Point2{21.0, 301.0});
}

TEST_CASE("a positive turn takes the x axis towards the y axis") {
    const Point2 rotated = Matrix3::Rotation(std::numbers::pi / 2).Transform(1.0, 0.0);
    CHECK(rotated.x == doctest::Approx(0.0));
    CHECK(rotated.y == doctest::Approx(1.0));
}

// The inverse of scaling by 4 and 2 and moving by (3, 5) scales by 1/4 and 1/2 and moves by (-3/4, -5/2): exact in
// doubles.
TEST_CASE("the inverse undoes") {
    const Matrix3 inverse = (Matrix3::Scaling(4.0, 2.0) * Matrix3::Translation(3.0, 5.0)).Inverse();
    CHECK_EQ(inverse, Matrix3::Scaling(0.25, 0.5) * Matrix3::Translation(-0.75, -2.5));
    CHECK(Matrix3::Rotation(0.3).IsInvertible());
}

TEST_CASE("a matrix without inverse says so") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    CHECK_FALSE(Matrix3::Scaling(0.0, 1.0).IsInvertible());
    CHECK_FALSE(Matrix3::Scaling(0.0, 1.0).Inverse().IsFinite());
    CHECK_FALSE(Matrix3::Translation(nan, 0.0).IsInvertible());
    CHECK_FALSE(Matrix3::Scaling(1e-320, 1e-320).IsInvertible());
}

}  // namespace chalkpane
