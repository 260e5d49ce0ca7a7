#include <doctest/doctest.h>

#include <string>

#include "kel/video/video_reader.h"
#include "picture_io/picture.h"
#include "tests/cli/working_folder.h"
#include "tests/kel/video/held_video.h"

// Several pictures at once, streams, and films.

namespace chalkpane::app {
namespace {

using cli::testing::Ended;
using cli::testing::ReadText;
using picture_io::Picture;

const std::string invertEach = " --apply 'Invert Color'";

class ManyPictures : public cli::testing::WorkingFolder {
public:
    ManyPictures() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        for (int i = 0; i < 7; ++i) {
            Picture picture(32, 32);
            for (std::size_t at = 0; at < picture.rgba.size(); ++at)
                picture.rgba[at] = at % 4 == 3 ? 255 : static_cast<std::uint8_t>(at / 9 + static_cast<std::size_t>(i));
            picture_io::WritePicture(picture, Path("p" + std::to_string(i) + ".png"));
        }
    }
    void Succeed(const std::string& arguments) const {
        const Ended ended = Run(arguments);
        CHECK_EQ(ended.complaint, "");
        REQUIRE_EQ(ended.exitCode, 0);
    }
    [[nodiscard]] std::string Bytes(const std::string& name) const { return ReadText(Path(name)); }
    void CheckRefused(const std::string& arguments, const std::string& line) const {
        CAPTURE(arguments);
        const std::ptrdiff_t entries = Entries();
        const Ended ended = Run(arguments);
        CHECK_EQ(ended.complaint, "chalkpane: " + line + "\n");
        CHECK_EQ(ended.exitCode, 2);
        CHECK_EQ(Entries(), entries);
    }
};

}  // namespace

TEST_CASE("several pictures come into a folder as each by itself would come out") {
    const ManyPictures folder;
    const std::string grain = " --apply 'Film Grain' --frame 3";
    folder.Succeed("filter p?.png --out-dir out" + grain);
    for (int i = 0; i < 7; ++i) {
        const std::string name = "p" + std::to_string(i) + ".png";
        folder.Succeed(std::string("filter ").append(name).append(" alone.png").append(grain));
        CHECK(folder.Bytes("out/" + name) == folder.Bytes("alone.png"));
    }
}

// How far they grow is tried on a small picture before there are processes for them; 400 x 400 pixels are enough for
// both workers in each of these.
TEST_CASE("several pictures grow as each by itself would") {
    const ManyPictures folder;
    const std::string jitter = " --apply 'Random Jitter' --expand";
    for (const char* name : {"large0.png", "large1.png"})
        picture_io::WritePicture(Picture(400, 400), folder.Path(name));
    folder.Succeed("filter large?.png --out-dir out" + jitter);
    folder.Succeed("filter large1.png alone.png" + jitter);
    CHECK(folder.Bytes("out/large1.png") == folder.Bytes("alone.png"));
}

TEST_CASE("one bad picture among several leaves nothing behind, not even the folder") {
    const ManyPictures folder;
    folder.Write("bad.png", "no picture");
    folder.CheckRefused("filter p0.png bad.png p1.png --out-dir out" + invertEach,
                        "bad.png: is no picture that can be read here (docs/pictures.md lists them)");
    folder.CheckRefused("filter p0.png ./p0.png --out-dir out" + invertEach, "out/p0.png: two outputs have this name");
    folder.CheckRefused("filter p0.png p1.png p2.png" + invertEach,
                        "filter takes one picture and the name of another; several pictures need --out-dir");
    folder.CheckRefused("filter - --out-dir out" + invertEach,
                        "-: standard input has no name to go by in a folder; name an output");
}

TEST_CASE("- is standard input and standard output, which gets a PNG") {
    const ManyPictures folder;
    folder.Succeed("filter --apply 'Invert Color' p0.png file.png");
    const Ended piped = folder.Run("filter - -" + invertEach + " <p0.png");
    CHECK_EQ(piped.exitCode, 0);
    CHECK_EQ(piped.complaint, "");
    CHECK(piped.output == folder.Bytes("file.png"));
    const Ended nothing = folder.Run("filter - -" + invertEach + " </dev/null");
    CHECK_EQ(nothing.exitCode, 2);
    CHECK(nothing.complaint.starts_with("chalkpane: standard input: is no picture"));
    CHECK_EQ(nothing.output, "");
}

