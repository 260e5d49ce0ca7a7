#include "kel/video/video_reader.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <string>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/video/open_watch.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using testing::NumberOf;
using testing::WriteCountedVideo;

constexpr std::array endings{".mp4", ".mov", ".mkv", ".webm"};

std::string ThrownByOpening(const std::filesystem::path& file) {
    return Thrown([&] { const VideoReader reader(file); });
}

}  // namespace

TEST_CASE("A video says its size, its rate and how many frames it has") {
    const TemporaryFolder folder;
    for (const std::string ending : endings) {
        CAPTURE(ending);
        WriteCountedVideo(folder / ("film" + ending), 21, 64, 48, 30000.0 / 1001);
        const VideoReader reader(folder / ("film" + ending));
        CHECK_EQ(reader.Width(), 64);
        CHECK_EQ(reader.Height(), 48);
        CHECK_EQ(reader.FrameCount(), 21);
        CHECK_EQ(reader.FramesPerSecond(), doctest::Approx(29.97003).epsilon(0.00001));
        CHECK_FALSE(reader.HasAlpha());
    }
}

TEST_CASE("Every frame is the one asked for, in whatever order") {
    const TemporaryFolder folder;
    for (const std::string ending : endings) {
        CAPTURE(ending);
        WriteCountedVideo(folder / ("film" + ending), 60, 64, 48);
        VideoReader reader(folder / ("film" + ending));
        for (std::int64_t index = 0; index < 60; ++index) CHECK_EQ(NumberOf(reader.ReadFrame(index)), index);
        for (const std::int64_t index : {59, 0, 30, 29, 31, 31, 7, 58, 49, 50, 51, 1, 59, 2})
            CHECK_EQ(NumberOf(reader.ReadFrame(index)), index);
    }
}

TEST_CASE("A frame has the same pixels however it was come to") {
    const TemporaryFolder folder;
    for (const std::string ending : endings) {
        CAPTURE(ending);
        WriteCountedVideo(folder / ("film" + ending), 60, 64, 48);
        VideoReader forwards(folder / ("film" + ending));
        VideoReader straight(folder / ("film" + ending));
        const picture_io::Picture sought = straight.ReadFrame(55);
        picture_io::Picture passed;
        for (std::int64_t index = 0; index <= 55; ++index) passed = forwards.ReadFrame(index);
        CHECK(sought == passed);
        CHECK(straight.ReadFrame(3) == forwards.ReadFrame(3));
    }
}

TEST_CASE("Numbers beyond the video give its first and its last frame") {
    const TemporaryFolder folder;
    WriteCountedVideo(folder / "film.mp4", 12, 32, 32);
    VideoReader reader(folder / "film.mp4");
    CHECK_EQ(NumberOf(reader.ReadFrame(12)), 11);
    CHECK_EQ(NumberOf(reader.ReadFrame(1'000'000)), 11);
    CHECK_EQ(NumberOf(reader.ReadFrame(-5)), 0);
}

// At 25 frames a second frame n is shown from n * 40 ms on.
TEST_CASE("The frame of a time is the one that is then shown") {
    const TemporaryFolder folder;
    for (const std::string ending : endings) {
        CAPTURE(ending);
        WriteCountedVideo(folder / ("film" + ending), 10, 32, 32);
        const VideoReader reader(folder / ("film" + ending));
        CHECK_EQ(reader.FrameAt(-1), 0);
        CHECK_EQ(reader.FrameAt(0), 0);
        CHECK_EQ(reader.FrameAt(0.02), 0);
        CHECK_EQ(reader.FrameAt(0.039), 0);
        CHECK_EQ(reader.FrameAt(0.04), 1);
        CHECK_EQ(reader.FrameAt(0.319), 7);
        CHECK_EQ(reader.FrameAt(0.32), 8);
        CHECK_EQ(reader.FrameAt(99), 9);
    }
}

// A second has 60000 / 1001 fields, two to a frame. Milliseconds round the frames' times up and down.
TEST_CASE("Every second field has a new frame also where the container rounds times") {
    const TemporaryFolder folder;
    WriteCountedVideo(folder / "film.mkv", 40, 32, 32, 30000.0 / 1001);
    const VideoReader reader(folder / "film.mkv");
    for (std::int64_t field = 0; field < 80; ++field)
        CHECK_EQ(reader.FrameAt(static_cast<double>(field) * 1001 / 60000), field / 2);
}

TEST_CASE("What is no video is refused in one line with the file and the reason") {
    const TemporaryFolder folder;
    const auto refusal = [&](const std::string& name) { return ThrownByOpening(folder / name); };
    const std::string start = folder.Path().string() + "/";
    CHECK_EQ(refusal("none.mp4"), start + "none.mp4: cannot be read: No such file or directory");
    std::filesystem::create_directory(folder / "folder.mp4");
    CHECK_EQ(refusal("folder.mp4"), start + "folder.mp4: is a folder");
    cli::testing::WriteText(folder / "empty.mp4", "");
    CHECK(refusal("empty.mp4").starts_with(start + "empty.mp4: "));
    cli::testing::WriteText(folder / "text.mkv", "This is no film.");
    CHECK_EQ(refusal("text.mkv"), start + "text.mkv: is no MP4, MOV, MKV or WebM film, or a damaged one");
    picture_io::WritePicture(testing::Plain(8, 8, testing::red), folder / "picture.png");
    CHECK_EQ(refusal("picture.png"), start + "picture.png: is no MP4, MOV, MKV or WebM film, or a damaged one");
}

