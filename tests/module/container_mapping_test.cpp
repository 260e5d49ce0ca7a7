#include "module/container_mapping.h"

#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "tests/module/module_fixture.h"

namespace chalkpane::testing {
namespace {

using Point = std::array<double, 3>;
using Matrix = std::array<double, 16>;

Point operator-(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
double Dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Point Cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Point Scaled(const Point& a, double factor) { return {a[0] * factor, a[1] * factor, a[2] * factor}; }
Point Unit(const Point& a) { return Scaled(a, 1 / std::sqrt(Dot(a, a))); }

// A camera worked out by hand: a ray through a window pixel and, for the module, the matrix that belongs to it.
struct Camera {
    Point eye{0, 0, 300};
    Point target{0, 0, 0};
    double halfAngle = 0.4;  // radians, vertical
    double aspect = 16.0 / 9;
    std::int32_t width = 1920;
    std::int32_t height = 1080;

    [[nodiscard]] Point Forward() const { return Unit(target - eye); }
    [[nodiscard]] Point Right() const { return Unit(Cross(Forward(), {0, 1, 0})); }
    [[nodiscard]] Point Up() const { return Cross(Right(), Forward()); }

    // Through window pixel (x, y), y from the top.
    [[nodiscard]] Point Ray(std::int32_t x, std::int32_t y) const {
        const double sideways = (2.0 * x / width - 1) * std::tan(halfAngle) * aspect;
        const double upwards = (2.0 * (height - y) / height - 1) * std::tan(halfAngle);
        Point ray = Forward();
        for (std::size_t i = 0; i < 3; ++i) ray[i] += sideways * Right()[i] + upwards * Up()[i];
        return ray;
    }

    // Projection times view, column vectors.
    [[nodiscard]] std::array<float, 16> ProjectionView() const {
        constexpr double nearPlane = 10;
        constexpr double farPlane = 2000;
        const std::array<Point, 3> axes{Right(), Up(), Scaled(Forward(), -1)};
        const std::array<double, 3> scale{1 / (std::tan(halfAngle) * aspect), 1 / std::tan(halfAngle),
                                          (farPlane + nearPlane) / (nearPlane - farPlane)};
        std::array<float, 16> matrix{};
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column) {
                matrix[column * 4 + row] = static_cast<float>(scale[row] * axes[row][column]);
            }
            matrix[12 + row] = static_cast<float>(-scale[row] * Dot(axes[row], eye));
        }
        matrix[14] += static_cast<float>(2 * farPlane * nearPlane / (nearPlane - farPlane));
        for (std::size_t column = 0; column < 3; ++column)
            matrix[column * 4 + 3] = static_cast<float>(Forward()[column]);
        matrix[15] = static_cast<float>(-Dot(Forward(), eye));
        return matrix;
    }
};

// The container's axes in the world and where its origin lies.
struct Placement {
    Point xAxis{1, 0, 0};
    Point yAxis{0, 1, 0};
    Point origin{0, 0, 0};

    [[nodiscard]] std::array<float, 16> LocalToWorld() const {
        const Point zAxis = Cross(xAxis, yAxis);
        std::array<float, 16> matrix{};
        const std::array<Point, 4> columns{xAxis, yAxis, zAxis, origin};
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t row = 0; row < 3; ++row) {
                matrix[column * 4 + row] = static_cast<float>(columns[column][row]);
            }
        }
        matrix[15] = 1;
        return matrix;
    }

    // Where the ray meets the plane, in the container's coordinates.
    [[nodiscard]] std::array<double, 2> Hit(const Point& eye, const Point& ray) const {
        const Point normal = Cross(xAxis, yAxis);
        const double t = Dot(origin - eye, normal) / Dot(ray, normal);
        Point hit = eye - origin;
        for (std::size_t i = 0; i < 3; ++i) hit[i] += t * ray[i];
        return {Dot(hit, xAxis) / Dot(xAxis, xAxis), Dot(hit, yAxis) / Dot(yAxis, yAxis)};
    }
};

void Place(ModuleFixture& fixture, const Camera& camera, const Placement& placement) {
    fixture.host.cameraMatrix = camera.ProjectionView();
    fixture.host.containerMatrix = placement.LocalToWorld();
    fixture.plugin.windowWidth = camera.width;
    fixture.plugin.windowHeight = camera.height;
}

// Floats carry the points and their differences, rounded to about 0.00003 at lengths of some hundreds; the ray's near
// point adds its own. Areas come from squares of such lengths: 1000 * 0.00003 * 4e5 = 1e4 under the root, a quarter of
// whose root, 25, is 0.05 in units of the triangle's 500 per unit. That is all of a sliver beside an axis; away from
// the axes it is divided by twice the distance.
double Tolerance(double wanted) { return std::abs(wanted) < 3 ? 0.2 : 0.02; }

void CheckAgainstCamera(const Camera& camera, const Placement& placement) {
    ModuleFixture fixture;
    Place(fixture, camera, placement);
    for (std::int32_t y = 40; y < camera.height; y += 200) {
        for (std::int32_t x = 30; x < camera.width; x += 310) {
            const auto wanted = placement.Hit(camera.eye, camera.Ray(x, y));
            const Vector3 got = MapPointerToContainer(fixture.plugin, {7}, x, y);
            INFO("window pixel ", x, " ", y);
            CHECK_LT(std::abs(got.x - wanted[0]), Tolerance(wanted[0]));
            CHECK_LT(std::abs(got.y - wanted[1]), Tolerance(wanted[1]));
            CHECK_EQ(got.z, 0.0F);
        }
    }
}

