#include <doctest/doctest.h>

#include <algorithm>
#include <string>
#include <thread>

#include "picture_io/picture.h"
#include "tests/cli/working_folder.h"

// What a run takes in memory is counted before it is taken. The picture has 1024 x 512 pixels, half of 2^20: in bytes
// they are 2 MiB, and a filter counts them four times.

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

const std::string invert = " --apply 'Invert Color'";

std::string Taken(const std::string& where, int sum, int largest, const std::string& part) {
    return where + ": takes " + std::to_string(sum) + " MiB of memory, " + std::to_string(largest) + " MiB of it for " +
           part;
}

}  // namespace

TEST_CASE("filter counts its picture four times, at 14 bits in words, and a mask adds three") {
    const CountedFolder folder;
    folder.CheckBudget("filter a.png out.png" + invert, 8, Taken("a.png", 8, 8, "the picture \"a.png\""));
    folder.CheckBudget("filter b.bmp out.png" + invert, 8, Taken("b.bmp", 8, 8, "the picture \"b.bmp\""));
    folder.CheckBudget("filter a.png out.png --depth 14" + invert, 16, Taken("a.png", 16, 16, "the picture \"a.png\""));
    folder.CheckBudget("filter a.png out.png --mask mask.png" + invert, 14,
                       Taken("a.png", 14, 14, "the picture \"a.png\""));
    folder.CheckBudget("filter - - <a.png" + invert, 8, Taken("standard input", 8, 8, "the picture"));
}

TEST_CASE("standard input that has no end is refused") {
    const CountedFolder folder;
    const Ended ended = folder.Run("filter - out.png --memory 4M </dev/zero" + invert);
    CHECK_EQ(ended.complaint, "chalkpane: standard input: is larger than 4 MiB\n");
    CHECK_EQ(ended.exitCode, 2);
}

TEST_CASE("filter counts as many pictures together as it works on at a time") {
    const CountedFolder folder;
    const int together = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 2);
    folder.CheckBudget("filter a.png b.bmp --out-dir out" + invert, 8 * together,
                       Taken("--out-dir", 8 * together, 8, "the picture \"b.bmp\""));
}

// 40 bytes to a pixel for reading the film and as many for writing it, and the frame four times: 96.
TEST_CASE("a film is counted by its frames") {
    const CountedFolder folder;
    REQUIRE_EQ(folder.Run("filter a.png b.png --save-preset look.preset" + invert).exitCode, 0);
    folder.CheckBudget("animate a.png film.mkv --preset look.preset --frames 0..1", 10,
                       Taken("a.png", 10, 10, "the picture \"a.png\""));
    folder.CheckBudget("filter film.mkv out.mkv" + invert, 48, Taken("film.mkv", 48, 48, "the film \"film.mkv\""));
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
