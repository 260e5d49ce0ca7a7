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

}  // namespace kel
