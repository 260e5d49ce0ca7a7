#include "chalkpane/image/rect.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <limits>

using namespace chalkpane;

namespace {
constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
constexpr auto highest = std::numeric_limits<std::int32_t>::max();
}  // namespace

TEST_CASE("A fresh rectangle is the empty one") {
    CHECK(Rect() == Rect(0, 0, -1, -1));
    CHECK_FALSE(Rect().IsValid());
    CHECK_EQ(Rect().Width(), 0);
    CHECK_EQ(Rect().Height(), 0);
    Rect rect(1, 2, 3, 4);
    rect.SetEmpty();
    CHECK(rect == Rect());
}

TEST_CASE("A rectangle is empty only when reversed on both axes") {
    CHECK_FALSE(Rect(5, 5, 4, 4).IsValid());
    CHECK(Rect(5, 5, 4, 5).IsValid());
    CHECK(Rect(5, 5, 5, 4).IsValid());
    CHECK(Rect(5, 5, 5, 5).IsValid());
}

TEST_CASE("Both ends belong to a rectangle") {
    const Rect rect(2, 3, 5, 3);
    CHECK_EQ(rect.Width(), 4);
    CHECK_EQ(rect.Height(), 1);
    CHECK(rect.Contains(2, 3));
    CHECK(rect.Contains(5, 3));
    CHECK_FALSE(rect.Contains(6, 3));
    CHECK_FALSE(rect.Contains(5, 4));
    CHECK(rect.Contains(Rect(3, 3, 5, 3)));
    CHECK_FALSE(rect.Contains(Rect(3, 3, 6, 3)));
}

TEST_CASE("A size starts at the origin") {
    Rect rect;
    rect.SetSize(7, 5);
    CHECK(rect == Rect(0, 0, 6, 4));
    rect.SetSize(0, 0);
    CHECK_FALSE(rect.IsValid());
    rect.Set(1, 2, 3, 4);
    CHECK(rect == Rect(1, 2, 3, 4));
}

TEST_CASE("The union holds both, and the empty rectangle adds nothing") {
    CHECK(Rect(0, 0, 2, 2).Union(Rect(5, -4, 6, 1)) == Rect(0, -4, 6, 2));
    CHECK(Rect().Union(Rect(5, 5, 6, 6)) == Rect(5, 5, 6, 6));
    CHECK(Rect(5, 5, 6, 6).Union(Rect()) == Rect(5, 5, 6, 6));
    CHECK(Rect().Union(Rect()) == Rect());
}

TEST_CASE("The intersection is the overlap or the empty rectangle") {
    CHECK(Rect(0, 0, 4, 4).Intersection(Rect(4, 4, 9, 9)) == Rect(4, 4, 4, 4));
    CHECK(Rect(0, 0, 4, 4).Intersects(Rect(4, 4, 9, 9)));
    CHECK(Rect(0, 0, 4, 4).Intersection(Rect(5, 0, 9, 9)) == Rect());
    CHECK_FALSE(Rect(0, 0, 4, 4).Intersects(Rect(5, 0, 9, 9)));
    CHECK(Rect(0, 0, 4, 4).Intersection(Rect()) == Rect());
    CHECK(Rect(0, 0, 4, 4).Intersection(Rect(3, 3, 2, 4)) == Rect());
}

TEST_CASE("Moving keeps the size") {
    Rect rect(1, 2, 4, 8);
    rect.Translate(-3, 10);
    CHECK(rect == Rect(-2, 12, 1, 18));
    rect.MoveTo(100, -1);
    CHECK(rect == Rect(100, -1, 103, 5));
}

TEST_CASE("Growing to a point starts with that point") {
    Rect rect;
    rect.ExtendTo(7, -3);
    CHECK(rect == Rect(7, -3, 7, -3));
    rect.ExtendTo(5, 4);
    CHECK(rect == Rect(5, -3, 7, 4));
    rect.ExtendTo(6, 0);
    CHECK(rect == Rect(5, -3, 7, 4));
}

TEST_CASE("Inflating moves all four sides of a valid rectangle only") {
    Rect rect(0, 0, 9, 9);
    rect.Inflate(2);
    CHECK(rect == Rect(-2, -2, 11, 11));
    rect.Deflate(3);
    CHECK(rect == Rect(1, 1, 8, 8));
    Rect empty;
    empty.Inflate(5);
    CHECK(empty == Rect());
    empty.Deflate(5);
    CHECK(empty == Rect());
}

TEST_CASE("Inflating on y alone does not ask whether the rectangle is valid") {
    Rect empty;
    empty.InflateY(2);
    CHECK(empty == Rect(0, -2, -1, 1));
    Rect rect(0, 0, 9, 9);
    rect.DeflateY(4);
    CHECK(rect == Rect(0, 4, 9, 5));
}

TEST_CASE("Sides are clamped to the ends of the 32-bit range") {
    Rect rect(lowest, lowest, highest, highest);
    CHECK_EQ(rect.Width(), highest);
    rect.Inflate(10);
    CHECK(rect == Rect(lowest, lowest, highest, highest));
    rect.Translate(highest, lowest);
    CHECK(rect == Rect(-1, lowest, highest, -1));
    rect = Rect(lowest, lowest, highest, highest);
    rect.MoveTo(highest, 0);
    CHECK_EQ(rect.x1, highest);
    rect.SetSize(lowest, lowest);
    CHECK_FALSE(rect.IsValid());
    rect.Deflate(lowest);
    CHECK_FALSE(rect.Intersects(Rect(highest, 0, lowest, 0)));
}
