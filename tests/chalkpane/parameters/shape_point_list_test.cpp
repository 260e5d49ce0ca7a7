#include "chalkpane/parameters/shape_point_list.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <random>

#include "chalkpane/parameters/animation/bezier.h"
#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/graph_value.h"

namespace {

using namespace chalkpane;

TEST_CASE("The identity answers x, clamped outside 0 to 1") {
    const ShapePointList list;
    REQUIRE_EQ(list.size(), 2);
    // Handles on their points make x(u) = y(u), so y = x but for the solver's last error.
    for (int i = 0; i <= 1000; ++i) CHECK(list.evaluate(i / 1000.0) == doctest::Approx(i / 1000.0).epsilon(1e-7));
    CHECK_EQ(list.evaluate(0.0), 0.0);
    CHECK_EQ(list.evaluate(1.0), 1.0);
    CHECK_EQ(list.evaluate(-5.0), 0.0);
    CHECK_EQ(list.evaluate(5.0), 1.0);
}

TEST_CASE("An empty list answers its own value, a single point its y") {
    ShapePointList list;
    list.clear();
    CHECK_EQ(list.evaluate(0.5), 0.0);
    list.emptyValue = 7.0;
    CHECK_EQ(list.evaluate(0.5), 7.0);
    list.insert(0.5, 3.0);
    for (const double x : {-1.0, 0.5, 2.0}) CHECK_EQ(list.evaluate(x), 3.0);
}

TEST_CASE("A point answers its own y even outside 0 to 1; between points the answer is limited") {
    ShapePointList list;
    list.insert(0.5, 4.0);
    CHECK_EQ(list.evaluate(0.5), 4.0);
    CHECK_EQ(list.evaluate(0.49), 1.0);
    list.insert(0.75, -4.0);
    CHECK_EQ(list.evaluate(0.75), -4.0);
    CHECK_EQ(list.evaluate(0.74), 0.0);
}

TEST_CASE("A stepped list answers the left y across the span") {
    ShapePointList list;
    list.insert(0.5, 4.0);
    list.stepped = true;
    CHECK_EQ(list.evaluate(0.1), 0.0);
    CHECK_EQ(list.evaluate(0.499), 0.0);
    CHECK_EQ(list.evaluate(0.5), 4.0);
    CHECK_EQ(list.evaluate(0.7), 4.0);  // not limited
    CHECK_EQ(list.evaluate(1.0), 1.0);
}

TEST_CASE("Of two points at one x the first answers there, the second rules the span behind") {
    ShapePointList list;
    list.insert(0.5, 0.25);
    list.insert(0.5, 0.75);
    list.stepped = true;
    CHECK_EQ(list.evaluate(0.5), 0.25);
    CHECK_EQ(list.evaluate(0.6), 0.75);
}

TEST_CASE("Handles shape the curve") {
    ShapePointList list;
    list[0].setOutHandle(0.5, 0.0);
    list[1].setInHandle(0.5, 1.0);
    // At u = 1/2: x = (0 + 3 * 0.5 + 3 * 0.5 + 1) / 8 = 0.5 and y = (0 + 0 + 3 * 1 + 1) / 8 = 0.5.
    CHECK(list.evaluate(0.5) == doctest::Approx(0.5));
    // At u = 1/4: x = 3 (27/64... ) worked: w = 3/4; 3 w w u * 0.5 + 3 w u u * 0.5 + u^3
    //   = 27/64 * 0.5 + 9/64 * 0.5 + 1/64 = 19/64, and y = 9/64 + 1/64 = 10/64.
    CHECK(list.evaluate(19.0 / 64.0) == doctest::Approx(10.0 / 64.0));
}

TEST_CASE("Handles are offsets: they move with the point") {
    ShapePointList list;
    list[0].setOutHandle(0.25, 0.5);
    list[0].setPoint(1.0, 1.0);
    double x = 0.0;
    double y = 0.0;
    list[0].getOutHandle(x, y);
    CHECK_EQ(x, 1.25);
    CHECK_EQ(y, 1.5);
    list[0].getInHandle(x, y);
    CHECK_EQ(x, 1.0);
    list[0].getPoint(x, y);
    CHECK_EQ(y, 1.0);
}

TEST_CASE("A copy takes the points and leaves the rest of the target") {
    ShapePointList source;
    source.insert(0.5, 0.75).setInHandle(0.25, 0.5);
    source.stepped = true;
    source.emptyValue = 3.0;
    ShapePointList target;
    target.emptyValue = 5.0;
    target = source;
    CHECK(target.equals(source));
    CHECK_FALSE(target.stepped);
    CHECK_EQ(target.emptyValue, 5.0);
    const ShapePointList made(source);
    CHECK(made.equals(source));
    CHECK_FALSE(made.stepped);
    const ShapePointList& same = target;
    target = same;
    CHECK_EQ(target.size(), 3);
}

TEST_CASE("Lists are equal by count and by all six coordinates") {
    ShapePointList a;
    ShapePointList b;
    b.stepped = true;
    CHECK(a.equals(b));
    a[1].setInHandle(0.5, 1.0);
    CHECK_FALSE(a.equals(b));
    b[1].setInHandle(0.5, 1.0);
    CHECK(a.equals(b));
    a[1].setOutHandle(1.0, 2.0);
    CHECK_FALSE(a.equals(b));
    b.insert(0.5, 0.5);
    CHECK_FALSE(a.equals(b));
}

TEST_CASE("The definitions of point and handle are shared and made once") {
    const ShapePointList list;
    ParameterDef before("Test", "Test", ParameterType::integer, 0);
    const ShapePointList other;
    const ParameterDef after("Test", "Test", ParameterType::integer, 0);
    CHECK_EQ(after.id, before.id + 1);
}

TEST_CASE("Numbers that are none, and reversed points, end in an answer") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    ShapePointList list;
    CHECK_EQ(list.evaluate(nan), 1.0);  // no span is found
    CHECK_EQ(list.evaluate(infinity), 1.0);
    CHECK_EQ(list.evaluate(-infinity), 0.0);
    list[0].setOutHandle(nan, infinity);
    list[1].setInHandle(-infinity, nan);
    list.evaluate(0.5);
    list.append().setPoint(-3.0, 0.5);
    CHECK_EQ(list.evaluate(9.0), 0.5);
    for (const double odd : {nan, infinity, -infinity, 1e308}) {
        for (const double x : {0.5, odd}) {
            const double u = solveBezierParameter(0.0, odd, -odd, 1.0, x);
            CHECK(u >= 0.0);
            CHECK(u <= 1.0);
        }
    }
}

