#include "chalkpane/brush/spline_iterator.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace chalkpane;

namespace {

SplineIterator IterateThrough(const StrokePoint (&samples)[4]) {
    SplineIterator spline;
    for (const auto& sample : samples) spline.Push(sample);
    return spline;
}

}  // namespace

// At t = 0 the weights are 1/6, 4/6, 1/6 and 0: (6 + 4 * 12 + 18) / 6 = 12, (0 + 4 * 3 + 6) / 6 = 3.
TEST_CASE("the curve begins near the second sample") {
    const SplineIterator spline = IterateThrough({{6, 0, 1}, {12, 3, 1}, {18, 6, 1}, {100, 200, 1}});
    const StrokePoint point = spline.PointAt(0);
    CHECK_EQ(point.x, doctest::Approx(12).epsilon(1e-6));
    CHECK_EQ(point.y, doctest::Approx(3).epsilon(1e-6));
    CHECK_EQ(point.pressure, doctest::Approx(1).epsilon(1e-6));
}

// 1001 additions of 0.001 to a 32-bit float end at 0.9999907: only 7 digits, and every one of them is kept.
TEST_CASE("the curve's parameter accumulates the rounding of a 32-bit float") {
    float t = 0.0F;
    int count = 0;
    while (t <= 1.0F) {
        t = static_cast<float>(t + 0.001);
        ++count;
    }
    CHECK_EQ(count, SplineIterator::steps);
    // With samples 0, 0, 0, 6 the point is t * t * t, as a 32-bit float.
    const SplineIterator spline = IterateThrough({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {6, 6, 6}});
    const double lastT = std::cbrt(spline.PointAt(SplineIterator::steps - 1).x);
    CHECK_LT(lastT, 1.0);
    CHECK_GT(lastT, 0.99998);
    CHECK_NE(spline.PointAt(SplineIterator::steps - 1).x, 1.0);
}

// 0.1 is no 32-bit float, so the sample that is kept is another number.
TEST_CASE("samples are kept as 32-bit floats") {
    SplineIterator spline;
    spline.Fill({0.1, 0, 1});
    spline.Push({0.1F, 0, 1});
    CHECK_FALSE(spline.Moves());
    CHECK(spline.Rests());
}

TEST_CASE("a curve rests only when place and pressure of all four samples are the same") {
    SplineIterator spline;
    spline.Fill({5, 6, 1});
    CHECK(spline.Rests());
    spline.Push({5, 6, 0.5});
    CHECK_FALSE(spline.Moves());
    CHECK_FALSE(spline.Rests());
    spline.Push({5, 6, 0.5});
    spline.Push({5, 6, 0.5});
    CHECK_FALSE(spline.Rests());
    spline.Push({5, 6, 0.5});
    CHECK(spline.Rests());
    spline.Push({5, 9, 0.5});
    CHECK(spline.Moves());
    CHECK_EQ(spline.NewestLength(), 3.0);
}

TEST_CASE(
    "the last of a chain of steps, each beyond the one before, is found whatever the scale, and a sure step is one") {
    constexpr unsigned seed = 21;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const double scales[] = {0.0, 0.3, 4, 60, 1000, 1e5, 2e7, 1e9};
    std::uniform_real_distribution<double> unit(-1, 1);
    int sureSteps = 0;
    for (int round = 0; round < 1500; ++round) {
        const double scale = scales[random() % std::size(scales)];
        const double place = scales[random() % std::size(scales)];
        SplineIterator curve;
        for (int i = 0; i < 4; ++i) curve.Push({place + scale * unit(random), place - scale * unit(random), 1});
        const double limits[] = {0.0, 0.2, 2.7, 37.8, scale * scale * 1e-6};
        const double limit = limits[random() % std::size(limits)];
        CAPTURE(round);
        CAPTURE(scale);
        CAPTURE(place);
        CAPTURE(limit);
        const std::int32_t sure = curve.SurelyBeyond(limit);
        sureSteps += sure < SplineIterator::steps ? 1 : 0;
        for (const double away : {0.0, 0.5, 3.0, scale}) {
            auto x = static_cast<float>(place + away);
            auto y = static_cast<float>(place);
            const auto startX = x;
            const auto startY = y;
            std::int32_t last = SplineIterator::steps;
            bool sureWasFound = sure == SplineIterator::steps;
            for (std::int32_t step = 0; step < SplineIterator::steps; ++step) {
                const StrokePoint point = curve.PointAt(step);
                const double dx = point.x - x;
                const double dy = point.y - y;
                if (!(dx * dx + dy * dy > limit)) continue;
                x = static_cast<float>(point.x);
                y = static_cast<float>(point.y);
                last = step;
                sureWasFound = sureWasFound || step == sure;
            }
            std::int32_t budget = 1000000;
            REQUIRE_EQ(curve.LastBeyond(startX, startY, limit, budget), last);
            REQUIRE(sureWasFound);
        }
    }
    CHECK_GT(sureSteps, 300);
}

