#include "apps/chalkpane/strokes/strokes_memory.h"

#include <doctest/doctest.h>

#include "apps/chalkpane/strokes/stroke_painter.h"
#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;

std::string Refusal(const std::string& text, std::optional<Depth> depth, std::uint64_t memory,
                    const std::filesystem::path& picture = {}) {
    return cli::testing::Thrown(
        [&] { StrokesMemory(memory, "s.json").Count(ParseStrokes(text, "s.json"), picture, depth); });
}

}  // namespace

// 256 Mi pixels of 4 channels of 2 bytes, three times: 6 GiB; of one byte: 3 GiB.
TEST_CASE("A canvas is counted before it is made, by its depth") {
    const std::string text = R"({"canvas": {"width": 16384, "height": 16384}, "depth": 14, "strokes": []})";
    CHECK_EQ(Refusal(text, std::nullopt, 6144 * mebibyte), "nothing");
    CHECK_EQ(Refusal(text, std::nullopt, 6144 * mebibyte - 1),
             "s.json: takes 6.0 GiB of memory, 6.0 GiB of it for the canvas; 6.0 GiB are allowed (--memory)");
    CHECK_EQ(Refusal(text, Depth::Eight, 3072 * mebibyte), "nothing");
    CHECK_EQ(Refusal(text, Depth::Eight, 1024 * mebibyte),
             "s.json: takes 3.0 GiB of memory, 3.0 GiB of it for the canvas; 1.0 GiB are allowed (--memory)");
}

// 2^28 pixels of 8 bytes are 2^31, one more than the engine's largest image. Whoever allows the memory is told why.
TEST_CASE("A canvas of 2 GiB is refused by its size, however much memory there is") {
    const StrokesFile file =
        ParseStrokes(R"({"canvas": {"width": 16384, "height": 16384}, "depth": 14, "strokes": []})", "s.json");
    CHECK_EQ(
        cli::testing::Thrown([&] { (void)MakeCanvas(file, {}, std::nullopt); }),
        "s.json: /canvas: 16384 x 16384 pixels of 14 bits are too many: a picture that is worked on takes less than "
        "2 GiB");
}

TEST_CASE("The pictures of brushes are counted with the canvas, each once") {
    const cli::testing::TemporaryFolder folder;
    const std::string name = (folder / "a.png").string();
    picture_io::WritePicture(picture_io::Picture(1024, 512), name);
    const std::string brush = R"({"picture": ")" + name + R"(", "mask": ")" + name + R"("})";
    const std::string text =
        R"({"canvas": {"width": 1024, "height": 1024}, "strokes": [{"points": [[1, 1]], "brush": )" + brush +
        R"(}, {"points": [[2, 2]], "brush": )" + brush + "}]}";
    // 1 Mi pixels of the canvas, half of that in the picture: 4 bytes, three times.
    CHECK_EQ(Refusal(text, Depth::Eight, 18 * mebibyte), "nothing");
    CHECK_EQ(Refusal(text, Depth::Eight, 17 * mebibyte),
             "s.json: takes 18 MiB of memory, 12 MiB of it for the canvas; 17 MiB are allowed (--memory)");
    // The same picture as the canvas.
    CHECK_EQ(
        Refusal(text, Depth::Eight, 11 * mebibyte, name),
        "s.json: takes 12 MiB of memory, 6 MiB of it for the picture \"" + name + "\"; 11 MiB are allowed (--memory)");
}

TEST_CASE("A picture of the preset's is counted before it is read, on top of the file's") {
    const cli::testing::TemporaryFolder folder;
    const std::string name = (folder / "a.png").string();
    picture_io::WritePicture(picture_io::Picture(1024, 512), name);
    const StrokesFile file =
        ParseStrokes(R"({"canvas": {"width": 1024, "height": 1024}, "strokes": [{"points": [[1, 1]]}]})", "s.json");
    StrokesMemory memory(17 * mebibyte, "s.json");
    memory.Count(file, {}, Depth::Eight);  // 12 MiB
    CHECK_EQ(cli::testing::Thrown([&] { memory.CountPicture(name); }),
             "s.json: takes 18 MiB of memory, 12 MiB of it for the canvas; 17 MiB are allowed (--memory)");
}

}  // namespace chalkpane::app
