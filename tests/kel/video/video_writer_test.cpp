#include "kel/video/video_writer.h"

#include <doctest/doctest.h>
#include <sys/resource.h>

#include <array>
#include <csignal>
#include <string>

#include "kel/video/video_format.h"
#include "kel/video/video_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/counted_video.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using testing::CountedFrame;
using testing::Pixel;
using testing::Speckled;
using testing::WriteCountedVideo;

// Something else at every pixel, in all four channels.
picture_io::Picture Mottled(std::int32_t width, std::int32_t height) {
    picture_io::Picture picture = Speckled(width, height);
    for (std::size_t at = 3; at < picture.rgba.size(); at += 4)
        picture.rgba[at] = static_cast<std::uint8_t>(picture.rgba[at - 1] ^ picture.rgba[at - 3]);
    return picture;
}

void WriteVideo(const std::filesystem::path& file, const std::vector<picture_io::Picture>& pictures,
                bool alpha = false) {
    VideoWriter writer(file, {pictures[0].width, pictures[0].height, 50, alpha});
    for (const picture_io::Picture& picture : pictures) writer.Write(picture);
    writer.Close();
    writer.Commit();
}

// Takes all files of this process as too large from here on, and lets it live to hear of it.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;

private:
    void (*m_signal)(int);
    rlimit m_before{};
};

}  // namespace

TEST_CASE("A lossless video gives back every pixel as it was written") {
    const TemporaryFolder folder;
    for (const std::string name : {"film.mov", "film.mkv"})
        for (const bool alpha : {false, true}) {
            CAPTURE(name);
            CAPTURE(alpha);
            // Odd sides, and later pictures that repeat parts of earlier ones, which the codec then leaves out.
            picture_io::Picture first = alpha ? Mottled(33, 17) : Speckled(33, 17);
            picture_io::Picture second = first;
            second.Set(5, 7, {1, 2, 3, static_cast<std::uint8_t>(alpha ? 4 : 255)});
            WriteVideo(folder / name, {first, second, second, first}, alpha);
            VideoReader reader(folder / name);
            CHECK_EQ(reader.HasAlpha(), alpha);
            REQUIRE_EQ(reader.FrameCount(), 4);
            CHECK_EQ(reader.FramesPerSecond(), doctest::Approx(50).epsilon(1e-9));
            CHECK(reader.ReadFrame(0) == first);
            CHECK(reader.ReadFrame(1) == second);
            CHECK(reader.ReadFrame(2) == second);
            CHECK(reader.ReadFrame(3) == first);
        }
}

TEST_CASE("Small videos come back as they were written") {
    const TemporaryFolder folder;
    for (const std::string name : {"film.mov", "film.mkv"})
        for (const std::array<std::int32_t, 2> size : {std::array{2, 2}, {2, 9}, {9, 2}, {15, 16}, {16, 16}, {17, 3}}) {
            CAPTURE(name);
            CAPTURE(size[0]);
            CAPTURE(size[1]);
            const picture_io::Picture picture = Mottled(size[0], size[1]);
            WriteVideo(folder / name, {picture, picture}, true);
            VideoReader reader(folder / name);
            CHECK(reader.ReadFrame(0) == picture);
            CHECK(reader.ReadFrame(1) == picture);
        }
    for (const std::string name : {"film.mov", "film.mp4", "film.webm"}) {
        CAPTURE(name);
        WriteVideo(folder / name, {testing::Plain(1, 1, testing::white)});
        CHECK_GT(VideoReader(folder / name).ReadFrame(0).At(0, 0)[1], 247);
    }
}

TEST_CASE("A video without alpha drops it and keeps the colours as they are") {
    const TemporaryFolder folder;
    const picture_io::Picture picture = Mottled(20, 20);
    picture_io::Picture opaque = picture;
    for (std::size_t at = 3; at < opaque.rgba.size(); at += 4) opaque.rgba[at] = 255;
    for (const std::string name : {"film.mov", "film.mkv"}) {
        WriteVideo(folder / name, {picture});
        CHECK(VideoReader(folder / name).ReadFrame(0) == opaque);
    }
}

// Eight levels: what a plain field of colour may lose in rounding to the narrow range and to the codec's steps.
TEST_CASE("A lossy video keeps plain colours") {
    const TemporaryFolder folder;
    for (const std::string name : {"film.mp4", "film.webm"})
        for (const std::int32_t width : {64, 1280})
            for (const Pixel colour : {Pixel{255, 0, 0, 255}, Pixel{0, 255, 0, 255}, Pixel{0, 0, 255, 255},
                                       Pixel{255, 255, 255, 255}, Pixel{200, 100, 50, 255}}) {
                CAPTURE(name);
                CAPTURE(width);
                CAPTURE(testing::Text(colour));
                WriteVideo(folder / name, {testing::Plain(width, 48, colour)});
                const picture_io::Picture read = VideoReader(folder / name).ReadFrame(0);
                CHECK_EQ(read.width, width);
                CHECK_LE(testing::Difference(read.At(width / 2, 24), colour), 8);
            }
}

TEST_CASE("A lossy video of odd sides repeats the last column and row") {
    const TemporaryFolder folder;
    for (const std::string name : {"film.mp4", "film.webm"}) {
        picture_io::Picture picture = testing::Plain(33, 21, {60, 60, 60, 255});
        for (std::int32_t y = 0; y < 21; ++y) picture.Set(32, y, {180, 180, 180, 255});
        WriteVideo(folder / name, {picture});
        const picture_io::Picture read = VideoReader(folder / name).ReadFrame(0);
        CHECK_EQ(read.width, 34);
        CHECK_EQ(read.height, 22);
        CHECK_LE(testing::Difference(read.At(33, 10), {180, 180, 180, 255}), 24);
        CHECK_LE(testing::Difference(read.At(10, 21), {60, 60, 60, 255}), 8);
    }
}

