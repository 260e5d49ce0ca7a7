#include "obs/item_place.h"

#include <doctest/doctest.h>

#include <limits>

using chalkpane::obs::ItemPlace;
using chalkpane::obs::PixelPosition;

namespace {

PixelPosition Found(const ItemPlace& place, const PixelPosition& at) {
    const auto found = place.FromScene(at);
    REQUIRE(found.has_value());
    return *found;
}

void CheckIs(const PixelPosition& found, double x, double y) {
    CHECK_EQ(found.x, doctest::Approx(x));
    CHECK_EQ(found.y, doctest::Approx(y));
}

}  // namespace

TEST_CASE("An item that lies as it is has the scene's pixels") { CheckIs(Found({}, {12, 34}), 12, 34); }

// (80 - 40) / 0.5 + 100 = 180; (60 - 30) / 0.75 + 40 = 80.
TEST_CASE("What is seen of a moved, scaled and cropped item begins behind what is cropped") {
    CheckIs(Found({{0.5, 0}, {0, 0.75}, {40, 30}, 100, 40}, {80, 60}), 180, 80);
}

// One to the right in the item is one down in the scene, one down in the item one to the left. From (200, 50) to (170,
// 90) are 30 to the left, so 30 down, and 40 down, so 40 to the right.
TEST_CASE("An item that is rotated by a right angle has its axes back") {
    CheckIs(Found({{0, 1}, {-1, 0}, {200, 50}, 0, 0}, {170, 90}), 40, 30);
}

// The item's (x, y) lies at (3x + 1y, 1x + 2y): (4, 6) at (18, 16).
TEST_CASE("An item that is sheared has its axes back") {
    CheckIs(Found({{3, 1}, {1, 2}, {0, 0}, 0, 0}, {18, 16}), 4, 6);
}

// (200 - 150) / 0.5 = 100.
TEST_CASE("A mirrored item counts from its right") {
    CheckIs(Found({{-0.5, 0}, {0, 0.5}, {200, 0}, 0, 0}, {150, 20}), 100, 40);
}

// 1 / 0.002 = 500: 2 pixels of the scene are 1000 of the item.
TEST_CASE("A tiny item is found too") { CheckIs(Found({{0.002, 0}, {0, 0.002}, {10, 10}, 0, 0}, {12, 11}), 1000, 500); }

TEST_CASE("An item without an area has no pixel anywhere") {
    CHECK_FALSE(ItemPlace{{0, 0}, {0, 1}, {5, 5}, 0, 0}.FromScene({5, 5}).has_value());
    CHECK_FALSE(ItemPlace{{2, 1}, {4, 2}, {5, 5}, 0, 0}.FromScene({9, 3}).has_value());
    constexpr double nowhere = std::numeric_limits<double>::quiet_NaN();
    CHECK_FALSE(ItemPlace{{nowhere, 0}, {0, 1}, {5, 5}, 0, 0}.FromScene({5, 5}).has_value());
}