TEST_CASE("A container seen straight on maps like the camera says") { CheckAgainstCamera({}, {}); }

TEST_CASE("A rotated, stretched and shifted container maps like the camera says") {
    Camera camera;
    camera.eye = {80, 120, 260};
    camera.target = {10, 5, 0};
    Placement placement;
    const double tilt = 0.7;
    placement.xAxis = Scaled({std::cos(0.3), std::sin(0.3), 0}, 2.5);
    placement.yAxis = Scaled({-std::sin(0.3) * std::cos(tilt), std::cos(0.3) * std::cos(tilt), std::sin(tilt)}, 0.8);
    placement.origin = {15, -20, 12};
    CheckAgainstCamera(camera, placement);
}

TEST_CASE("A container seen from behind maps like the camera says") {
    Placement placement;
    placement.xAxis = {-1, 0, 0};
    CheckAgainstCamera({}, placement);
}

TEST_CASE("The host is asked in a fixed order, names in writable storage included") {
    ModuleFixture fixture;
    fixture.plugin.windowWidth = 1023;
    fixture.plugin.windowHeight = 1000;
    (void)MapPointerToContainer(fixture.plugin, {7}, 30, 40);
    CHECK_EQ(fixture.host.TakeCalls(),
             std::vector<std::string>{"_api__get_sceneid_local SCENE 0", "_api__get_scene_current_camera 3",
                                      "_api__get_cameraid 4 RENDERCAMERA 62", "_api__get_camera_matrix 5",
                                      "_api__container_get_transformation_matrix 7", "gluUnProject 30 960 0",
                                      "gluUnProject 30 960 1"});
}

// N . D is the sine of the angle between ray and plane: 0.0199 is too flat, 0.0201 is not.
TEST_CASE("A container seen nearly edge-on gives a fixed point") {
    ModuleFixture fixture;
    fixture.plugin.windowWidth = 1023;
    fixture.plugin.windowHeight = 1023;
    Placement placement;
    const auto tilt = [&](double sine) {
        placement.xAxis = {sine, 0, std::sqrt(1 - sine * sine)};
        fixture.host.containerMatrix = placement.LocalToWorld();
        return MapPointerToContainer(fixture.plugin, {7}, 300, 400);
    };
    CHECK_EQ(tilt(0), Vector3(0, 0, -1000));
    CHECK_EQ(tilt(0.0199), Vector3(0, 0, -1000));
    CHECK_NE(tilt(0.0201), Vector3(0, 0, -1000));
}

TEST_CASE("The box's corners are the canvas's corners, y downwards") {
    ModuleFixture fixture;
    fixture.plugin.windowWidth = 1000;
    fixture.plugin.windowHeight = 1000;
    ReadBoundingBox(fixture.plugin, {7});
    const auto at = [&](std::int32_t x, std::int32_t y) { return MapPointerToCanvas(fixture.plugin, {7}, x, y); };
    CHECK_EQ(at(0, 0).x, doctest::Approx(0).epsilon(0.001));
    CHECK_EQ(at(0, 0).y, doctest::Approx(0).epsilon(0.001));
    CHECK_EQ(at(1000, 1000).x, doctest::Approx(1023));
    CHECK_EQ(at(1000, 1000).y, doctest::Approx(1023));
    // Beyond the box, beyond the canvas: nothing is clamped.
    CHECK_EQ(at(-500, 1500).x, doctest::Approx(-511.5));
    CHECK_EQ(at(-500, 1500).y, doctest::Approx(1534.5));
}

TEST_CASE("The aspect is width over height of the box, z ignored") {
    ModuleFixture fixture;
    fixture.host.box = {-80, -10, -5, 80, 30, 77};
    CHECK(ReadBoundingBox(fixture.plugin, {7}));
    CHECK_EQ(fixture.plugin.telestrator.aspect, 4.0F);  // 160 / 40
    CHECK_EQ(fixture.plugin.boxMinX, -80.0F);
    CHECK_EQ(fixture.plugin.boxMaxX, 80.0F);
    CHECK_EQ(fixture.plugin.boxMinY, -10.0F);
    CHECK_EQ(fixture.plugin.boxMaxY, 30.0F);
}

TEST_CASE("A box maps only when both sides exceed 0.0001") {
    ModuleFixture fixture;
    const auto maps = [&](float width, float height) {
        fixture.host.box = {0, 0, 0, width, height, 0};
        return ReadBoundingBox(fixture.plugin, {7});
    };
    CHECK(maps(0.00011F, 0.00011F));
    CHECK_FALSE(maps(0.00009F, 1));
    CHECK_FALSE(maps(1, 0.00009F));
    CHECK_FALSE(maps(-1, 1));
    CHECK_FALSE(maps(std::numeric_limits<float>::quiet_NaN(), 1));
    CHECK_FALSE(maps(1, 0));
    CHECK(std::isinf(fixture.plugin.telestrator.aspect));
}

TEST_CASE("A failed unprojection maps whatever the window coordinates give") {
    ModuleFixture fixture;
    fixture.plugin.windowWidth = 100;
    fixture.plugin.windowHeight = 100;
    fixture.host.unprojects = false;
    // Near (30, 60, 0) and far (30, 60, 1): the ray runs along z and meets the plane z = 0 at (30, 60).
    const Vector3 point = MapPointerToContainer(fixture.plugin, {7}, 30, 40);
    CHECK_EQ(point.x, doctest::Approx(30));
    CHECK_EQ(point.y, doctest::Approx(60));
}

}  // namespace
}  // namespace chalkpane::testing
