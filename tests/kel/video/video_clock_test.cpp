#include "kel/video/video_clock.h"

#include <doctest/doctest.h>

#include <vector>

namespace kel {
namespace {

std::vector<std::int64_t> Frames(const VideoClock& clock, std::int64_t from, std::int64_t to) {
    std::vector<std::int64_t> frames;
    for (std::int64_t field = from; field <= to; ++field) frames.push_back(clock.FrameAt(field));
    return frames;
}

using List = std::vector<std::int64_t>;

}  // namespace

TEST_CASE("A video of 25 frames a second changes every second of 50 fields, and its last frame stays") {
    const VideoClock clock(3, 25.0 / 50.0);
    CHECK_EQ(Frames(clock, 0, 8) == List{0, 0, 1, 1, 2, 2, 2, 2, 2}, true);
    CHECK(clock.IsRunning(3));
    CHECK_FALSE(clock.IsRunning(4));
}

TEST_CASE("A video of 29.97 frames in 59.94 fields keeps in step for hours") {
    const VideoClock clock(10'000'000, (30000.0 / 1001) / (60000.0 / 1001));
    for (const std::int64_t field : {2, 20'000, 2'000'000}) {
        CHECK_EQ(clock.FrameAt(field), field / 2);
        CHECK_EQ(clock.FrameAt(field + 1), field / 2);
    }
}

TEST_CASE("A video in a loop begins again") {
    VideoClock clock(3, 1.0);
    clock.Change({std::nullopt, std::nullopt, true}, 0);
    CHECK_EQ(Frames(clock, 0, 7) == List{0, 1, 2, 0, 1, 2, 0, 1}, true);
    CHECK(clock.IsRunning(2));
}

TEST_CASE("A video that stands still goes on from there") {
    VideoClock clock(100, 1.0);
    clock.Change({std::nullopt, false, std::nullopt}, 5);
    CHECK_EQ(Frames(clock, 5, 8) == List{5, 5, 5, 5}, true);
    CHECK_FALSE(clock.IsRunning(6));
    clock.Change({std::nullopt, true, std::nullopt}, 20);
    CHECK_EQ(Frames(clock, 20, 22) == List{5, 6, 7}, true);
}

TEST_CASE("A frame that is sought shows in the same field, and one beyond the video is its end") {
    VideoClock clock(10, 0.5);
    clock.Change({7, std::nullopt, std::nullopt}, 3);
    CHECK_EQ(Frames(clock, 3, 6) == List{7, 7, 8, 8}, true);
    clock.Change({99, false, std::nullopt}, 10);
    CHECK_EQ(clock.FrameAt(10), 9);
    clock.Change({-4, std::nullopt, std::nullopt}, 11);
    CHECK_EQ(clock.FrameAt(11), 0);
}

TEST_CASE("A video plays slower and faster from the field on in which that is said") {
    VideoClock clock(100, 1.0);
    VideoChange half;
    half.speed = 0.5;
    clock.Change(half, 4);
    CHECK_EQ(Frames(clock, 4, 8) == List{4, 4, 5, 5, 6}, true);
    VideoChange fastest;
    fastest.speed = 9;  // beyond what there is: 4
    clock.Change(fastest, 8);
    CHECK_EQ(Frames(clock, 8, 10) == List{6, 10, 14}, true);
    CHECK_EQ(clock.Speed(), 4);
}

TEST_CASE("A video loops between its in and out points, and stays at the out point without a loop") {
    VideoClock clock(20, 1.0);
    VideoChange points;
    points.frame = 5;
    points.in = 5;
    points.out = 7;
    clock.Change(points, 0);
    CHECK_EQ(Frames(clock, 0, 4) == List{5, 6, 7, 7, 7}, true);
    CHECK_FALSE(clock.IsRunning(2));
    clock.Change({5, std::nullopt, true}, 10);
    CHECK_EQ(Frames(clock, 10, 17) == List{5, 6, 7, 5, 6, 7, 5, 6}, true);
    // Sought before the in point it plays into it, and behind the out point to the end.
    clock.Change({3, std::nullopt, std::nullopt}, 20);
    CHECK_EQ(Frames(clock, 20, 26) == List{3, 4, 5, 6, 7, 5, 6}, true);
    clock.Change({18, std::nullopt, false}, 30);
    CHECK_EQ(Frames(clock, 30, 33) == List{18, 19, 19, 19}, true);
}

TEST_CASE("An in point behind the out point, or the other way round, takes the other one to the video's end") {
    VideoClock clock(20, 1.0);
    VideoChange points;
    points.in = 5;
    points.out = 7;
    clock.Change(points, 0);
    VideoChange in;
    in.in = 12;
    clock.Change(in, 1);
    CHECK_EQ(clock.In(), 12);
    CHECK_EQ(clock.Out(), 19);
    VideoChange out;
    out.out = 4;
    clock.Change(out, 2);
    CHECK_EQ(clock.In(), 0);
    CHECK_EQ(clock.Out(), 4);
}

// The second frame is shown for three lengths, as a camera does that waits in the dark.
TEST_CASE("Frames that come unevenly are each shown for their own time") {
    VideoClock clock(std::vector<double>{0, 1, 4, 5}, 1.0);
    CHECK_EQ(Frames(clock, 0, 7) == List{0, 1, 1, 1, 2, 3, 3, 3}, true);
    clock.Change({1, std::nullopt, true}, 10);
    CHECK_EQ(Frames(clock, 10, 18) == List{1, 1, 1, 2, 3, 0, 1, 1, 1}, true);
}

}  // namespace kel
