#include <doctest/doctest.h>

#include <utility>

#include "kel/workspace/field_pacer.h"
#include "kel/workspace/pen_times.h"
#include "kel/workspace/picture_area.h"

namespace kel {
namespace {

using std::chrono::milliseconds;
using Time = FieldPacer::Clock::time_point;

const Time start{std::chrono::hours(1)};

}  // namespace

TEST_CASE("Fields are due one by one, and none is missed while they are kept") {
    FieldPacer pacer(50, start);
    CHECK_EQ(pacer.Due(start - milliseconds(1)), 0);
    for (int field = 0; field < 100; ++field) {
        CHECK_EQ(pacer.Due(start + milliseconds(20 * field + 3)), 1);
        CHECK_EQ(pacer.Due(start + milliseconds(20 * field + 4)), 0);
    }
    CHECK_EQ(pacer.Missed(), 0);
    // The second second is not over, the first had 50.
    CHECK_EQ(pacer.Rate(start + milliseconds(1990)), 50);
    CHECK_FALSE(pacer.HasMissedLately(start + milliseconds(1990)));
}

TEST_CASE("A rate is that of the last whole second, and none where nothing happened in it") {
    SecondRate rate;
    CHECK_EQ(rate.Of(start), 0);
    for (int i = 0; i < 7; ++i) rate.Add(start + milliseconds(100 * i));
    CHECK_EQ(rate.Of(start + milliseconds(999)), 0);
    CHECK_EQ(rate.Of(start + milliseconds(1000)), 7);
    rate.Add(start + milliseconds(1300), 3);
    CHECK_EQ(rate.Of(start + milliseconds(1999)), 7);
    CHECK_EQ(rate.Of(start + milliseconds(2000)), 3);
    CHECK_EQ(rate.Of(start + milliseconds(3000)), 0);
    rate.Add(start + milliseconds(9500));
    CHECK_EQ(rate.Of(start + milliseconds(9600)), 0);
    CHECK_EQ(rate.Of(start + milliseconds(10'000)), 1);
}

TEST_CASE("From pen to picture counts from what was first not shown, and the median of the stroke is told") {
    PenTimes pen;
    CHECK_EQ(pen.OfLastStroke() == PenTimes::Clock::duration::zero(), true);
    pen.Press(start);
    pen.Move(start + milliseconds(4));
    pen.Shown(start + milliseconds(9));   // 9 ms after the press
    pen.Shown(start + milliseconds(30));  // without anything of the pen
    pen.Move(start + milliseconds(100));
    pen.Shown(start + milliseconds(105));  // 5 ms
    pen.Move(start + milliseconds(110));
    pen.Move(start + milliseconds(112));
    pen.Shown(start + milliseconds(117));                   // 7 ms after the first of the two
    CHECK_EQ(pen.OfLastStroke() == milliseconds(7), true);  // of 5, 7 and 9
    pen.Press(start + milliseconds(200));
    pen.Shown(start + milliseconds(203));
    CHECK_EQ(pen.OfLastStroke() == milliseconds(3), true);
}

TEST_CASE("Late fields are run together, and those without a picture are missed") {
    FieldPacer pacer(50, start);
    CHECK_EQ(pacer.Due(start), 1);
    // At 75 ms the fields of 20, 40 and 60 ms are due; the last of them is seen.
    CHECK_EQ(pacer.Due(start + milliseconds(75)), 3);
    CHECK_EQ(pacer.Missed(), 2);
    CHECK(pacer.HasMissedLately(start + milliseconds(100)));
    CHECK_FALSE(pacer.HasMissedLately(start + milliseconds(9000)));
    CHECK_EQ(pacer.Next() == start + milliseconds(80), true);
}

TEST_CASE("After a long sleep the fields go on from now") {
    FieldPacer pacer(50, start);
    CHECK_EQ(pacer.Due(start), 1);
    // 500 fields of ten seconds, of which ten are run.
    CHECK_EQ(pacer.Due(start + milliseconds(10'000)), 10);
    CHECK_EQ(pacer.Missed(), 499);
    CHECK_EQ(pacer.GivenUp(), 490);
    CHECK_EQ(pacer.Next() == start + milliseconds(10'020), true);
}

TEST_CASE("A picture fills what is free as far as its proportions go, in the middle") {
    const PictureArea wide = FitPicture({1280, 720}, {640, 480});
    CHECK_EQ(wide.x, 0);
    CHECK_EQ(wide.y, 60);
    CHECK_EQ(wide.width, 640);
    CHECK_EQ(wide.height, 360);
    CHECK(wide.Contains(0, 60));
    CHECK_FALSE(wide.Contains(0, 59));
    CHECK_FALSE(wide.Contains(640, 100));
    const PictureArea tall = FitPicture({100, 400}, {300, 200});
    CHECK_EQ(tall.x, 125);
    CHECK_EQ(tall.width, 50);
}

TEST_CASE(
    "A scene is shown first at its own size, a large one as it fits, and one much smaller than a screen enlarged") {
    const auto size = [](WindowSize scene, WindowSize room) {
        const WindowSize first = FirstSize(scene, room);
        return std::pair(first.width, first.height);
    };
    CHECK_EQ(size({1280, 720}, {1560, 1000}), std::pair(1280, 720));
    CHECK_EQ(size({1200, 900}, {1560, 1000}), std::pair(1200, 900));  // 1280 / 1200 would be 1.07
    CHECK_EQ(size({4000, 3000}, {1560, 900}), std::pair(1200, 900));
    CHECK_EQ(size({320, 240}, {1560, 1000}), std::pair(1280, 960));
    CHECK_EQ(size({320, 240}, {800, 480}), std::pair(640, 480));
}

TEST_CASE("A pixel of the window is one of the scene") {
    const PictureArea same{10, 20, 100, 50};
    CHECK_EQ(SceneAt(same, {100, 50}, 10, 20) == ScenePixel{0, 0}, true);
    CHECK_EQ(SceneAt(same, {100, 50}, 109, 69) == ScenePixel{99, 49}, true);
    CHECK_EQ(SceneAt(same, {100, 50}, 9, 70) == ScenePixel{-1, 50}, true);
    // Twice as large: the middle of window pixel 3 is 1.75 scene pixels from the left.
    CHECK_EQ(SceneAt({0, 0, 200, 100}, {100, 50}, 3, 4) == ScenePixel{1, 2}, true);
    // Half as large: the middle of window pixel 3 is 7 scene pixels from the left.
    CHECK_EQ(SceneAt({0, 0, 50, 25}, {100, 50}, 3, 0) == ScenePixel{7, 1}, true);
}

}  // namespace kel
