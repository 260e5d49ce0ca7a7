#include "picture_io/picture.h"

#include <doctest/doctest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace picture_io {
namespace {

using cli::testing::ReadText;
using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using cli::testing::WriteText;

Picture Gradient(std::int32_t width, std::int32_t height) {
    Picture picture(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            picture.Set(x, y,
                        {static_cast<std::uint8_t>(x * 7), static_cast<std::uint8_t>(y * 5),
                         static_cast<std::uint8_t>(x + y), static_cast<std::uint8_t>(255 - x * 3)});
    return picture;
}

}  // namespace

TEST_CASE("A PNG comes back byte for byte, alpha included") {
    const TemporaryFolder folder;
    const Picture picture = Gradient(31, 17);
    WritePicture(picture, folder / "picture.png");
    CHECK(ReadPicture(folder / "picture.png") == picture);
}

// Quality 95 keeps smooth colours within a few levels; 6 is twice what this gradient shows.
TEST_CASE("A JPEG comes back nearly, and opaque") {
    const TemporaryFolder folder;
    const Picture picture = Gradient(32, 16);
    WritePicture(picture, folder / "picture.JPG");
    const Picture read = ReadPicture(folder / "picture.JPG");
    REQUIRE_EQ(read.width, 32);
    REQUIRE_EQ(read.height, 16);
    int worst = 0;
    for (std::int32_t y = 0; y < 16; ++y)
        for (std::int32_t x = 0; x < 32; ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel)
                worst = std::max(worst, std::abs(read.At(x, y)[channel] - picture.At(x, y)[channel]));
            CHECK_EQ(read.At(x, y)[3], 255);
        }
    CHECK_LE(worst, 6);
}

TEST_CASE("A picture is told by its bytes, not by its name") {
    const TemporaryFolder folder;
    WritePicture(Gradient(3, 3), folder / "picture.png");
    std::filesystem::rename(folder / "picture.png", folder / "picture.jpg");
    CHECK(ReadPicture(folder / "picture.jpg") == Gradient(3, 3));
}

TEST_CASE("A picture flipped twice is the picture") {
    const Picture picture = Gradient(5, 4);
    CHECK(Flipped(picture).At(2, 0) == picture.At(2, 3));
    CHECK(Flipped(Flipped(picture)) == picture);
}

TEST_CASE("A file that is missing is refused with its name and the reason") {
    CHECK_EQ(Thrown([] { (void)ReadPicture("/nowhere/at all.png"); }),
             "/nowhere/at all.png: cannot be read: No such file or directory");
    CHECK_EQ(Thrown([] { (void)ReadPicture("/"); }), "/: is a folder");
}

TEST_CASE("A file that is no picture is refused") {
    const TemporaryFolder folder;
    const auto file = folder / "text.png";
    WriteText(file, "not a picture");
    CHECK_EQ(Thrown([&] { (void)ReadPicture(file); }),
             file.string() + ": is no picture that can be read here (docs/pictures.md lists them)");
}

TEST_CASE("Half a picture is refused") {
    const TemporaryFolder folder;
    for (const std::string name : {"half.png", "half.jpg"}) {
        CAPTURE(name);
        const auto file = folder / name;
        WritePicture(Gradient(60, 60), file);
        const std::string bytes = ReadText(file);
        for (const std::size_t size : {bytes.size() / 2, std::size_t{40}, std::size_t{9}}) {
            WriteText(file, bytes.substr(0, size));
            const std::string reason = Thrown([&] { (void)ReadPicture(file); });
            CHECK_MESSAGE(reason.starts_with(file.string() + ": " + (name == "half.png" ? "PNG: " : "JPEG: ")), reason);
            CHECK_EQ(reason.find('\n'), std::string::npos);
        }
    }
}

// Bytes 16 to 19 of a PNG are its width.
TEST_CASE("A PNG that claims to be enormous is refused before memory is taken for it") {
    const TemporaryFolder folder;
    const auto file = folder / "wide.png";
    WritePicture(Gradient(2, 2), file);
    std::string bytes = ReadText(file);
    bytes[17] = 0x10;
    WriteText(file, bytes);
    CHECK_NE(Thrown([&] { (void)ReadPicture(file); }), "nothing");
}

// 16384 x 16384 pixels in less than a hundred bytes: deflate packs 1032 bytes into one at the very best.
TEST_CASE("A PNG that cannot hold the pixels it claims is refused before memory is taken for them") {
    const TemporaryFolder folder;
    const auto file = folder / "truncated.png";
    const auto claim = [&file] {
        std::string bytes = ReadText(file);
        for (const std::size_t side : {16U, 20U}) bytes.replace(side, 4, std::string("\0\0\x40\0", 4));
        WriteText(file, bytes);
    };
    WritePicture(Gradient(2, 2), file);
    claim();
    CHECK_EQ(Thrown([&] { (void)ReadPicture(file); }), file.string() + ": PNG: ends too early");
    WritePicture(Picture16(2, 2), file);
    claim();
    CHECK_EQ(Thrown([&] { (void)ReadAnyPicture(file); }), file.string() + ": PNG: ends too early");
}

// The densest there is: one colour, and a side that the limit allows.
TEST_CASE("A PNG of one colour is not taken for a truncated one") {
    const TemporaryFolder folder;
    const Picture picture(4096, 1024);
    WritePicture(picture, folder / "plain.png");
    CHECK(ReadPicture(folder / "plain.png") == picture);
}

TEST_CASE("A picture without pixels, or with too many, is refused") {
    CHECK_EQ(Thrown([] { (void)Picture(0, 5); }), "a picture of 0 x 5 pixels: sides of 1 to 16384 are possible");
    CHECK_NE(Thrown([] { (void)Picture(5, -1); }), "nothing");
    CHECK_NE(Thrown([] { (void)Picture(16385, 1); }), "nothing");
}

