#include "module/stroke_points.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "module/shape_recognition.h"
#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

PluginParameters Recognising(std::int32_t brushWidth) {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.BrushWidth = brushWidth;
    return values;
}

std::vector<Vector3> Stored(const PluginInstance& plugin) {
    const auto points = StoredStroke(plugin);
    return {points.begin(), points.end()};
}

using Points = std::vector<Vector3>;

TEST_CASE("Without recognition nothing is stored and nothing allocated") {
    ModuleFixture fixture;
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 1, 2, true);
    CHECK_EQ(fixture.plugin.strokePointCount, 0);
    CHECK_FALSE(fixture.plugin.recognitionBuffersReady);
}

TEST_CASE("The first point makes the buffers") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 1, 2, true);
    CHECK(fixture.plugin.recognitionBuffersReady);
    CHECK_NE(fixture.plugin.houghAccumulator, nullptr);
    CHECK_EQ(Stored(fixture.plugin), Points{{1, 2, 0}});
}

TEST_CASE("y is stored divided by the aspect") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 2;
    AddStrokePoint(fixture.plugin, 10, 30, true);
    CHECK_EQ(Stored(fixture.plugin), Points{{10, 15, 0}});
}

TEST_CASE("An unforced point needs a forced one before it") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 10, 10, false);
    CHECK_EQ(fixture.plugin.strokePointCount, 0);
}

// |d| = 4.9 is below 5 and dropped; |d| = 5 is one step: the point itself.
TEST_CASE("A point nearer than the brush width is dropped") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 0, 0, true);
    AddStrokePoint(fixture.plugin, 4.9, 0, false);
    CHECK_EQ(fixture.plugin.strokePointCount, 1);
    AddStrokePoint(fixture.plugin, 3, 4, false);
    CHECK_EQ(Stored(fixture.plugin), Points{{0, 0, 0}, {3, 4, 0}});
}

// |d| = 17.9 truncates to 17; 17 / 5 = 3 steps of 17.9 / 3; the last point is exact.
TEST_CASE("A jump is resampled to whole steps of about the brush width") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 100, 50, true);
    AddStrokePoint(fixture.plugin, 117.9, 50, false);
    const Vector3 step = [] {
        Vector3 d(static_cast<float>(117.9F - 100.0F), 0, 0);
        return Vector3(d.x * (1.0 / 3), 0, 0);
    }();
    Vector3 first(100, 50, 0);
    first = Vector3(double{first.x} + step.x, 50, 0);
    const Vector3 second(double{first.x} + step.x, 50, 0);
    CHECK_EQ(Stored(fixture.plugin), Points{{100, 50, 0}, first, second, {117.9, 50, 0}});
    CHECK_EQ(fixture.plugin.lastStrokePoint, Vector3(117.9, 50, 0));
}

TEST_CASE("A forced point joins without resampling") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 0, 0, true);
    AddStrokePoint(fixture.plugin, 500, 0, true);
    CHECK_EQ(Stored(fixture.plugin), Points{{0, 0, 0}, {500, 0, 0}});
    CHECK_EQ(fixture.plugin.lastStrokePoint, Vector3(500, 0, 0));
}

TEST_CASE("Two far jumps at width 1 fill the buffer and not more") {
    ModuleFixture fixture(Recognising(1));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, 0, 0, true);
    AddStrokePoint(fixture.plugin, 900000, 0, false);
    CHECK_EQ(fixture.plugin.strokePointCount, 900001);
    AddStrokePoint(fixture.plugin, -2e9, 0, false);
    CHECK_EQ(fixture.plugin.strokePointCount, 1024 * 1024);
    AddStrokePoint(fixture.plugin, 5, 5, true);
    AddStrokePoint(fixture.plugin, 2e9, 2e9, false);
    CHECK_EQ(fixture.plugin.strokePointCount, 1024 * 1024);
    CHECK_EQ(fixture.plugin.strokePoints[900000], Vector3(900000, 0, 0));
}

TEST_CASE("A brush width of 0 or below counts as 1") {
    for (const std::int32_t width : {0, -3, std::numeric_limits<std::int32_t>::min()}) {
        ModuleFixture fixture(Recognising(width));
        fixture.plugin.aspect = 1;
        AddStrokePoint(fixture.plugin, 0, 0, true);
        AddStrokePoint(fixture.plugin, 0.5, 0, false);
        AddStrokePoint(fixture.plugin, 3, 0, false);
        CHECK_EQ(Stored(fixture.plugin), Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    }
}

TEST_CASE("What is no position is not stored") {
    ModuleFixture fixture(Recognising(5));
    fixture.plugin.aspect = 1;
    AddStrokePoint(fixture.plugin, std::nan(""), 0, true);
    AddStrokePoint(fixture.plugin, 0, std::numeric_limits<double>::infinity(), true);
    AddStrokePoint(fixture.plugin, 3e9, 0, true);
    fixture.plugin.aspect = 0;  // y / 0
    AddStrokePoint(fixture.plugin, 0, 5, true);
    CHECK_EQ(fixture.plugin.strokePointCount, 0);
}

TEST_CASE("Sizing the buffers: made once, zeroed, freed, the count untouched") {
    ModuleFixture fixture;
    SizeRecognitionBuffers(fixture.plugin, true);
    REQUIRE(fixture.plugin.recognitionBuffersReady);
    bool zero = true;
    for (std::size_t i = 0; i < 1024 * 1024; i += 997) zero = zero && fixture.plugin.strokePoints[i] == Vector3();
    CHECK(zero);
    const Vector3* points = fixture.plugin.strokePoints.get();
    fixture.plugin.strokePointCount = 12;
    SizeRecognitionBuffers(fixture.plugin, true);
    CHECK_EQ(fixture.plugin.strokePoints.get(), points);
    SizeRecognitionBuffers(fixture.plugin, false);
    CHECK_EQ(fixture.plugin.strokePoints, nullptr);
    CHECK_EQ(fixture.plugin.houghAccumulator, nullptr);
    CHECK_FALSE(fixture.plugin.recognitionBuffersReady);
    CHECK_EQ(fixture.plugin.strokePointCount, 12);
    CHECK(StoredStroke(fixture.plugin).empty());
}

}  // namespace
}  // namespace chalkpane::testing
