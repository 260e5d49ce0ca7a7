#include "picture_io/picture_size.h"

#include <doctest/doctest.h>

#include <vector>

#include "picture_io/picture.h"
#include "picture_io/picture_file.h"
#include "picture_io/picture_format.h"
#include "picture_io/png_chunks.h"
#include "tests/cli/temporary_folder.h"

namespace picture_io {
namespace {

using cli::testing::TemporaryFolder;

// The smallest block that says that the first row is at the right.
const std::vector<std::uint8_t> exif{'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 0x01, 0x12, 0,
                                     3,   0,   0, 0,  1, 0, 6, 0, 0, 0, 0,    0,    0};

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
    // What is behind the header may be missing.
    cli::testing::WriteText(folder / "cut.png", cli::testing::ReadText(folder / "a.png").substr(0, 26));
    CheckSize(folder / "cut.png", 300, 20);
}

TEST_CASE("Every format tells its size and its depth, from a file and from bytes") {
    const TemporaryFolder folder;
    for (const FormatRow& row : PictureFormats()) {
        CAPTURE(row.name);
        const auto file = folder / ("a" + std::string(row.endings[0]));
        WritePicture(Picture(320, 64), file);  // in blocks of 64 where a format has such
        CheckSize(file, 320, 64);
        CHECK_FALSE(ReadPictureSize(file)->hasWords);
        if (!row.hasWords) continue;
        WritePicture(Picture16(7, 500), file);
        CheckSize(file, 7, 500);
        CHECK(ReadPictureSize(file)->hasWords);
        const std::string text = cli::testing::ReadText(file);
        const auto size = PictureSizeIn({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        REQUIRE(size.has_value());
        CHECK_EQ(size->width, 7);
        CHECK(size->hasWords);
    }
}

// The rotated picture is there beside the one that is rotated.
TEST_CASE("A PNG that lies on its side takes two copies to be decoded, wherever it says so") {
    WriteOptions options;
    const auto copies = [&](bool isBehindPixels) {
        std::vector<std::uint8_t> png = EncodePictureFile(Picture(9, 5), RowOf(PictureFormat::Png), options);
        if (isBehindPixels) {
            const std::vector<std::uint8_t> end(png.end() - 12, png.end());
            png.resize(png.size() - 12);
            AppendChunk(png, "eXIf", exif);
            png.insert(png.end(), end.begin(), end.end());
        }
        const auto size = PictureSizeIn(png);
        REQUIRE(size.has_value());
        CHECK_EQ(size->width, 9);
        return size->decodingCopies;
    };
    CHECK_EQ(copies(false), 1);
    CHECK_EQ(copies(true), 2);
    options.info.exif = exif;
    CHECK_EQ(copies(false), 2);
    options.info.exif[19] = 1;  // upright
    CHECK_EQ(copies(false), 1);
}

TEST_CASE("Headers that no writer here makes tell their size too") {
    using namespace std::string_literals;
    const auto check = [](const std::string& text, std::uint32_t width, std::uint32_t height) {
        const auto size = PictureSizeIn({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        REQUIRE(size.has_value());
        CHECK_EQ(size->width, width);
        CHECK_EQ(size->height, height);
    };
    check("GIF89a\x2C\x01\x14\0\0\0\0"s, 300, 20);  // 0x012C
    check("P5 # a comment\n300\n# another 7\n 20 255\n", 300, 20);
    check("P7\nHEIGHT 20\nWIDTH 300\nDEPTH 3\nMAXVAL 255\nENDHDR\n", 300, 20);
    // A canvas of 4 x 4, whose sides are stored less one, and in it a lossless picture of 16384 x 8193: 16383 is 0x3FFF
    // and 8192 << 14 is 0x08000000.
    check("RIFF\0\0\0\0WEBPVP8X\x0A\0\0\0\0\0\0\0\x03\0\0\x03\0\0VP8L\x05\0\0\0\x2F\xFF\x3F\0\x08\0"s, 16384, 8193);
    check("RIFF\0\0\0\0WEBPVP8 \x0A\0\0\0\0\0\0\x9D\x01\x2A\x2C\x01\x14\0\0"s, 300, 20);
    // Rows from the top: -20 is 0xFFFFFFEC. The old header has words.
    check("BM\0\0\0\0\0\0\0\0\0\0\0\0\x28\0\0\0\x2C\x01\0\0\xEC\xFF\xFF\xFF"s, 300, 20);
    check("BM\0\0\0\0\0\0\0\0\0\0\0\0\x0C\0\0\0\x2C\x01\x14\0"s, 300, 20);
    // Boxes in boxes: the property has 20 bytes, with ipco 28, with iprp 36, with meta and its own four 48.
    check(
        "\0\0\0\x0C"
        "ftypavif"
        "\0\0\0\x30meta\0\0\0\0"
        "\0\0\0\x24iprp"
        "\0\0\0\x1Cipco"
        "\0\0\0\x14ispe\0\0\0\0\0\0\x01\x2C\0\0\0\x14"s,
        300, 20);
    // The highest byte first, the tags at 8: 256 as four bytes, 257 as two.
    check(
        "MM\0\x2A\0\0\0\x08\0\x02"
        "\x01\0\0\x04\0\0\0\x01\0\0\x01\x2C"
        "\x01\x01\0\x03\0\0\0\x01\0\x14\0\0"s,
        300, 20);
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
