#include <doctest/doctest.h>

#include <string>

#include "kel/video/video_reader.h"
#include "tests/kel/pixels.h"

// The videos that examples/make_film.cpp writes at every build.

namespace kel {
namespace {

// Eight squares of 16 by 16 in the top left corner, the highest bit first.
int NumberIn(const picture_io::Picture& frame) {
    int number = 0;
    for (std::int32_t bit = 0; bit < 8; ++bit) number = number * 2 + (frame.At(bit * 16 + 8, 8)[1] > 127 ? 1 : 0);
    return number;
}

}  // namespace

TEST_CASE("The video of a match is read frame by frame in all its kinds") {
    for (const std::string ending : {".mp4", ".mov", ".mkv", ".webm"}) {
        CAPTURE(ending);
        VideoReader film(FILMS_FOLDER "/match" + ending);
        CHECK_EQ(film.Width(), 640);
        CHECK_EQ(film.Height(), 360);
        CHECK_EQ(film.FrameCount(), 100);
        CHECK_EQ(film.FramesPerSecond(), doctest::Approx(25).epsilon(1e-6));
        for (const std::int64_t index : {0, 1, 2, 75, 49, 50, 51, 99, 98, 24})
            CHECK_EQ(NumberIn(film.ReadFrame(index)), index);
        // Four seconds; 1.98 s are 49.5 frames.
        CHECK_EQ(film.FrameAt(1.98), 49);
        CHECK_EQ(film.FrameAt(4), 99);
    }
}

// At frame 0 the first runner is at the right end of his ellipse, (150 + 60, 120).
TEST_CASE("The videos of a match agree about its colours") {
    const picture_io::Picture exact = VideoReader(FILMS_FOLDER "/match.mkv").ReadFrame(0);
    CHECK_EQ(testing::Text(exact.At(210, 120)), testing::Text({208, 36, 40, 255}));
    CHECK_EQ(testing::Text(exact.At(20, 300)), testing::Text({58, 132, 52, 255}));
    CHECK(VideoReader(FILMS_FOLDER "/match.mov").ReadFrame(0) == exact);
    for (const char* lossy : {FILMS_FOLDER "/match.mp4", FILMS_FOLDER "/match.webm"}) {
        CAPTURE(lossy);
        const picture_io::Picture frame = VideoReader(lossy).ReadFrame(0);
        for (const auto& [x, y] : {std::pair{210, 120}, std::pair{20, 300}, std::pair{60, 300}})
            CHECK_LE(testing::Difference(frame.At(x, y), exact.At(x, y)), 8);
    }
}

}  // namespace kel