// The video that is named is there and could be opened: what is refused is the way to it.
TEST_CASE("A list of other files is no video, whatever it is called, and opens none of them") {
    const TemporaryFolder folder;
    WriteCountedVideo(folder / "other.mp4", 3, 32, 32);
    const std::string other = (folder / "other.mp4").string();
    const testing::OpenWatch watch(other);
    { const VideoReader seen(other); }
    REQUIRE(watch.SawOpening());
    const std::array<std::string, 6> lists{
        other + "\n" + other + "\n",
        "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + other + "\n#EXT-X-ENDLIST\n",
        "ffconcat version 1.0\nfile '" + other + "'\n",
        "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\"><Period><AdaptationSet><Representation>"
        "<BaseURL>" +
            other + "</BaseURL></Representation></AdaptationSet></Period></MPD>",
        "v=0\nm=video 5004 RTP/AVP 96\na=rtpmap:96 H264/90000\nc=IN IP4 127.0.0.1\n",
        "[Reference]\nRef1=http://127.0.0.1:9/" + other + "\n",
    };
    for (const std::string& list : lists)
        for (const std::string ending : {".mp4", ".mov", ".mkv", ".m3u8", ".ffconcat"}) {
            CAPTURE(list);
            CAPTURE(ending);
            cli::testing::WriteText(folder / ("list" + ending), list);
            CHECK_EQ(ThrownByOpening(folder / ("list" + ending)),
                     (folder / ("list" + ending)).string() + ": is no MP4, MOV, MKV or WebM film, or a damaged one");
        }
    CHECK_FALSE(watch.SawOpening());
    CHECK_EQ(ThrownByOpening("concat:" + other + "|" + other),
             "concat:" + other + "|" + other + ": cannot be read: No such file or directory");
    CHECK_EQ(ThrownByOpening("http://127.0.0.1:9/film.mp4"),
             "http://127.0.0.1:9/film.mp4: cannot be read: No such file or directory");
    CHECK_FALSE(watch.SawOpening());
}

// Both would never end.
TEST_CASE("A pipe and a device are refused at once as videos") {
    const TemporaryFolder folder;
    const std::filesystem::path pipe = folder / "pipe.mp4";
    REQUIRE_EQ(mkfifo(pipe.c_str(), 0600), 0);
    CHECK_EQ(ThrownByOpening(pipe), pipe.string() + ": is not a regular file");
    CHECK_EQ(ThrownByOpening("/dev/zero"), "/dev/zero: is not a regular file");
}

TEST_CASE("A video that is cut off is refused") {
    const TemporaryFolder folder;
    for (const std::string ending : endings) {
        WriteCountedVideo(folder / ("film" + ending), 12, 32, 32);
        const std::string whole = cli::testing::ReadText(folder / ("film" + ending));
        for (std::size_t part = 0; part < 20; ++part) {
            CAPTURE(ending);
            CAPTURE(part);
            const std::filesystem::path cut = folder / ("cut" + ending);
            cli::testing::WriteText(cut, whole.substr(0, whole.size() * part / 20));
            const std::string refusal = ThrownByOpening(cut);
            CHECK(refusal.starts_with(cut.string() + ": "));
            CHECK_EQ(refusal.find('\n'), std::string::npos);
        }
    }
    CHECK_EQ(ThrownByOpening(folder / "cut.mkv"), (folder / "cut.mkv").string() + ": breaks off after 12 frames");
}

TEST_CASE("A damaged video does no harm") {
    const TemporaryFolder folder;
    for (const std::string ending : endings) {
        WriteCountedVideo(folder / ("film" + ending), 8, 32, 32);
        const std::string whole = cli::testing::ReadText(folder / ("film" + ending));
        std::uint32_t state = 7;
        const auto random = [&] { return (state = state * 1664525U + 1013904223U) >> 8U; };
        for (int round = 0; round < 40; ++round) {
            CAPTURE(ending);
            CAPTURE(round);
            std::string damaged = whole;
            for (int count = 0; count < 1 + round / 4; ++count)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            cli::testing::WriteText(folder / ("damaged" + ending), damaged);
            const std::string refusal = Thrown([&] {
                VideoReader reader(folder / ("damaged" + ending));
                CHECK_GE(reader.FrameCount(), 1);
                for (const std::int64_t index : {0, 5, 7, 2}) {
                    const picture_io::Picture picture = reader.ReadFrame(index);
                    CHECK_EQ(picture.width, reader.Width());
                }
            });
            CHECK_EQ(refusal.find('\n'), std::string::npos);
        }
    }
}

}  // namespace kel
