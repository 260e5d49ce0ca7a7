#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_position.h"
#include "chalkpane/parameters/compound_values.h"
#include "chalkpane/parameters/data_set.h"
#include "tests/chalkpane/parameters/frame_clock.h"

namespace {

using namespace chalkpane;

const FrameClock frames;

DoublePair At(const AnimatedValue& value, std::int32_t frame) {
    DoublePair out{-1.0, -1.0};
    value.valueAtFrameDoubleXY(frame, out.x, out.y);
    return out;
}

void CheckNear(const DoublePair& got, const DoublePair& wanted, double tolerance = 1e-6) {
    CHECK(std::fabs(got.x - wanted.x) <= tolerance);
    CHECK(std::fabs(got.y - wanted.y) <= tolerance);
}

TEST_CASE("Without keys a path answers its parent or 0, 0") {
    AnimatedPosition position(nullptr, false, &frames);
    AnimatedMapXY map(nullptr, false, &frames);
    CHECK(At(position, 3) == DoublePair{});
    DoubleXYValue parent(3.0, 4.0);
    position.setParent(&parent);
    map.setParent(&parent);
    CHECK(At(position, 3) == DoublePair{3.0, 4.0});
    CHECK(At(map, 3) == DoublePair{3.0, 4.0});
}

TEST_CASE("A mapped pair's controls follow its neighbours, mirrored at the ends") {
    AnimatedMapXY map(nullptr, false, &frames);
    map.addKeyDoubleXY(0, 0.0, 0.0);
    map.addKeyDoubleXY(10, 6.0, 0.0);
    map.addKeyDoubleXY(20, 6.0, 6.0);
    const auto [first, second] = map.controls(0);
    // Mirror of (6, 0) about (0, 0) is (-6, 0): 0 + 12 * 6 / (3 * 12) = 2.
    CheckNear(first, {2.0, 0.0});
    // From (6, 6) to (0, 0): (-6, -6) * 6 / (3 * sqrt 72) = (-sqrt 2, -sqrt 2).
    CheckNear(second, {6.0 - std::sqrt(2.0), -std::sqrt(2.0)});
    // Middle of the span: ((0 + 6 + 3 (6 - sqrt 2) + 6) / 8, -3 sqrt 2 / 8).
    CheckNear(At(map, 5), {(30.0 - 3.0 * std::sqrt(2.0)) / 8.0, -3.0 * std::sqrt(2.0) / 8.0});
}

TEST_CASE("Coinciding points have controls on themselves") {
    AnimatedMapXY map(nullptr, false, &frames);
    map.addKeyDoubleXY(0, 5.0, 5.0);
    map.addKeyDoubleXY(10, 5.0, 5.0);
    map.addKeyDoubleXY(20, 8.0, 5.0);
    map.addKeyDoubleXY(30, 5.0, 5.0);
    const auto [first, second] = map.controls(0);
    CHECK(first == DoublePair{5.0, 5.0});
    CHECK(second == DoublePair{5.0, 5.0});
    CHECK(At(map, 5) == DoublePair{5.0, 5.0});
    // The span from 8 back to 5: its previous point is where it ends, so the first control stays on its point.
    CHECK(map.controls(2).first == DoublePair{8.0, 5.0});
}

TEST_CASE("A steady companion moves a mapped pair evenly; a growing one makes it rise later, from 0 to 1") {
    AnimatedMapXY map(nullptr, false, &frames);
    map.addKeyDoubleXY(0, 0.0, 0.0);
    map.addKeyDoubleXY(10, 10.0, 0.0);
    AnimatedLogDouble zoom(nullptr, false, &frames);
    zoom.addKeyDouble(0, 2.0);
    map.setZoomCurve(&zoom);
    for (std::int32_t f = 0; f <= 10; ++f) CHECK(map.fraction(0, f) == doctest::Approx(f / 10.0));
    zoom.addKeyDouble(10, 200.0);
    double last = 0.0;
    for (std::int32_t f = 1; f < 10; ++f) {
        CHECK(map.fraction(0, f) > last);
        CHECK(map.fraction(0, f) < f / 10.0);
        last = map.fraction(0, f);
    }
    CHECK_EQ(map.fraction(0, 10), 1.0);
    map.setZoomCurve(nullptr);
    CHECK_EQ(map.fraction(0, 5), 0.5);
}

TEST_CASE("A companion without use leaves the fraction between 0 and 1") {
    AnimatedMapXY map(nullptr, false, &frames);
    map.addKeyDoubleXY(0, 0.0, 0.0);
    map.addKeyDoubleXY(10, 10.0, 0.0);
    map.addKeyDoubleXY(900000010, 20.0, 0.0);
    map.keyAt(0)->setHandles(0.0, -0.9);
    map.keyAt(1)->setHandles(0.9, 0.0);
    AnimatedDouble zoom(nullptr, false, &frames);
    map.setZoomCurve(&zoom);
    for (const double value : {0.0, -5.0, 1e308, std::numeric_limits<double>::quiet_NaN()}) {
        zoom.addKeyDouble(0, value);
        double last = 0.0;
        for (std::int32_t f = 1; f <= 10; ++f) {
            CHECK(map.fraction(0, f) >= last);
            last = map.fraction(0, f);
        }
        CHECK(last == doctest::Approx(1.0));
    }
    CHECK(map.fraction(1, 450000010) == doctest::Approx(0.5));  // too long to iterate over
}

TEST_CASE("A key of a position has its handles on its point") {
    AnimatedPosition position(nullptr, false, &frames);
    position.addKeyDoubleXY(0, 3.0, 4.0);
    const PathPoint content = position.keyValue(0);
    CHECK(content.in == DoublePair{3.0, 4.0});
    CHECK(content.out == DoublePair{3.0, 4.0});
}

TEST_CASE("A straight span is flattened into 28 segments when its handles lie on its points") {
    const PathPoint left = PathPoint::at({0.0, 0.0});
    const PathPoint right = PathPoint::at({10.0, 0.0});
    const Polyline line(left, right);
    // Bend 10, perimeter 10: sqrt(10 * (1000 / 10.000001) / 1.33333333) + 1 = 28.38...
    CHECK_EQ(line.segments, 28);
    CHECK(line.length == doctest::Approx(10.0));
    CheckNear(line.at(2.5), {2.5, 0.0});
    CheckNear(line.at(-1.0), {-0.0, 0.0}, 400.0);
    CheckNear(line.at(99.0), {10.0, 0.0});
}

TEST_CASE("A span whose controls lie evenly is one segment") {
    PathPoint left = PathPoint::at({0.0, 0.0});
    PathPoint right = PathPoint::at({9.0, 0.0});
    left.out = {3.0, 0.0};
    right.in = {6.0, 0.0};
    CHECK_EQ(Polyline(left, right).segments, 1);
}

TEST_CASE("A single span is traversed evenly along its length") {
    AnimatedPosition position(nullptr, false, &frames);
    position.addKeyDoubleXY(0, 0.0, 0.0);
    position.addKeyDoubleXY(10, 30.0, 40.0);
    CheckNear(At(position, 5), {15.0, 20.0});
    CheckNear(At(position, 2), {6.0, 8.0});
    CHECK(At(position, 10) == DoublePair{30.0, 40.0});
    CHECK(At(position, 99) == DoublePair{30.0, 40.0});
}

TEST_CASE("The fraction of a span leaves and arrives with the neighbours' speed") {
    AnimatedPosition position(nullptr, false, &frames);
    position.addKeyDoubleXY(0, 0.0, 0.0);
    position.addKeyDoubleXY(10, 10.0, 0.0);
    position.addKeyDoubleXY(20, 30.0, 0.0);
    // Speeds 1 and 2.
    CheckNear(At(position, 5), {10.0 * easeFraction(noNeighbour, std::sqrt(2.0), 0.5), 0.0});
    CheckNear(At(position, 15), {10.0 + 20.0 * easeFraction(std::sqrt(0.5), noNeighbour, 0.5), 0.0});
}

TEST_CASE("A span that stands still has the slope 1 on both sides") {
    AnimatedPosition position(nullptr, false, &frames);
    for (const std::int32_t frame : {0, 10, 20, 30}) position.addKeyDoubleXY(frame, frame < 15 ? 0.0 : 5.0, 0.0);
    CHECK(At(position, 5) == DoublePair{0.0, 0.0});
    CHECK(std::isfinite(At(position, 15).x));
}

TEST_CASE("easeFraction") {
    for (int i = 0; i <= 10; ++i) {
        const double f = i / 10.0;
        CHECK(easeFraction(noNeighbour, noNeighbour, f) == doctest::Approx(f).epsilon(1e-6));
        CHECK(easeFraction(1.0, 1.0, f) == doctest::Approx(f).epsilon(1e-6));  // both controls on the diagonal
    }
    // p eased: c1 = (0.33, 0), c2 = (1, 1). At u = 1/2: x = (0.99 + 3 + 1) / 8 = 0.62375, y = (0 + 3 + 1) / 8 = 0.5.
    CHECK(easeFraction(easedNeighbour, noNeighbour, 0.62375) == doctest::Approx(0.5).epsilon(1e-6));
    // q eased overwrites the first control: c1 = (0.67, 1), c2 = (1, 1). x = (2.01 + 3 + 1) / 8 = 0.75125, y = 7/8.
    CHECK(easeFraction(noNeighbour, easedNeighbour, 0.75125) == doctest::Approx(0.875).epsilon(1e-6));
    // p = 0: c1 = (1, 0), q = 0: c2 = (0, 1). At u = 1/2: x = (3 + 0 + 1) / 8 = 0.5, y = (0 + 3 + 1) / 8 = 0.5.
    CHECK(easeFraction(0.0, 0.0, 0.5) == doctest::Approx(0.5).epsilon(1e-6));
}

TEST_CASE("Keys that share a frame are a jump") {
    AnimatedPosition position(nullptr, false, &frames);
    position.addKeyDoubleXY(0, 0.0, 0.0);
    position.addKeyDoubleXY(10, 10.0, 0.0);
    position.addKeyDoubleXY(20, 100.0, 0.0);
    position.addKeyDoubleXY(30, 110.0, 0.0);
    position.keyAt(2)->setTime(10.0);
    CHECK(At(position, 10) == DoublePair{10.0, 0.0});  // the first of the group
    // Left: speed 1 over 10 frames, its right neighbour is 100 to 110 over 20 frames: speed 1/2.
    CheckNear(At(position, 5), {10.0 * easeFraction(noNeighbour, std::sqrt(0.5), 0.5), 0.0});
    CheckNear(At(position, 20), {100.0 + 10.0 * easeFraction(std::sqrt(2.0), noNeighbour, 0.5), 0.0});
}

TEST_CASE("An exact hit answers the key's handles") {
    AnimatedPosition position(nullptr, false, &frames);
    position.addKey(10, {{1.0, 2.0}, {0.0, 2.0}, {3.0, 2.0}});
    position.addKey(20, {{5.0, 2.0}, {4.0, 2.0}, {6.0, 2.0}});
    PathPoint out;
    position.evaluate(10, out);
    CHECK(out.in == DoublePair{0.0, 2.0});
    CHECK(out.out == DoublePair{3.0, 2.0});
}

TEST_CASE("The handles of smooth keys follow their neighbours") {
    AnimatedPosition3d path(nullptr, false, &frames);
    path.addKeyDoubleXY(0, 0.0, 0.0);
    CHECK_FALSE(path.keyValue(0).smooth);  // alone: a corner, and it stays one
    path.addKeyDoubleXY(10, 6.0, 0.0);
    CHECK(path.keyValue(1).smooth);
    CheckNear(path.keyValue(1).in, {4.0, 0.0}, 1e-12);  // a third of the way back
    CHECK(path.keyValue(0).out == DoublePair{0.0, 0.0});
    path.addKeyDoubleXY(20, 12.0, 6.0);
    CheckNear(path.keyValue(2).in, {10.0, 4.0}, 1e-12);
    // (12, 6) - (0, 0), a sixth to each side
    CheckNear(path.keyValue(1).in, {4.0, -1.0}, 1e-12);
    CheckNear(path.keyValue(1).out, {8.0, 1.0}, 1e-12);
    path.setSmooth(0);
    CheckNear(path.keyValue(0).out, {2.0, 0.0}, 1e-12);
}

TEST_CASE("A smooth key keeps its handle on the side where its neighbour lies on it") {
    AnimatedPosition3d path(nullptr, false, &frames);
    path.addKeyDoubleXY(0, 5.99995, 0.00005);
    path.addKeyDoubleXY(10, 6.0, 0.0);
    path.addKeyDoubleXY(20, 12.0, 6.0);
    CHECK(path.keyValue(1).in == DoublePair{6.0, 0.0});
    CHECK(path.keyValue(1).out.x > 6.5);
}

TEST_CASE("A corner has its handles on its point and keeps them") {
    AnimatedPosition3d path(nullptr, false, &frames);
    for (const std::int32_t frame : {0, 10, 20}) path.addKeyDoubleXY(frame, frame, frame * frame);
    path.setCorner(1);
    CHECK_FALSE(path.keyValue(1).smooth);
    CHECK(path.keyValue(1).in == path.keyValue(1).point);
    path.addKeyDoubleXY(30, 7.0, 7.0);
    CHECK(path.keyValue(1).out == path.keyValue(1).point);
}

TEST_CASE("A key put on another's frame takes over smoothness and handle offsets") {
    AnimatedPosition3d path(nullptr, false, &frames);
    path.addKeyWithHandles(0, {{{0.0, 0.0}, {-1.0, -2.0}, {3.0, 4.0}}, false});
    path.addKeyWithHandles(10, {{{9.0, 9.0}, {8.0, 9.0}, {10.0, 9.0}}, false});
    path.addKeyDoubleXY(0, 100.0, 200.0);
    CHECK_FALSE(path.keyValue(0).smooth);
    CHECK(path.keyValue(0).in == DoublePair{99.0, 198.0});
    CHECK(path.keyValue(0).out == DoublePair{103.0, 204.0});
}

TEST_CASE("Handles beside a removed key are not computed anew") {
    AnimatedPosition3d path(nullptr, false, &frames);
    for (const std::int32_t frame : {0, 10, 20, 30}) path.addKeyDoubleXY(frame, frame, frame * frame);
    const DoublePair before = path.keyValue(1).out;
    path.removeKey(2);
    CHECK(path.keyValue(1).out == before);
}

TEST_CASE("The factory makes paths for positions and mapped pairs") {
    const ParameterDef position("Test", "Test", ParameterType::position, 0);
    const ParameterDef scaled("Test", "Test", ParameterType::scaledPosition, 0);
    const ParameterDef mapped("Test", "Test", ParameterType::mappedPair, 0);
    const ParameterDef spatial("Test", "Test", ParameterType::position3d, 0);
    CHECK(dynamic_cast<AnimatedPosition*>(DataSet::createValue(&position, true, &frames).get()) != nullptr);
    CHECK(dynamic_cast<AnimatedPosition*>(DataSet::createValue(&scaled, true, &frames).get()) != nullptr);
    CHECK(dynamic_cast<AnimatedMapXY*>(DataSet::createValue(&mapped, true, &frames).get()) != nullptr);
    CHECK(dynamic_cast<AnimatedPosition3d*>(DataSet::createValue(&spatial, true, &frames).get()) != nullptr);
}

TEST_CASE("Numbers that are none, and keys out of order, end in an answer") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    AnimatedPosition position(nullptr, false, &frames);
    AnimatedMapXY map(nullptr, false, &frames);
    AnimatedPosition3d path(nullptr, false, &frames);
    const double odd[] = {0.0, nan, infinity, -infinity, 1e308, -1e308, 1.0};
    for (std::int32_t i = 0; i < 7; ++i) {
        position.addKey(i * 10, {{odd[i], 1.0}, {nan, odd[i]}, {infinity, odd[6 - i]}});
        map.addKeyDoubleXY(i * 10, odd[i], odd[6 - i]);
        path.addKeyDoubleXY(i * 10, odd[i], odd[6 - i]);
    }
    const auto evaluateAll = [&] {
        for (std::int32_t f = -5; f < 80; ++f)
            for (const AnimatedValue* value : {static_cast<AnimatedValue*>(&position),
                                               static_cast<AnimatedValue*>(&map), static_cast<AnimatedValue*>(&path)})
                At(*value, f);
    };
    evaluateAll();
    for (std::int32_t i = 0; i < 7; ++i) {
        position.keyAt(i)->setTime(70.0 - 10 * i);
        map.keyAt(i)->setTime(i % 2 == 0 ? 5.0 : nan);
        path.keyAt(i)->setTime(i == 6 ? 100.0 : 30.0);
    }
    evaluateAll();
    CHECK_EQ(position.keyCount(), 7);
}

}  // namespace
