#include <doctest/doctest.h>

#include "tests/cli/working_folder.h"

// The program itself, run as an operator runs it.

namespace chalkpane::app {
namespace {

using cli::testing::Ended;

class WorkingFolder : public cli::testing::WorkingFolder {
public:
    WorkingFolder() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        Write("s.json", R"({"canvas": {"width": 3, "height": 2}, "strokes": [
            {"brush": {"color": "#ff8000", "Profile Name": "OnePixel"}, "points": [[1.5, 0.5]]}]})");
    }
    void CheckRefused(const std::string& arguments, const std::string& line) const {
        const std::ptrdiff_t entries = Entries();
        const Ended ended = Run(arguments);
        CHECK_EQ(ended.complaint, "chalkpane: " + line + "\n");
        CHECK_EQ(ended.exitCode, 2);
        CHECK_EQ(ended.output, "");
        CHECK_EQ(Entries(), entries);
    }
};

using Pixel = std::array<std::uint8_t, 4>;

}  // namespace

// On nothing a full dab leaves 254, 127, 0 premultiplied by alpha 254; divided: 254 * 255 / 254 = 255 and 127.5, 128.
TEST_CASE("paint writes a picture, silently where there is no terminal") {
    const WorkingFolder folder;
    const Ended ended = folder.Run("paint s.json out.png");
    CHECK_EQ(ended.complaint, "");
    CHECK_EQ(ended.output, "");
    CHECK_EQ(ended.exitCode, 0);
    const picture_io::Picture picture = folder.Open("out.png");
    CHECK_EQ(picture.width, 3);
    CHECK_EQ(picture.At(1, 0), Pixel{255, 128, 0, 254});
    CHECK_EQ(picture.At(0, 0), Pixel{0, 0, 0, 0});
    CHECK_EQ(folder.Entries(), 2);
}

// 8224 of 14 bits is 8224 * 4 + 8224 / 4096 = 32898 of 16.
TEST_CASE("paint --depth 14 writes words") {
    const WorkingFolder folder;
    CHECK_EQ(folder.Run("paint s.json out.png --depth 14").exitCode, 0);
    const auto picture = std::get<picture_io::Picture16>(picture_io::ReadAnyPicture(folder.Path("out.png")));
    CHECK_EQ(picture.At(1, 0), std::array<std::uint16_t, 4>{65535, 32898, 0, 65535});
}

TEST_CASE("paint --picture paints on a picture, which stays as it is") {
    const WorkingFolder folder;
    picture_io::Picture blue(4, 1);
    for (std::int32_t x = 0; x < 4; ++x) blue.Set(x, 0, {0, 0, 255, 255});
    picture_io::WritePicture(blue, folder.Path("blue.png"));
    CHECK_EQ(folder.Run("paint s.json out.png --picture blue.png").exitCode, 0);
    const picture_io::Picture picture = folder.Open("out.png");
    CHECK_EQ(picture.width, 4);
    CHECK_EQ(picture.At(0, 0), Pixel{0, 0, 255, 255});
    CHECK_EQ(picture.At(1, 0)[0], 254);  // 255 * 65280 >> 16
    CHECK_EQ(folder.Open("blue.png"), blue);
}

TEST_CASE("paint refuses in one line and leaves no file behind") {
    const WorkingFolder folder;
    folder.CheckRefused("paint none.json out.png", "none.json: cannot be read: No such file or directory");
    folder.CheckRefused("paint s.json none/out.png", "none/out.png: cannot be written: there is no folder none");
    folder.Write("bad.json", "{\n  \"canvas\": }");
    const Ended ended = folder.Run("paint bad.json out.png");
    CHECK_EQ(ended.exitCode, 2);
    CHECK(ended.complaint.starts_with("chalkpane: bad.json: line 2, column 13: "));
    folder.Write("lost.json", R"({"canvas": {"width": 3, "height": 2}, "strokes": [
        {"brush": {"picture": "lost.png"}, "points": [[1.5, 0.5]]}]})");
    folder.CheckRefused("paint lost.json out.png",
                        "lost.json: /strokes/0/brush/picture: lost.png: cannot be read: No such file or directory");
    folder.Write("lost.json", R"({"canvas": {"picture": "lost.png"}, "strokes": []})");
    folder.CheckRefused("paint lost.json out.png",
                        "lost.json: /canvas/picture: lost.png: cannot be read: No such file or directory");
    folder.Write(
        "lost.json",
        R"({"canvas": {"width": 3, "height": 2}, "strokes": [], "brushes": {"a": {"Profile Mask": "s.json"}}})");
    folder.CheckRefused("paint lost.json out.png",
                        "lost.json: /brushes/a/Profile Mask: s.json: is no picture that can be read here "
                        "(docs/pictures.md lists them)");
}

TEST_CASE("paint keeps what was there when it fails") {
    const WorkingFolder folder;
    folder.Write("out.png", "something");
    folder.Write("bad.json", R"({"canvas": {"width": 3, "height": 2}, "strokes": [{"points": []}]})");
    CHECK_EQ(folder.Run("paint bad.json out.png").exitCode, 2);
    CHECK_EQ(cli::testing::ReadText(folder.Path("out.png")), "something");
}

TEST_CASE("paint has no JPEG of 14 bits") {
    const WorkingFolder folder;
    folder.CheckRefused(
        "paint s.json out.jpg --depth 14",
        "out.jpg: a JPEG has 8 bits a channel; 16 bits need a name in .png, .tif, .tiff, .ppm, .pnm or .pam");
    CHECK_EQ(folder.Run("paint s.json out.jpg").exitCode, 0);
}

}  // namespace chalkpane::app