TEST_CASE("without a budget of steps the curve's last one is the answer") {
    const SplineIterator curve = IterateThrough({{0, 0, 1}, {10, 0, 1}, {20, 0, 1}, {30, 0, 1}});
    std::int32_t budget = 5;
    const std::int32_t last = curve.LastBeyond(0, 0, 4.0, budget);
    CHECK_LT(last, SplineIterator::steps - 1);
    CHECK_LE(budget, 0);
    CHECK_EQ(curve.LastBeyond(0, 0, 4.0, budget), SplineIterator::steps - 1);
}

// The steps that are passed over are tested one by one here.
TEST_CASE("no step before the first that may lie within a rectangle lies within it") {
    std::mt19937 random(20240614);
    std::int64_t passed = 0;
    for (const double extent : {1.0, 60.0, 3000.0, 1e6, 1e9}) {
        std::uniform_real_distribution<double> place(-extent, extent);
        for (int i = 0; i < 300; ++i) {
            StrokePoint samples[4];
            for (auto& sample : samples) sample = {place(random), i % 3 == 0 ? 5.0 : place(random), 1};
            const SplineIterator curve = IterateThrough(samples);
            for (std::int32_t step = 0; step < SplineIterator::steps; ++step) {
                const std::int32_t found = curve.FirstPerhapsInside(step, -10, 0, 30, 20);
                REQUIRE_GE(found, step);
                for (; step < found; ++step, ++passed) {
                    const StrokePoint point = curve.PointAt(step);
                    REQUIRE_FALSE((point.x >= -10 && point.x <= 30 && point.y >= 0 && point.y <= 20));
                }
            }
        }
    }
    CHECK_GT(passed, 1000000);
}

TEST_CASE("a step that is surely beyond before a given end lies before it") {
    const SplineIterator curve = IterateThrough({{0, 0, 1}, {3e5, 0, 1}, {6e5, 0, 1}, {9e5, 0, 1}});
    for (const std::int32_t end : {2, 9, 500, SplineIterator::steps})
        CHECK_EQ(curve.SurelyBeyond(100.0, end), end - 1);  // each step is 300 pixels, far beyond twice the limit of 10
    CHECK_EQ(curve.SurelyBeyond(1e6, 500), SplineIterator::steps);
}

// A curve lies in the box of its samples; 100 to 130 is right of 99 but not surely of 100, since weights are rounded.
TEST_CASE("a curve stays beside a rectangle when all its samples lie on one side") {
    const SplineIterator curve = IterateThrough({{100, 0, 1}, {110, 500, 1}, {120, -500, 1}, {130, 0, 1}});
    CHECK(curve.StaysBeside(0, -1000, 99, 1000));
    CHECK_FALSE(curve.StaysBeside(0, -1000, 100, 1000));
    CHECK(curve.StaysBeside(131, -1000, 200, 1000));
    CHECK(curve.StaysBeside(0, 501, 1000, 1000));
    CHECK(curve.StaysBeside(0, -1000, 1000, -501));
    CHECK_FALSE(curve.StaysBeside(105, -10, 115, 10));
    constexpr double everywhere = std::numeric_limits<double>::infinity();
    CHECK_FALSE(curve.StaysBeside(-everywhere, -everywhere, everywhere, everywhere));
}
