#include "telestrator/recognition/ellipse_drawing.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "chalkpane/brush/basic_brush.h"
#include "telestrator/recognition/repeated_sum.h"
#include "tests/reference/recognition_reference.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

double AddInTurn(double x, double step, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) x += step;
    return x;
}

// An ellipse through the middle of the canvas, all of it but a little beside.
struct GreatEllipse {
    double a, b, angle;
    double sign;  // 1: the middle of its first half lies on the canvas; -1: of its second
    std::int32_t brushWidth;
};

EllipseFit FitOf(const GreatEllipse& ellipse) {
    EllipseFit fit;
    fit.halfWidth = ellipse.a;
    fit.halfHeight = ellipse.b;
    fit.angle = ellipse.angle;
    return fit;
}

Vector3 CentroidOf(const GreatEllipse& ellipse) {
    const double toMiddle = ellipse.sign * ellipse.b;
    return {512 - toMiddle * std::sin(ellipse.angle), 512 - toMiddle * std::cos(ellipse.angle), 0};
}

std::vector<Vector3> VerticesOf(const GreatEllipse& ellipse) {
    reference::Ellipse plain;
    plain.a = ellipse.a;
    plain.b = ellipse.b;
    plain.angle = ellipse.angle;
    return reference::EllipseVertices(plain, CentroidOf(ellipse), 1, ellipse.brushWidth);
}

class CountingListener : public StepListener {
public:
    void OnStep(const TelestratorSurface& /*surface*/, StrokeStage /*stage*/, double /*x*/, double /*y*/,
                double /*pressure*/) noexcept override {
        ++steps;
    }
    std::size_t steps = 0;
};

TEST_CASE("Adding many times at once gives the double of adding in turn") {
    constexpr unsigned seed = 15;
    CAPTURE(seed);
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> fraction(0.5, 1);
    for (int i = 0; i < 20000; ++i) {
        const auto power = static_cast<int>(random() % 22) - 4;
        const double x = std::ldexp(fraction(random), power) * (random() % 2 == 0 ? 1 : -1);
        const bool isAnyStep = random() % 4 == 0;
        const double size = isAnyStep ? std::ldexp(fraction(random), static_cast<int>(random() % 16) - 12) : 0.01;
        const double step = random() % 2 == 0 ? size : -size;
        const auto count = static_cast<std::int64_t>(random() % (i % 100 == 0 ? 20000 : 200));
        CAPTURE(x);
        CAPTURE(step);
        CAPTURE(count);
        REQUIRE_EQ(AddRepeatedly(x, step, count), AddInTurn(x, step, count));
    }
}

// From 1/64 to 1/32 the unit is 2^-58 and 0.01 an odd number of its halves: every addition is a tie.
TEST_CASE("Adding many times at once rounds ties as adding in turn does") {
    for (int tenThousandths = 157; tenThousandths < 312; ++tenThousandths)
        for (const double step : {0.01, -0.01})
            for (std::int64_t count = 0; count < 12; ++count) {
                const double x = tenThousandths / 10000.0;
                REQUIRE_EQ(AddRepeatedly(x, step, count), AddInTurn(x, step, count));
            }
}

// A quarter has 100 vertices to a pixel of its half width, and some 370000 of the first half's lie in a row beside
// the canvas.
TEST_CASE("A great ellipse paints what painting all of its vertices does, but works out few of those beside") {
    for (const GreatEllipse& ellipse : {GreatEllipse{5200, 4000, 0.5, 1, 1}, GreatEllipse{4700, 4600, -1.2, -1, 0}}) {
        CAPTURE(ellipse.a);
        const auto vertices = VerticesOf(ellipse);
        const auto reference = ReferenceSurface(ellipse.brushWidth);
        const auto surface = ReferenceSurface(ellipse.brushWidth);
        const std::uint64_t before = surface->brush->Revision();
        PaintVertices(*reference, vertices);
        MemoryGuard memory;
        DrawEllipse(ShapePen(memory, surface.get(), 1), FitOf(ellipse), CentroidOf(ellipse), ellipse.brushWidth);
        CHECK(PixelsOf(*surface) == PixelsOf(*reference));
        CHECK_FALSE(IsBlank(*surface));
        CHECK_LT(surface->brush->Revision() - before, vertices.size() * 9 / 10);
    }
}

TEST_CASE("Of an ellipse that lies beside the canvas hardly a vertex is worked out") {
    const auto surface = ReferenceSurface(1);
    const std::uint64_t before = surface->brush->Revision();
    MemoryGuard memory;
    EllipseFit fit;
    fit.halfWidth = 60000;
    fit.halfHeight = 50000;
    DrawEllipse(ShapePen(memory, surface.get(), 1), fit, {512, 512, 0}, 1);
    CHECK(IsBlank(*surface));
    CHECK_LT(surface->brush->Revision() - before, 10);
}

TEST_CASE("Who listens hears of every vertex of an ellipse, seen or not") {
    const GreatEllipse ellipse{300, 40, 0.2, 1, 1};
    const auto surface = ReferenceSurface(ellipse.brushWidth);
    CountingListener listener;
    surface->listener = &listener;
    MemoryGuard memory;
    DrawEllipse(ShapePen(memory, surface.get(), 1), FitOf(ellipse), {-5000, 512, 0}, ellipse.brushWidth);
    CHECK_GT(listener.steps, 60000);
    surface->listener = nullptr;
}

}  // namespace
}  // namespace chalkpane::testing