TEST_CASE("The same pictures give the same video") {
    const TemporaryFolder folder;
    for (const std::string ending : {".mov", ".mkv", ".mp4"}) {
        CAPTURE(ending);
        WriteCountedVideo(folder / ("a" + ending), 6, 32, 32);
        WriteCountedVideo(folder / ("b" + ending), 6, 32, 32);
        CHECK(cli::testing::ReadText(folder / ("a" + ending)) == cli::testing::ReadText(folder / ("b" + ending)));
    }
}

TEST_CASE("A video appears when it is committed and leaves nothing behind otherwise") {
    const TemporaryFolder folder;
    cli::testing::WriteText(folder / "film.mkv", "old");
    {
        VideoWriter writer(folder / "film.mkv", {8, 8, 25, false});
        writer.Write(testing::Plain(8, 8, testing::red));
        writer.Close();
        CHECK_EQ(cli::testing::ReadText(folder / "film.mkv"), "old");
    }
    CHECK_EQ(cli::testing::ReadText(folder / "film.mkv"), "old");
    CHECK_EQ(folder.Entries(), 1);
    WriteVideo(folder / "film.mkv", {testing::Plain(8, 8, testing::red)});
    CHECK_EQ(VideoReader(folder / "film.mkv").FrameCount(), 1);
    CHECK_EQ(folder.Entries(), 1);
}

TEST_CASE("A full disk ends a video with one clear line and no file") {
    const TemporaryFolder folder;
    for (const std::string name : {"film.mov", "film.mkv", "film.mp4", "film.webm"}) {
        CAPTURE(name);
        const std::string refusal = Thrown([&] {
            const FileSizeLimit limit(2000);
            WriteCountedVideo(folder / name, 8, 64, 64);
        });
        CHECK_EQ(refusal, (folder / name).string() + ": cannot be written: File too large");
        CHECK_EQ(folder.Entries(), 0);
    }
}

TEST_CASE("What cannot become a video is refused in one line") {
    const TemporaryFolder folder;
    const auto refusal = [&](const std::string& name, const VideoSettings& settings) {
        return Thrown([&] { const VideoWriter writer(folder / name, settings); });
    };
    const std::string start = folder.Path().string() + "/";
    CHECK_EQ(refusal("film.avi", {8, 8, 25, false}), start + "film.avi: films end in .mov, .mkv, .mp4 or .webm");
    CHECK_EQ(refusal("film.mp4", {8, 8, 25, true}), start + "film.mp4: .mp4 films have no alpha; .mov and .mkv have");
    CHECK_EQ(refusal("film.MP4", {8, 8, 0, false}), start + "film.MP4: a film needs a rate of frames above 0");
    CHECK_EQ(refusal("film.mkv", {9, 1, 25, false}), start + "film.mkv: .mkv films have sides of at least 2 pixels");
    CHECK_EQ(refusal("none/film.mp4", {8, 8, 25, false}),
             start + "none/film.mp4: cannot be written: No such file or directory");
    CHECK_EQ(Thrown([&] {
                 VideoWriter writer(folder / "film.mkv", {8, 8, 25, false});
                 writer.Write(testing::Plain(8, 9, testing::red));
             }),
             start + "film.mkv: a film's pictures are all of one size");
    CHECK_EQ(Thrown([&] {
                 VideoWriter(folder / "film.mkv", {8, 8, 25, false}).Close();
             }),
             start + "film.mkv: cannot be written: a film needs at least one picture");
    CHECK_EQ(folder.Entries(), 0);
}

TEST_CASE("A picture that is repeated gives the same file as one that is written again") {
    const TemporaryFolder folder;
    for (const std::string ending : {".mov", ".mkv", ".mp4", ".webm"})
        for (const bool alpha : {false, true}) {
            if (alpha && !FormatOfVideo("f" + ending)->hasAlpha) continue;
            CAPTURE(ending);
            CAPTURE(alpha);
            const VideoSettings settings{33, 18, 25, alpha};
            VideoWriter written(folder / ("written" + ending), settings);
            VideoWriter repeated(folder / ("repeated" + ending), settings);
            for (std::int64_t index = 0; index < 60; ++index) {
                const picture_io::Picture picture = CountedFrame(index / 7, 33, 18);
                written.Write(picture);
                if (index % 7 == 0)
                    repeated.Write(picture);
                else
                    repeated.Repeat();
            }
            for (VideoWriter* writer : {&written, &repeated}) {
                writer->Close();
                writer->Commit();
            }
            // The lossy encoders' threads do not promise the same bytes twice, only the same pictures in number and
            // place.
            if (FormatOfVideo("f" + ending)->isExact)
                CHECK(cli::testing::ReadText(folder / ("written" + ending)) ==
                      cli::testing::ReadText(folder / ("repeated" + ending)));
            VideoReader reader(folder / ("repeated" + ending));
            CHECK_EQ(reader.FrameCount(), 60);
            // Frame 48 shows picture 6 and frame 49 picture 7, grey 32 * 6 and 32 * 7; lossy encoders come near.
            CHECK_LT(std::abs(reader.ReadFrame(48).At(12, 9)[1] - 192), 12);
            CHECK_LT(std::abs(reader.ReadFrame(49).At(12, 9)[1] - 224), 12);
        }
}

}  // namespace kel
