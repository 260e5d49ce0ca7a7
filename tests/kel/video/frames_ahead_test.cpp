#include "kel/video/frames_ahead.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <utility>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/video/counted_video.h"

namespace kel {
namespace {

using picture_io::Flipped;

}  // namespace

TEST_CASE("Frames are the ones asked for, whether they were expected or not") {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "film.mkv", 30, 64, 48);
    FramesAhead frames(folder / "film.mkv");
    CHECK_EQ(frames.Reader().FrameCount(), 30);
    VideoReader plain(folder / "film.mkv");
    const auto check = [&](std::int64_t frame, const std::vector<std::int64_t>& coming) {
        picture_io::Picture taken = frames.Take(frame, coming);
        CHECK_EQ(taken == Flipped(plain.ReadFrame(frame)), true);
        std::ranges::fill(taken.rgba, std::uint8_t{77});
        frames.GiveBack(std::move(taken));
    };
    for (std::int64_t frame = 0; frame < 10; ++frame) check(frame, {frame + 1, frame + 2, frame + 3});
    check(25, {26, 27});  // a jump
    check(3, {5, 7, 9});  // every second one
    check(5, {7, 9, 11});
    check(7, {});
    check(7, {});
    check(29, {0, 1, 2});  // a loop
    check(0, {1, 2, 3});
}

TEST_CASE("A change of the conversion counts for frames that were decoded before it too") {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "film.mp4", 12, 64, 48);
    FramesAhead frames(folder / "film.mp4");
    VideoReader plain(folder / "film.mp4");
    frames.SetConversion(VideoConversion::Fast);
    const picture_io::Picture fast = Flipped(frames.Take(0, {1, 2, 3}));
    CHECK_EQ(testing::NumberOf(fast), 0);
    CHECK_EQ(fast == plain.ReadFrame(0), false);
    frames.SetConversion(VideoConversion::Exact);
    CHECK_EQ(frames.Take(1, {2, 3}) == Flipped(plain.ReadFrame(1)), true);
}

TEST_CASE("What is no video is refused, and one that is not asked for any more is let go") {
    const cli::testing::TemporaryFolder folder;
    cli::testing::WriteText(folder / "text.mp4", "no video");
    CHECK(cli::testing::Thrown([&] { const FramesAhead frames(folder / "text.mp4"); }).find("text.mp4") !=
          std::string::npos);
    testing::WriteCountedVideo(folder / "film.mkv", 30, 64, 48);
    FramesAhead frames(folder / "film.mkv");
    (void)frames.Take(0, {29, 15, 3});
}

}  // namespace kel
