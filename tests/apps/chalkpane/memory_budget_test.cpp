#include <doctest/doctest.h>

#include <algorithm>
#include <string>
#include <thread>

#include "picture_io/picture.h"
#include "tests/cli/working_folder.h"

// What a run takes in memory is counted before it is taken. The picture has 1024 x 512 pixels, half of 2^20: in bytes
// they are 2 MiB.

namespace chalkpane::app {
namespace {

using cli::testing::Ended;

class CountedFolder : public cli::testing::WorkingFolder {
public:
    CountedFolder() : cli::testing::WorkingFolder(CHALKPANE_PROGRAM) {
        const picture_io::Picture picture(1024, 512);
        for (const char* const name : {"a.png", "b.bmp", "mask.png"}) picture_io::WritePicture(picture, Path(name));
    }

    // Works with so many MiB, and is refused with one fewer by this line without a new file.
    void CheckBudget(const std::string& arguments, int mebibytes, const std::string& refusal) const {
        CAPTURE(arguments);
        const auto limited = [&](int limit, const std::string& before) {
            return Run(arguments + " --memory " + std::to_string(limit) + "M", CHALKPANE_PROGRAM, before);
        };
        const std::ptrdiff_t entries = Entries();
        const Ended refused = limited(mebibytes - 1, "");
        CHECK_EQ(refused.complaint,
                 "chalkpane: " + refusal + "; " + std::to_string(mebibytes - 1) + " MiB are allowed (--memory)\n");
        CHECK_EQ(refused.exitCode, 2);
        CHECK_EQ(Entries(), entries);
        CHECK_EQ(limited(mebibytes, "").complaint, "");
    }
};

const std::string invertOne = " --apply 'Invert Color'";

std::string Taken(const std::string& where, int sum, int largest, const std::string& part) {
    return where + ": takes " + std::to_string(sum) + " MiB of memory, " + std::to_string(largest) + " MiB of it for " +
           part;
}

}  // namespace

// By bands: the picture as its reader has it, 2 MiB; 128 rows of 4096 bytes twelve times, 6 MiB; the packed file, 2.
// The bytes of the file that is read come to it. At 14 bits rows and packed file are twice as much. A BMP takes two
// more to be decoded than it has, but not while the rows are under way.
TEST_CASE("filter that runs by bands counts the rows under way, and what its files take") {
    const CountedFolder folder;
    folder.CheckBudget("filter a.png out.png" + invertOne, 11, Taken("a.png", 10, 6, "the rows under way"));
    folder.CheckBudget("filter b.bmp out.png" + invertOne, 12, Taken("b.bmp", 12, 6, "the rows under way"));
    folder.CheckBudget("filter a.png out.png --depth 14" + invertOne, 19, Taken("a.png", 18, 12, "the rows under way"));
    folder.CheckBudget("filter - - <a.png" + invertOne, 11, Taken("standard input", 10, 6, "the rows under way"));
}

// Source and result, 4 MiB, and 64 rows twelve times, 3 MiB. With a mask, which is half a MiB, the input is read once
// more while the result is packed, 2 MiB each: 9.5. A blur of 24 makes a picture of 1072 x 560, 2.29 MiB, which is
// packed in as much, with rows of 3.14 MiB: 7.7.
TEST_CASE("filter over the whole picture counts source and result, a mask, and what --expand adds") {
    const CountedFolder folder;
    const std::string soften = " --apply 'Super Soften:Softness=24'";
    folder.CheckBudget("filter a.png out.png" + soften, 8, Taken("a.png", 7, 3, "the rows under way"));
    folder.CheckBudget("filter a.png out.png --mask mask.png" + invertOne, 10,
                       Taken("a.png", 10, 3, "the rows under way"));
    folder.CheckBudget("filter a.png out.png --expand" + soften, 8, Taken("a.png", 8, 3, "the rows under way"));
}

TEST_CASE("standard input that has no end is refused") {
    const CountedFolder folder;
    const Ended ended = folder.Run("filter - out.png --memory 4M </dev/zero" + invertOne);
    CHECK_EQ(ended.complaint, "chalkpane: standard input: is larger than 4 MiB\n");
    CHECK_EQ(ended.exitCode, 2);
}

// The PNG takes 10 MiB as above, the BMP 16.5: gathered and packed it counts three and a half times.
TEST_CASE("filter counts as many pictures together as it works on at a time") {
    const CountedFolder folder;
    const int together = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 2);
    folder.CheckBudget("filter a.png b.bmp --out-dir out" + invertOne, together == 1 ? 17 : 27,
                       Taken("--out-dir", together == 1 ? 17 : 27, 7, "the file that is written"));
}

// 40 bytes to a pixel for reading the film and as many for writing it, and the frame four times: 96.
TEST_CASE("a film is counted by its frames") {
    const CountedFolder folder;
    REQUIRE_EQ(folder.Run("filter a.png b.png --save-preset look.preset" + invertOne).exitCode, 0);
    folder.CheckBudget("animate a.png film.mkv --preset look.preset --frames 0..1", 10,
                       Taken("a.png", 10, 10, "the picture \"a.png\""));
    folder.CheckBudget("filter film.mkv out.mkv" + invertOne, 48, Taken("film.mkv", 48, 48, "the film \"film.mkv\""));
    folder.CheckBudget("animate film.mkv out%02d.png --preset look.preset", 50,
                       Taken("film.mkv", 50, 50, "the film \"film.mkv\""));
}

// The canvas three times and the picture three times: 12 bytes to each pixel.
TEST_CASE("paint and animate count the canvas and the pictures of a brush") {
    const CountedFolder folder;
    folder.Write("s.json", R"({"canvas": {"width": 1024, "height": 1024}, "strokes": [
        {"brush": {"picture": "a.png", "Size": 3}, "points": [[5, 5]]}]})");
    folder.CheckBudget("paint s.json out.png --depth 8", 18, Taken("s.json", 18, 12, "the canvas"));
    REQUIRE_EQ(folder.Run("paint s.json out.png --save-preset brush.preset").exitCode, 0);
    folder.CheckBudget("animate s.json f%01d.png --depth 8 --preset brush.preset --frames 0..1", 18,
                       Taken("s.json", 18, 12, "the canvas"));
}

}  // namespace chalkpane::app
