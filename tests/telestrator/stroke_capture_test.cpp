#include "telestrator/telestrator.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "telestrator/recognition/shape_recognition.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

TelestratorSettings Recognising(std::int32_t brushWidth) {
    TelestratorSettings values = TelestratorSettings();
    values.recogniseShapes = true;
    values.brushWidth = brushWidth;
    return values;
}

std::vector<Vector3> Stored(const Telestrator& telestrator) {
    const auto points = telestrator.StoredStroke();
    return {points.begin(), points.end()};
}

using Points = std::vector<Vector3>;

TEST_CASE("Without recognition nothing is stored and nothing allocated") {
    TelestratorFixture fixture;
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {1, 2}, true);
    CHECK_EQ(fixture.telestrator.strokePointCount, 0);
    CHECK_FALSE(fixture.telestrator.recognitionBuffersReady);
}

TEST_CASE("The first point makes the buffers") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {1, 2}, true);
    CHECK(fixture.telestrator.recognitionBuffersReady);
    CHECK_NE(fixture.telestrator.houghAccumulator, nullptr);
    CHECK_EQ(Stored(fixture.telestrator), Points{{1, 2, 0}});
}

TEST_CASE("y is stored divided by the aspect") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 2;
    fixture.telestrator.AddStrokePoint(fixture.settings, {10, 30}, true);
    CHECK_EQ(Stored(fixture.telestrator), Points{{10, 15, 0}});
}

TEST_CASE("An unforced point needs a forced one before it") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {10, 10}, false);
    CHECK_EQ(fixture.telestrator.strokePointCount, 0);
}

// |d| = 4.9 is below 5 and dropped; |d| = 5 is one step: the point itself.
TEST_CASE("A point nearer than the brush width is dropped") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {0, 0}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {4.9, 0}, false);
    CHECK_EQ(fixture.telestrator.strokePointCount, 1);
    fixture.telestrator.AddStrokePoint(fixture.settings, {3, 4}, false);
    CHECK_EQ(Stored(fixture.telestrator), Points{{0, 0, 0}, {3, 4, 0}});
}

// |d| = 17.9 truncates to 17; 17 / 5 = 3 steps of 17.9 / 3; the last point is exact.
TEST_CASE("A jump is resampled to whole steps of about the brush width") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {100, 50}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {117.9, 50}, false);
    const Vector3 step = [] {
        Vector3 d(static_cast<float>(117.9F - 100.0F), 0, 0);
        return Vector3(d.x * (1.0 / 3), 0, 0);
    }();
    Vector3 first(100, 50, 0);
    first = Vector3(double{first.x} + step.x, 50, 0);
    const Vector3 second(double{first.x} + step.x, 50, 0);
    CHECK_EQ(Stored(fixture.telestrator), Points{{100, 50, 0}, first, second, {117.9, 50, 0}});
    CHECK_EQ(fixture.telestrator.lastStrokePoint, Vector3(117.9, 50, 0));
}

TEST_CASE("A forced point joins without resampling") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {0, 0}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {500, 0}, true);
    CHECK_EQ(Stored(fixture.telestrator), Points{{0, 0, 0}, {500, 0, 0}});
    CHECK_EQ(fixture.telestrator.lastStrokePoint, Vector3(500, 0, 0));
}

TEST_CASE("Two far jumps at width 1 fill the buffer and not more") {
    TelestratorFixture fixture(Recognising(1));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {0, 0}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {900000, 0}, false);
    CHECK_EQ(fixture.telestrator.strokePointCount, 900001);
    fixture.telestrator.AddStrokePoint(fixture.settings, {-2e9, 0}, false);
    CHECK_EQ(fixture.telestrator.strokePointCount, 1024 * 1024);
    fixture.telestrator.AddStrokePoint(fixture.settings, {5, 5}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {2e9, 2e9}, false);
    CHECK_EQ(fixture.telestrator.strokePointCount, 1024 * 1024);
    CHECK_EQ(fixture.telestrator.strokePoints[900000], Vector3(900000, 0, 0));
}

TEST_CASE("A brush width of 0 or below counts as 1") {
    for (const std::int32_t width : {0, -3, std::numeric_limits<std::int32_t>::min()}) {
        TelestratorFixture fixture(Recognising(width));
        fixture.telestrator.aspect = 1;
        fixture.telestrator.AddStrokePoint(fixture.settings, {0, 0}, true);
        fixture.telestrator.AddStrokePoint(fixture.settings, {0.5, 0}, false);
        fixture.telestrator.AddStrokePoint(fixture.settings, {3, 0}, false);
        CHECK_EQ(Stored(fixture.telestrator), Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    }
}

TEST_CASE("What is no position is not stored") {
    TelestratorFixture fixture(Recognising(5));
    fixture.telestrator.aspect = 1;
    fixture.telestrator.AddStrokePoint(fixture.settings, {std::nan(""), 0}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {0, std::numeric_limits<double>::infinity()}, true);
    fixture.telestrator.AddStrokePoint(fixture.settings, {3e9, 0}, true);
    fixture.telestrator.aspect = 0;  // y / 0
    fixture.telestrator.AddStrokePoint(fixture.settings, {0, 5}, true);
    CHECK_EQ(fixture.telestrator.strokePointCount, 0);
}

TEST_CASE("Sizing the buffers: made once, zeroed, freed, the count untouched") {
    TelestratorFixture fixture;
    fixture.telestrator.SizeRecognitionBuffers(true);
    REQUIRE(fixture.telestrator.recognitionBuffersReady);
    bool zero = true;
    for (std::size_t i = 0; i < 1024 * 1024; i += 997) zero = zero && fixture.telestrator.strokePoints[i] == Vector3();
    CHECK(zero);
    const Vector3* points = fixture.telestrator.strokePoints.get();
    fixture.telestrator.strokePointCount = 12;
    fixture.telestrator.SizeRecognitionBuffers(true);
    CHECK_EQ(fixture.telestrator.strokePoints.get(), points);
    fixture.telestrator.SizeRecognitionBuffers(false);
    CHECK_EQ(fixture.telestrator.strokePoints, nullptr);
    CHECK_EQ(fixture.telestrator.houghAccumulator, nullptr);
    CHECK_FALSE(fixture.telestrator.recognitionBuffersReady);
    CHECK_EQ(fixture.telestrator.strokePointCount, 12);
    CHECK(fixture.telestrator.StoredStroke().empty());
}

}  // namespace
}  // namespace chalkpane::testing
