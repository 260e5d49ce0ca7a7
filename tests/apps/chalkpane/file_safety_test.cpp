#include <doctest/doctest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "picture_io/picture.h"
#include "tests/cli/working_folder.h"

// What the program never does to the files of those who use it.

namespace chalkpane::app {
namespace {

using cli::testing::Ended;
using cli::testing::ReadText;

const std::string invert = " --apply 'Invert Color'";

class PictureFolder : public cli::testing::WorkingFolder {
public:
    PictureFolder() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        picture_io::Picture picture(4, 3);
        for (std::size_t i = 0; i < picture.rgba.size(); ++i) picture.rgba[i] = i % 4 == 3 ? 255 : 100;
        picture_io::WritePicture(picture, Path("in.png"));
        picture_io::WritePicture(picture, Path("mask.png"));
        Write("s.json", R"({"canvas": {"width": 3, "height": 2}, "strokes": [{"points": [[1.5, 0.5]]}]})");
        REQUIRE_EQ(Run("filter in.png other.png --save-preset look.preset" + invert).exitCode, 0);
    }
    // Refused by this line, and every file is as it was.
    void CheckRefused(const std::string& arguments, const std::string& line) const {
        CAPTURE(arguments);
        const std::string before = AllBytes();
        const Ended ended = Run(arguments);
        CHECK_EQ(ended.complaint, "chalkpane: " + line + "\n");
        CHECK_EQ(ended.exitCode, 2);
        CHECK(AllBytes() == before);
    }

private:
    [[nodiscard]] std::string AllBytes() const {
        std::string all;
        for (const char* const name : {"in.png", "mask.png", "s.json", "other.png", "look.preset"})
            all += ReadText(Path(name)) + '|';
        return all + std::to_string(Entries());
    }
};

}  // namespace

TEST_CASE("an output that is an input is refused before anything is opened") {
    const PictureFolder folder;
    std::filesystem::create_symlink("in.png", folder.Path("link.preset"));
    folder.CheckRefused("filter in.png out.png --save-preset in.png" + invert,
                        "in.png: cannot be written: it is read too, as in.png");
    folder.CheckRefused("filter in.png out.png --save-preset link.preset --overwrite" + invert,
                        "link.preset: cannot be written: it is read too, as in.png");
    folder.CheckRefused("filter in.png mask.png --mask mask.png" + invert,
                        "mask.png: cannot be written: it is read too, as mask.png");
    folder.CheckRefused("filter in.png out.png --preset look.preset --save-preset look.preset",
                        "look.preset: cannot be written: it is read too, as look.preset");
    folder.CheckRefused("paint s.json out.png --save-preset s.json",
                        "s.json: cannot be written: it is read too, as s.json");
    folder.CheckRefused("paint s.json in.png --picture in.png", "in.png: cannot be written: it is read too, as in.png");
    folder.CheckRefused("animate in.png in.png --preset look.preset",
                        "in.png: must have one number such as %05d in the file's name");
}

TEST_CASE("a picture that strokes name is an input too") {
    const PictureFolder folder;
    folder.Write("named.json", R"({"canvas": {"picture": "in.png"}, "strokes": [{"points": [[1.5, 0.5]]}]})");
    const std::string before = ReadText(folder.Path("in.png"));
    const Ended ended = folder.Run("paint named.json ./in.png");
    CHECK_EQ(ended.exitCode, 2);
    CHECK_NE(ended.complaint.find("cannot be written: it is read too, as "), std::string::npos);
    CHECK(ReadText(folder.Path("in.png")) == before);
}

TEST_CASE("two outputs of one name are refused") {
    const PictureFolder folder;
    folder.CheckRefused("filter in.png out.png --save-preset out.png" + invert, "out.png: two outputs have this name");
    folder.CheckRefused("filter in.png out.png --save-preset ./out.png" + invert,
                        "./out.png: two outputs have this name");
}

// 255 - 100 = 155.
TEST_CASE("a picture is filtered onto itself, also through a link, and keeps its mode") {
    const PictureFolder folder;
    std::filesystem::create_symlink("in.png", folder.Path("link.png"));
    chmod(folder.Path("in.png").c_str(), 0640);
    REQUIRE_EQ(folder.Run("filter in.png in.png" + invert).exitCode, 0);
    CHECK_EQ(folder.Open("in.png").At(0, 0)[0], 155);
    REQUIRE_EQ(folder.Run("filter in.png link.png" + invert).exitCode, 0);
    CHECK_EQ(folder.Open("in.png").At(0, 0)[0], 100);
    CHECK(std::filesystem::is_symlink(folder.Path("link.png")));
    struct stat status {};
    REQUIRE_EQ(stat(folder.Path("in.png").c_str(), &status), 0);
    CHECK_EQ(status.st_mode & 07777U, 0640);
}

TEST_CASE("a preset replaces a preset, and anything else only when it is told to") {
    const PictureFolder folder;
    folder.CheckRefused("filter in.png out.png --save-preset mask.png" + invert,
                        "mask.png: is no preset; --overwrite replaces it all the same");
    CHECK_EQ(folder.Run("filter in.png out.png --save-preset look.preset --apply Blur").exitCode, 0);
    CHECK_EQ(folder.Run("filter in.png out.png --save-preset mask.png --overwrite" + invert).exitCode, 0);
    CHECK_NE(ReadText(folder.Path("mask.png")).find("filter"), std::string::npos);
}

TEST_CASE("FIFOs and devices are neither read nor written, and nobody waits for them") {
    const PictureFolder folder;
    REQUIRE_EQ(mkfifo(folder.Path("fifo.png").c_str(), 0600), 0);
    folder.CheckRefused("filter fifo.png out.png" + invert, "fifo.png: is not a regular file");
    folder.CheckRefused("filter in.png fifo.png" + invert, "fifo.png: cannot be written: it is not a regular file");
    folder.CheckRefused("filter /dev/zero out.png" + invert, "/dev/zero: is not a regular file");
    folder.CheckRefused("paint fifo.png out.png", "fifo.png: is not a regular file");
}

TEST_CASE("a damaged AVIF is told in one line, whatever its decoder has to say") {
    const cli::testing::WorkingFolder folder(CHALKPANE_PROGRAM);
    picture_io::WritePicture(picture_io::Picture(16, 16), folder.Path("a.avif"));
    std::string bytes = cli::testing::ReadText(folder.Path("a.avif"));
    const std::size_t data = bytes.rfind("mdat");
    REQUIRE_NE(data, std::string::npos);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(data + 4), bytes.end(), '\xFF');
    folder.Write("a.avif", bytes);
    const auto ended = folder.Run("filter a.avif b.png --apply 'Invert Color'");
    CHECK_EQ(ended.exitCode, 2);
    CHECK_MESSAGE(ended.complaint.starts_with("chalkpane: a.avif: AVIF: "), ended.complaint);
    CHECK_EQ(ended.complaint.find('\n'), ended.complaint.size() - 1);
}

}  // namespace chalkpane::app
