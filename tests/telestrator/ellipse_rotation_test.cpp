#include "telestrator/recognition/ellipse_rotation.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <numbers>
#include <random>
#include <vector>

#include "chalkpane/base/cpu_features.h"

#if defined(__x86_64__)
namespace chalkpane {
namespace {

struct Stroke {
    std::vector<double> xs, ys, radii, angles;

    void Add(float x, float y) {
        const Vector3 point(x, y, 0);
        xs.push_back(point.x);
        ys.push_back(point.y);
        radii.push_back(point.Length());
        angles.push_back(std::atan2(double{point.y}, double{point.x}));
    }
    [[nodiscard]] SeenPoints Seen() const { return {xs, ys, radii, angles}; }
};

struct Result {
    std::vector<float> xs, ys;
    Box box{};
    std::int32_t count = 0;

    explicit Result(std::size_t points) : xs(points), ys(points) {}
    [[nodiscard]] RotatedPoints Room() { return {xs, ys}; }
};

EllipseFit FitOf(const Box& box, double angle) {
    EllipseFit fit;
    fit.angle = angle;
    fit.centre = Vector3(box.x.Middle(), box.y.Middle(), 0);
    fit.halfWidth = box.x.HalfWidth();
    fit.halfHeight = box.y.HalfWidth();
    return fit;
}

void CompareForms(const Stroke& stroke, double tolerance) {
    constexpr Box start{{1024, -1024}, {1024, -1024}};
    const std::size_t count = stroke.xs.size();
    Result plain(count);
    Result vector(count);
    for (int rotation = 0; rotation < 360; ++rotation) {
        const double angle = rotation * std::numbers::pi / 360 - std::numbers::pi / 2;
        plain.box = RotatePointsPlain(stroke.Seen(), angle, plain.Room(), start);
        vector.box = RotatePointsAvx2(stroke.Seen(), angle, vector.Room(), start);
        CAPTURE(rotation);
        REQUIRE(plain.xs == vector.xs);
        REQUIRE(plain.ys == vector.ys);
        REQUIRE_EQ(plain.box.x.low, vector.box.x.low);
        REQUIRE_EQ(plain.box.x.high, vector.box.x.high);
        REQUIRE_EQ(plain.box.y.low, vector.box.y.low);
        REQUIRE_EQ(plain.box.y.high, vector.box.y.high);
        const EllipseFit fit = FitOf(plain.box, angle);
        REQUIRE_EQ(CountPointsOnEllipsePlain(plain.Room(), fit, tolerance),
                   CountPointsOnEllipseAvx2(plain.Room(), fit, tolerance));
    }
}

}  // namespace

TEST_CASE("the vector form of a rotation is equal on random strokes of every size") {
    if (!HasAvx2()) return;
    std::mt19937 random(20240611);
    for (const double size : {1e-6, 0.5, 30.0, 500.0, 60000.0, 2e9, 3e38}) {
        CAPTURE(size);
        std::uniform_real_distribution<double> coordinate(-size, size);
        Stroke stroke;
        for (int i = 0; i < 403; ++i) {
            const double x = coordinate(random);
            stroke.Add(static_cast<float>(x), static_cast<float>(coordinate(random)));
        }
        CompareForms(stroke, 0.05 * size);
    }
}

// Many of them fall on the axes of some rotation, where the products and the functions disagree about what is nothing.
TEST_CASE("the vector form of a rotation is equal on whole pixels, the middle and the axes") {
    if (!HasAvx2()) return;
    Stroke stroke;
    for (int y = -12; y <= 12; ++y)
        for (int x = -12; x <= 12; ++x) stroke.Add(static_cast<float>(x), static_cast<float>(y));
    CompareForms(stroke, 1);
    CompareForms(stroke, 0);
}

TEST_CASE("the vector form of a rotation is equal on ellipses, however many points are left over at the end") {
    if (!HasAvx2()) return;
    for (int count = 1; count < 24; ++count) {
        CAPTURE(count);
        Stroke stroke;
        for (int i = 0; i < count; ++i) {
            const double t = 2 * std::numbers::pi * i / count;
            stroke.Add(static_cast<float>(300 * std::cos(t)), static_cast<float>(120 * std::sin(t)));
        }
        CompareForms(stroke, 5);
    }
}

}  // namespace chalkpane
#endif
