#include "picture_io/picture_size.h"

#include <doctest/doctest.h>

#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"

namespace picture_io {
namespace {

using cli::testing::TemporaryFolder;

void CheckSize(const std::filesystem::path& file, std::uint32_t width, std::uint32_t height) {
    const auto size = ReadPictureSize(file);
    REQUIRE(size.has_value());
    CHECK_EQ(size->width, width);
    CHECK_EQ(size->height, height);
    CHECK_EQ(size->Pixels(), static_cast<double>(width) * height);
}

}  // namespace

TEST_CASE("The size of a picture is told from its first bytes") {
    const TemporaryFolder folder;
    for (const char* name : {"a.png", "a.jpg"}) {
        WritePicture(Picture(300, 20), folder / name);
        CheckSize(folder / name, 300, 20);
    }
    WritePicture(Picture16(7, 500), folder / "words.png");
    CheckSize(folder / "words.png", 7, 500);
    // Nothing behind the header is looked at.
    cli::testing::WriteText(folder / "cut.png", cli::testing::ReadText(folder / "a.png").substr(0, 26));
    CheckSize(folder / "cut.png", 300, 20);
}

TEST_CASE("What tells no size has none") {
    const TemporaryFolder folder;
    WritePicture(Picture(300, 20), folder / "a.jpg");
    const std::string jpeg = cli::testing::ReadText(folder / "a.jpg");
    cli::testing::WriteText(folder / "text", "no picture");
    CHECK_FALSE(ReadPictureSize(folder / "text").has_value());
    CHECK_FALSE(ReadPictureSize(folder / "none").has_value());
    CHECK_FALSE(ReadPictureSize(folder.Path()).has_value());
    CHECK_FALSE(ReadPictureSize("/dev/zero").has_value());
    for (std::size_t length = 0; length < 24; ++length) {  // before its frame header
        cli::testing::WriteText(folder / "cut", jpeg.substr(0, length));
        CHECK_FALSE(ReadPictureSize(folder / "cut").has_value());
    }
}

}  // namespace picture_io