TEST_CASE("A picture under another ending is not written") {
    const TemporaryFolder folder;
    const auto file = folder / "picture.txt";
    CHECK_EQ(Thrown([&] { WritePicture(Gradient(2, 2), file); }),
             file.string() +
                 ": pictures end in .png, .jpg, .jpeg, .webp, .tif, .tiff, .bmp, .ppm, .pnm, .pgm, .pam, "
                 ".gif, .avif, .heic or .heif");
    CHECK_FALSE(IsPictureName(file));
    CHECK(IsPictureName("a.jpeg"));
    CHECK_EQ(folder.Entries(), 0);
}

TEST_CASE("A picture that cannot be put in its place leaves nothing behind") {
    const TemporaryFolder folder;
    const auto taken = folder / "folder.png";
    std::filesystem::create_directory(taken);
    CHECK_EQ(Thrown([&] { WritePicture(Gradient(2, 2), taken); }),
             taken.string() + ": cannot be written: it is a folder");
    CHECK_EQ(folder.Entries(), 1);
    const auto nowhere = folder / "missing" / "picture.png";
    CHECK_EQ(Thrown([&] { WritePicture(Gradient(2, 2), nowhere); }),
             nowhere.string() + ": cannot be written: No such file or directory");
}

TEST_CASE("A full disk is noticed, and the former picture stays") {
    const TemporaryFolder folder;
    const auto file = folder / "picture.png";
    WritePicture(Gradient(2, 2), file);
    const std::string before = ReadText(file);
    // A disk that is full for this process alone: no file may grow beyond 64 bytes.
    rlimit limits{};
    getrlimit(RLIMIT_FSIZE, &limits);
    const rlimit full{64, limits.rlim_max};
    const auto listener = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    const std::string reason = Thrown([&] { WritePicture(Gradient(99, 99), file); });
    setrlimit(RLIMIT_FSIZE, &limits);
    std::signal(SIGXFSZ, listener);
    CHECK_EQ(reason, file.string() + ": cannot be written: File too large");
    CHECK_EQ(ReadText(file), before);
    CHECK_EQ(folder.Entries(), 1);
}

// All words there are, four to a pixel.
TEST_CASE("A PNG of 16 bits a channel comes back word for word") {
    const TemporaryFolder folder;
    Picture16 picture(128, 128);
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) picture.rgba[i] = static_cast<std::uint16_t>(i);
    WritePicture(picture, folder / "words.png");
    const AnyPicture read = ReadAnyPicture(folder / "words.png");
    REQUIRE(std::holds_alternative<Picture16>(read));
    CHECK(std::get<Picture16>(read) == picture);
}

TEST_CASE("A picture of bytes stays one of bytes where words are welcome") {
    const TemporaryFolder folder;
    WritePicture(Gradient(5, 4), folder / "bytes.png");
    const AnyPicture read = ReadAnyPicture(folder / "bytes.png");
    REQUIRE(std::holds_alternative<Picture>(read));
    CHECK(std::get<Picture>(read) == Gradient(5, 4));
}

// 2 x 1 pixels of 16 bits, 0x1234 and 0xFFFE, without colours and alpha.
TEST_CASE("A grey PNG of 16 bits is read as colours, opaque") {
    const std::vector<std::uint8_t> grey = {
        0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00,
        0x00, 0x02, 0x00, 0x00, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00, 0x00, 0x81, 0xD9, 0xFC, 0x15, 0x00, 0x00, 0x00,
        0x0D, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0x10, 0x32, 0xF9, 0xFF, 0x0F, 0x00, 0x03, 0xE5, 0x02, 0x44,
        0x87, 0x8B, 0x08, 0x31, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
    const TemporaryFolder folder;
    WriteText(folder / "grey.png", std::string(grey.begin(), grey.end()));
    const AnyPicture read = ReadAnyPicture(folder / "grey.png");
    REQUIRE(std::holds_alternative<Picture16>(read));
    const auto& words = std::get<Picture16>(read);
    CHECK(words.At(0, 0) == std::array<std::uint16_t, 4>{0x1234, 0x1234, 0x1234, 0xFFFF});
    CHECK(words.At(1, 0) == std::array<std::uint16_t, 4>{0xFFFE, 0xFFFE, 0xFFFE, 0xFFFF});
}

TEST_CASE("Half a PNG of words, or a damaged one, is refused") {
    const TemporaryFolder folder;
    const auto file = folder / "words.png";
    Picture16 picture(60, 60);
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) picture.rgba[i] = static_cast<std::uint16_t>(i * 40503U);
    WritePicture(picture, file);
    const std::string bytes = ReadText(file);
    for (const std::size_t size : {bytes.size() / 2, std::size_t{60}, std::size_t{26}}) {
        WriteText(file, bytes.substr(0, size));
        CHECK_EQ(Thrown([&] { (void)ReadAnyPicture(file); }), file.string() + ": PNG: ends too early");
    }
    std::string damaged = bytes;
    damaged[bytes.size() / 2] = static_cast<char>(~damaged[bytes.size() / 2]);
    WriteText(file, damaged);
    CHECK(Thrown([&] { (void)ReadAnyPicture(file); }).starts_with(file.string() + ": PNG: "));
}

TEST_CASE("Words go into no JPEG") {
    const TemporaryFolder folder;
    const auto file = folder / "words.jpg";
    CHECK_EQ(
        Thrown([&] { WritePicture(Picture16(2, 2), file); }),
        file.string() + ": a JPEG has 8 bits a channel; 16 bits need a name in .png, .tif, .tiff, .ppm, .pnm or .pam");
    CHECK_EQ(folder.Entries(), 0);
}

}  // namespace picture_io
