#include "chalkpane/brush/spline_search.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/chalkpane/scoped_cpu_features.h"

using namespace chalkpane;

namespace {

constexpr CpuFeatures bothFeatures[] = {CpuFeatures::Plain, CpuFeatures::All};

std::int32_t EachStepInTurn(const SplineIterator& spline, std::int32_t step, float x, float y, double squaredLimit) {
    for (; step < SplineIterator::steps; ++step) {
        const StrokePoint point = spline.PointAt(step);
        const double dx = point.x - x;
        const double dy = point.y - y;
        if (dx * dx + dy * dy > squaredLimit) return step;
    }
    return SplineIterator::steps;
}

SplineIterator RandomSpline(std::mt19937& random, double place, double scale) {
    std::uniform_real_distribution<double> unit(-1, 1);
    SplineIterator spline;
    for (int i = 0; i < 4; ++i) {
        const double x = place + scale * unit(random);
        spline.Push({x, place - scale * unit(random), 1});
    }
    return spline;
}

}  // namespace

TEST_CASE("passing over stretches of the curve finds the step that testing each in turn finds") {
    constexpr unsigned seed = 20;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const double scales[] = {0.0, 1e-3, 0.3, 4, 60, 1000, 1e6, 1e9};
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int round = 0; round < 4000; ++round) {
        const double scale = scales[random() % std::size(scales)];
        const double place = scales[random() % std::size(scales)];
        const SplineIterator spline = RandomSpline(random, place, scale);
        const auto x = static_cast<float>(place + scale * unit(random));
        const auto y = static_cast<float>(place + scale * unit(random));
        const double limits[] = {0.0, 1e-12, scale * scale * 0.04, scale * scale, scale * scale * 3, 37.8, 5.0};
        const double limit = limits[random() % std::size(limits)];
        const auto from = static_cast<std::int32_t>(random() % SplineIterator::steps);
        CAPTURE(round);
        CAPTURE(scale);
        CAPTURE(limit);
        for (const CpuFeatures features : bothFeatures) {
            const test::ScopedCpuFeatures used(features);
            const SplineSearch search(spline, limit);
            REQUIRE_EQ(search.FirstBeyond(0, x, y), EachStepInTurn(spline, 0, x, y, limit));
            REQUIRE_EQ(search.FirstBeyond(from, x, y), EachStepInTurn(spline, from, x, y, limit));
        }
    }
}

// Down to curves whose steps are nearer to each other than the rounding of their weights.
TEST_CASE("the step after a dab is the one that testing each in turn finds") {
    constexpr unsigned seed = 22;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const double scales[] = {0.0, 1e-3, 0.005, 0.3, 4, 60, 1000, 1e6};
    const double fractions[] = {0.0, 0.001, 0.01, 0.1, 0.5, 2.0};
    int dabs = 0;
    for (int round = 0; round < 600; ++round) {
        const double scale = scales[random() % std::size(scales)];
        const double place = scales[random() % std::size(scales)];
        const SplineIterator spline = RandomSpline(random, place, scale);
        const double spacing = fractions[random() % std::size(fractions)] * scale;
        CAPTURE(round);
        CAPTURE(scale);
        for (const CpuFeatures features : bothFeatures) {
            const test::ScopedCpuFeatures used(features);
            const SplineSearch search(spline, spacing * spacing);
            for (std::int32_t step = 0; step < SplineIterator::steps;) {
                const StrokePoint dab = spline.PointAt(step);
                const auto x = static_cast<float>(dab.x);
                const auto y = static_cast<float>(dab.y);
                const std::int32_t next = search.NextBeyond(step + 1, x, y);
                REQUIRE_EQ(next, EachStepInTurn(spline, step + 1, x, y, spacing * spacing));
                step = next;
                ++dabs;
            }
        }
    }
    CHECK_GT(dabs, 10000);
}

// The distance at each step is itself taken as the limit: nothing is beyond it there, and the next larger one is.
TEST_CASE("a step exactly at the limit is not beyond it") {
    SplineIterator spline;
    for (const StrokePoint& sample : {StrokePoint{0, 0, 1}, {1, 2, 1}, {4, 3, 1}, {9, 5, 1}}) spline.Push(sample);
    for (const CpuFeatures features : bothFeatures) {
        const test::ScopedCpuFeatures used(features);
        for (std::int32_t step = 1; step + 1 < SplineIterator::steps; ++step) {
            const StrokePoint point = spline.PointAt(step);
            const SplineSearch search(spline, point.x * point.x + point.y * point.y);
            REQUIRE_EQ(search.FirstBeyond(0, 0, 0),
                       EachStepInTurn(spline, 0, 0, 0, point.x * point.x + point.y * point.y));
            REQUIRE_GT(search.FirstBeyond(step, 0, 0), step);
        }
    }
}

TEST_CASE("a limit that is NaN is never exceeded, and one below zero always") {
    SplineIterator spline;
    for (int i = 0; i < 4; ++i) spline.Push({10.0 * i, 0, 1});
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double most = std::numeric_limits<double>::infinity();
    for (const CpuFeatures features : bothFeatures) {
        const test::ScopedCpuFeatures used(features);
        CHECK_EQ(SplineSearch(spline, none).FirstBeyond(0, 0, 0), SplineIterator::steps);
        CHECK_EQ(SplineSearch(spline, most).FirstBeyond(0, 0, 0), SplineIterator::steps);
        CHECK_EQ(SplineSearch(spline, -1.0).FirstBeyond(7, 0, 0), 7);
        CHECK_EQ(SplineSearch(spline, -1.0).NextBeyond(7, 0, 0), 7);
    }
}
