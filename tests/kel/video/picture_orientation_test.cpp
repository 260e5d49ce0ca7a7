#include "kel/video/picture_orientation.h"

#include <doctest/doctest.h>

#include <array>
#include <string>

#include "kel/video/video_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/held_video.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;

constexpr std::array<std::int32_t, 4> upright{1, 0, 0, 1};

picture_io::Picture FirstFrame(const std::filesystem::path& file) { return VideoReader(file).ReadFrame(0); }

}  // namespace

// A quarter to the right takes what is stored at the left, from bottom to top, to the upper edge: x' = height - 1 - y
// and y' = x, so a = 0, b = 1, c = -1, d = 0.
TEST_CASE("A video from a phone stands upright") {
    const TemporaryFolder folder;
    testing::WriteHeldVideo(folder / "flat.mp4", upright);
    const picture_io::Picture flat = FirstFrame(folder / "flat.mp4");
    REQUIRE_EQ(flat.width, 64);
    testing::WriteHeldVideo(folder / "right.mp4", {0, 1, -1, 0});
    testing::WriteHeldVideo(folder / "left.mp4", {0, -1, 1, 0});
    testing::WriteHeldVideo(folder / "half.mp4", {-1, 0, 0, -1});
    const VideoReader reader(folder / "right.mp4");
    CHECK_EQ(reader.Width(), 32);
    CHECK_EQ(reader.Height(), 64);
    const picture_io::Picture right = FirstFrame(folder / "right.mp4");
    const picture_io::Picture left = FirstFrame(folder / "left.mp4");
    const picture_io::Picture half = FirstFrame(folder / "half.mp4");
    REQUIRE_EQ(right.width, 32);
    REQUIRE_EQ(left.height, 64);
    REQUIRE_EQ(half.width, 64);
    int wrong = 0;
    for (std::int32_t y = 0; y < 32; ++y)
        for (std::int32_t x = 0; x < 64; ++x) {
            wrong += right.At(31 - y, x) == flat.At(x, y) ? 0 : 1;
            wrong += left.At(y, 63 - x) == flat.At(x, y) ? 0 : 1;
            wrong += half.At(63 - x, 31 - y) == flat.At(x, y) ? 0 : 1;
        }
    CHECK_EQ(wrong, 0);
}

TEST_CASE("A display matrix that means nothing leaves a video as it is stored") {
    const TemporaryFolder folder;
    testing::WriteHeldVideo(folder / "flat.mp4", upright);
    testing::WriteHeldVideo(folder / "zero.mp4", {0, 0, 0, 0});
    testing::WriteHeldVideo(folder / "line.mp4", {1, 1, 0, 0});
    CHECK(FirstFrame(folder / "zero.mp4") == FirstFrame(folder / "flat.mp4"));
    CHECK(FirstFrame(folder / "line.mp4") == FirstFrame(folder / "flat.mp4"));
}

TEST_CASE("Axes are exchanged before columns and rows are reversed") {
    const picture_io::Picture picture = testing::Speckled(3, 2);
    CHECK(Upright(picture, {}) == picture);
    const picture_io::Picture rotated = Upright(picture, {true, true, false});
    REQUIRE_EQ(rotated.width, 2);
    CHECK(rotated.At(0, 0) == picture.At(0, 1));
    CHECK(rotated.At(1, 2) == picture.At(2, 0));
    CHECK(Upright(picture, {false, false, true}).At(0, 0) == picture.At(0, 1));
}

}  // namespace kel