TEST_CASE("The solver finds u on rising controls") {
    std::mt19937 random(4711);  // seed
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 10000; ++i) {
        const double x1 = unit(random);
        const double x2 = unit(random);
        const double x = unit(random);
        const double u = solveBezierParameter(0.0, x1, x2, 1.0, x);
        // The bisection stops within 1e-8 of x, and Newton is kept only where it comes closer.
        CHECK(std::fabs(bezierAt(u, 0.0, x1, x2, 1.0) - x) <= 1.0001e-8);
    }
}

TEST_CASE("A graph once set stays set, and a reset one too") {
    ParameterDef definition("Test", "Test", ParameterType::graph, 0);
    definition.defaultValue = makeValue<GraphValue>(ShapePointList());
    GraphValue value(&definition);
    CHECK_FALSE(value.isSetLocally());
    value.setGraph(ShapePointList());
    CHECK(value.isSetLocally());
    value.clearSet();
    value.reset();
    CHECK(value.isSetLocally());
}

TEST_CASE("Reading a graph copies the points alone") {
    GraphValue value(nullptr);
    value.list().stepped = true;
    value.list().insert(0.5, 0.1);
    ShapePointList out;
    value.getGraph(out);
    CHECK_EQ(out.size(), 3);
    CHECK_FALSE(out.stepped);
}

TEST_CASE("Splines that differ only in whether midpoints were given are equal") {
    ColourSpline a;
    ColourSpline b;
    a.addKnot(Colour{1, 2, 3}, 0.25f);
    b.addKnot(Colour{1, 2, 3}, 0.25f, 0.5f);
    CHECK_FALSE(a.midpointsGiven());
    CHECK(b.midpointsGiven());
    CHECK(a.equals(b));
    CHECK_EQ(a.knotMidpoint(0), 0.5f);
    b.addKnot(Colour{1, 2, 3}, 0.25f, 0.75f);
    CHECK_FALSE(a.equals(b));
    a.addKnot(Colour{1, 2, 3}, 0.25f, 0.5f);
    CHECK_FALSE(a.equals(b));
}

TEST_CASE("Knots keep the order in which they were added") {
    ColourSpline spline;
    spline.addKnot(Colour::fromIndex(0), 0.9f);
    spline.addKnot(Colour::fromIndex(1), 0.1f);
    REQUIRE_EQ(spline.knotCount(), 2);
    CHECK_EQ(spline.knotPosition(0), 0.9f);
    CHECK(spline.knotColour(1) == Colour::fromIndex(1));
}

TEST_CASE("A colour spline set to the parent's inherits, and carries whether midpoints were given") {
    ColourSpline spline;
    spline.addKnot(Colour{1, 2, 3}, 0.25f);
    ColourSplineValue parent(spline);
    ColourSplineValue value(nullptr);
    value.setParent(&parent);
    ColourSpline same;
    same.addKnot(Colour{1, 2, 3}, 0.25f, 0.5f);
    value.setColourSpline(same);
    CHECK_FALSE(value.isSetLocally());
    CHECK(value.stored().midpointsGiven());
}

}  // namespace