TEST_CASE("a film is the same however its frames are shared out") {
    const ManyPictures folder;
    folder.Succeed("filter p0.png unused.png --apply 'Film Grain' --save-preset look.preset");
    folder.Succeed("animate p0.png whole%02d.png --preset look.preset --frames 0..8");
    folder.Succeed("animate p0.png part%02d.png --preset look.preset --frames 5..8");
    folder.Succeed("animate p0.png part%02d.png --preset look.preset --frames 0..0");
    folder.Succeed("animate p0.png part%02d.png --preset look.preset --frames 1..4");
    for (int i = 0; i < 9; ++i) {
        const std::string number = "0" + std::to_string(i) + ".png";
        CHECK(folder.Bytes("whole" + number) == folder.Bytes("part" + number));
    }
}

// .mkv keeps every pixel: what comes out of the second film is what went into the first.
TEST_CASE("a film goes through filters frame by frame, and back") {
    const ManyPictures folder;
    folder.Succeed("filter p1.png unused.png --save-preset look.preset" + invertEach);
    folder.Succeed("animate p0.png film.mkv --preset look.preset --frames 0..2 --rate 30");
    folder.Succeed("filter film.mkv back.mkv" + invertEach);
    folder.Succeed("animate back.mkv f%01d.png --preset look.preset");
    CHECK(folder.Has("f2.png"));
    CHECK_FALSE(folder.Has("f3.png"));
    folder.Succeed("filter p0.png inverted.png" + invertEach);
    CHECK(folder.Open("f2.png") == folder.Open("inverted.png"));
    CHECK_EQ(folder.Run("filter film.mkv film.mkv" + invertEach).exitCode, 2);
    CHECK_EQ(folder.Run("filter film.mkv one.png" + invertEach).exitCode, 2);
}

// The result keeps every pixel, so its frame is the one that is read of the film itself, inverted.
TEST_CASE("a film from a phone goes through filters upright") {
    const ManyPictures folder;
    kel::testing::WriteHeldVideo(folder.Path("held.mp4"), {0, 1, -1, 0});
    folder.Succeed("filter held.mp4 upright.mkv" + invertEach);
    kel::VideoReader held(folder.Path("held.mp4"));
    kel::VideoReader upright(folder.Path("upright.mkv"));
    Picture frame = held.ReadFrame(1);
    REQUIRE_EQ(frame.height, 64);
    for (std::size_t i = 0; i < frame.rgba.size(); ++i)
        if (i % 4 != 3) frame.rgba[i] = static_cast<std::uint8_t>(255 - frame.rgba[i]);
    CHECK(upright.ReadFrame(1) == frame);
    CHECK_EQ(upright.FrameCount(), 3);
}

TEST_CASE("a picture that shows through is laid on a colour where a format has no alpha, and a line says so") {
    const ManyPictures folder;
    Picture faint(8, 8);
    for (std::size_t i = 0; i < faint.rgba.size(); ++i) faint.rgba[i] = i % 4 == 3 ? 0 : 9;
    picture_io::WritePicture(faint, folder.Path("faint.png"));
    const Ended white = folder.Run("filter faint.png white.bmp --apply 'Brightness/Contrast'");
    CHECK_EQ(white.exitCode, 0);
    CHECK_EQ(white.complaint, "chalkpane: white.bmp: a BMP has no alpha; the picture is laid on white\n");
    CHECK(folder.Open("white.bmp").At(3, 3) == std::array<std::uint8_t, 4>{255, 255, 255, 255});
    const Ended red = folder.Run("filter faint.png red.bmp --background red --apply 'Brightness/Contrast'");
    CHECK_EQ(red.complaint, "chalkpane: red.bmp: a BMP has no alpha; the picture is laid on red\n");
    CHECK(folder.Open("red.bmp").At(3, 3) == std::array<std::uint8_t, 4>{255, 0, 0, 255});
    CHECK_EQ(folder.Run("filter faint.png x.bmp --background rad --apply Blur").complaint,
             "chalkpane: --background: \"rad\" is not a color such as #ff8000; did you mean \"red\"?\n");
}

}  // namespace chalkpane::app
