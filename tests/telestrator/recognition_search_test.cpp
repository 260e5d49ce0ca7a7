#include <doctest/doctest.h>

#include "chalkpane/base/multi_processor.h"
#include "telestrator/recognition/circle_search.h"
#include "telestrator/recognition/ellipse_fit.h"
#include "telestrator/recognition/shape_recognition.h"
#include "tests/reference/recognition_reference.h"
#include "tests/telestrator/stroke_shapes.h"

namespace chalkpane::testing {
namespace {

constexpr std::uint32_t seed = 20240607;

void CheckSameEllipse(const Points& points, double tolerance) {
    const Vector3 centroid = Centroid(points);
    const EllipseFit got = FitEllipse(points, centroid, tolerance, canvasSize);
    const reference::Ellipse wanted = reference::FitEllipse(points, centroid, tolerance);
    CHECK_EQ(got.count, wanted.count);
    if (wanted.count == 0) return;
    CHECK_EQ(got.angle, wanted.angle);
    CHECK_EQ(got.halfWidth, wanted.a);
    CHECK_EQ(got.halfHeight, wanted.b);
    CHECK_EQ(got.centre, Vector3(wanted.centreX, wanted.centreY, 0));
}

void CheckSameCircle(const Points& points, std::vector<std::uint32_t>& counters) {
    const CircleVote got = SearchCircle(points, counters);
    const reference::Circle wanted = reference::VoteForCircles(points);
    CHECK_EQ(got.count, wanted.count);
    if (wanted.count == 0) return;
    CHECK_EQ(got.Centre(), Vector3(wanted.centreX, wanted.centreY, 0));
    CHECK_EQ(got.radius, wanted.radius);
}

TEST_CASE("The ellipse fit equals its plain reference bit by bit") {
    CAPTURE(seed);
    std::mt19937 random(seed);
    for (const int count : {1, 2, 5, 60}) {
        CheckSameEllipse(RandomPoints(random, count, false), 5);
        CheckSameEllipse(RandomPoints(random, count, true), 30);
    }
    CheckSameEllipse(EllipsePoints(500, 480, 300, 120, 0.3, 200), 5);
    CheckSameEllipse(EllipsePoints(500, 480, 200, 200, 0, 90), 5);  // all rotations fit
}

// Rotation a turns by a half degrees - 90; a circle fits at any, and the first of them is -90 degrees.
TEST_CASE("Of rotations with the same count the first wins") {
    const Points square{{100, 0, 0}, {0, 100, 0}, {-100, 0, 0}, {0, -100, 0}};
    const EllipseFit fit = FitEllipse(square, {0, 0, 0}, 1000, canvasSize);
    CHECK_EQ(fit.angle, -3.141592653589793 / 2);
}

// Both points are ends of the box in every rotation: X^2 / A^2 is 1 and the denominator 0.
TEST_CASE("A point at the very end of the rotated x axis does not count") {
    CHECK_EQ(FitEllipse(Points{{-100, 0, 0}, {100, 0, 0}}, {0, 0, 0}, 1, canvasSize).count, 0);
}

TEST_CASE("The centroid is the mean of all points") {
    CHECK_EQ(Centroid(Points{{0, 0, 0}, {10, 2, 0}, {20, 4, 0}, {30, 10, 0}}), Vector3(15, 4, 0));
}

TEST_CASE("The circle search equals one vote over the whole cube, bit by bit, ties included") {
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::vector<std::uint32_t> counters(houghCounters, 0xDEADBEEF);
    for (const int count : {4, 9, 40}) {
        CheckSameCircle(RandomPoints(random, count, false), counters);
        CheckSameCircle(RandomPoints(random, count, true), counters);
    }
    CheckSameCircle(EllipsePoints(500, 480, 150, 150, 0, 120), counters);
    CheckSameCircle(EllipsePoints(20, 1000, 250, 250, 0, 60), counters);         // half outside the canvas
    CheckSameCircle(Points(5, Vector3(512, 512, 0)), counters);                  // R = 0.1
    CheckSameCircle({{-5000, 3, 0}, {-5000, 4, 0}, {9000, 9000, 0}}, counters);  // nobody votes
}

// Drawn circles are found by looking near them alone, others by the whole vote: the winner is the same.
TEST_CASE("The circle search of shaky circles equals the whole vote, bit by bit") {
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0, 1);
    std::vector<std::uint32_t> counters(houghCounters);
    for (int round = 0; round < 12; ++round) {
        CAPTURE(round);
        const double radius = 10 + 300 * unit(random);
        Points points = EllipsePoints(1000 * unit(random), 1000 * unit(random), radius,
                                      radius * (0.9 + 0.2 * unit(random)), unit(random), 40 + round * 5);
        for (Vector3& point : points) {
            point = Vector3(point.x + 4 * unit(random), point.y + 4 * unit(random), 0);
            if (round % 3 == 0) point = Vector3(std::floor(point.x / 8) * 8, std::floor(point.y / 8) * 8, 0);  // ties
        }
        CheckSameCircle(points, counters);
    }
}

// Centres are 4 pixels apart. Four points on a radius of 50 about (400, 600) vote for that centre, cell (100, 150), in
// one bin: trunc(50.5) * 256 / 1024 = 12. The fifth point, 100 off, makes D = 150 and the greatest radius R = 75.1.
TEST_CASE("The vote finds a centre that lies on the grid") {
    std::vector<std::uint32_t> counters(houghCounters);
    const CircleVote vote =
        SearchCircle(Points{{450, 600, 0}, {400, 650, 0}, {350, 600, 0}, {400, 550, 0}, {400, 700, 0}}, counters);
    CHECK_EQ(vote.count, 4);
    CHECK_EQ(vote.Centre(), Vector3(400, 600, 0));
    CHECK_EQ(vote.radius, 50.0);
}

// Without the fifth point D = 100 and R = 50.1. The columns of the point at 350 end before
// trunc((350 + 50.1) * 256 / 1024) = trunc(100.025) = 100: it has no vote for column 100, nor has the point at
// y = 550 for row 150 = trunc((550 + 50.1) / 4). Two votes are left.
TEST_CASE("The cells around a point end before the last one that they reach") {
    std::vector<std::uint32_t> counters(houghCounters);
    const CircleVote vote = SearchCircle(Points{{450, 600, 0}, {400, 650, 0}, {350, 600, 0}, {400, 550, 0}}, counters);
    CHECK_EQ(vote.count, 2);
}

// A vote ends at the radius min(D / 2 + 0.1, 256): a circle of radius 300 cannot be found with its own radius.
TEST_CASE("No radius beyond a quarter of the canvas is found") {
    std::vector<std::uint32_t> counters(houghCounters);
    const CircleVote vote = SearchCircle(EllipsePoints(512, 512, 300, 300, 0, 100), counters);
    CHECK_LT(vote.radius, 256);
}

TEST_CASE("One worker and many find the same shapes") {
    std::mt19937 random(seed);
    const Points points = RandomPoints(random, 80, true);
    std::vector<std::uint32_t> counters(houghCounters);
    std::vector<CircleVote> circles;
    std::vector<EllipseFit> ellipses;
    for (const std::int32_t workers : {1, 2, 5}) {
        MultiProcessor::Restart(workers);
        circles.push_back(SearchCircle(points, counters));
        ellipses.push_back(FitEllipse(points, Centroid(points), 20, canvasSize));
    }
    MultiProcessor::Restart(0);
    for (std::size_t i = 1; i < circles.size(); ++i) {
        CHECK_EQ(circles[i].count, circles[0].count);
        CHECK_EQ(circles[i].point, circles[0].point);
        CHECK_EQ(circles[i].Centre(), circles[0].Centre());
        CHECK_EQ(circles[i].radius, circles[0].radius);
        CHECK_EQ(ellipses[i].count, ellipses[0].count);
        CHECK_EQ(ellipses[i].angle, ellipses[0].angle);
    }
}

TEST_CASE("A point on an axis counts for no quadrant") {
    const Vector3 middle(0, 0, 0);
    const Points diagonal{{1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}, {1, -1, 0}};
    CHECK(SurroundsOnAllSides(diagonal, middle));
    CHECK_FALSE(SurroundsOnAllSides(Points{{1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}, {1, 0, 0}}, middle));
    CHECK_FALSE(SurroundsOnAllSides(Points{{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}}, middle));
}

TEST_CASE("A stroke of two points surrounds nothing") {
    CHECK_FALSE(SurroundsOnAllSides(Points{{1, 1, 0}, {-1, -1, 0}}, Vector3()));
}

}  // namespace
}  // namespace chalkpane::testing
