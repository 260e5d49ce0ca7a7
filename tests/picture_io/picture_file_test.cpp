#include "picture_io/picture_file.h"

#include <doctest/doctest.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "cli/file_bytes.h"
#include "picture_io/decoded.h"
#include "picture_io/exif.h"
#include "picture_io/oriented.h"
#include "picture_io/png_chunks.h"
#include "picture_io/png_info.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;
using cli::testing::TemporaryFolder;
using cli::testing::Thrown;

// Red counts the columns, green the rows.
Picture Counted(std::int32_t width, std::int32_t height) {
    Picture picture(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            picture.Set(x, y, {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 7, 255});
    return picture;
}

Picture Plain(std::int32_t width, std::int32_t height, const std::array<std::uint8_t, 4>& pixel) {
    Picture picture(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) picture.Set(x, y, pixel);
    return picture;
}

// The smallest block: byte order, 42, the directory at 8; one entry; no further directory.
Bytes Exif(std::uint8_t orientation, bool isBigEndian) {
    if (isBigEndian)
        return {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 0x01, 0x12, 0, 3, 0, 0, 0, 1, 0, orientation, 0, 0, 0, 0, 0, 0};
    return {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 0x01, 3, 0, 1, 0, 0, 0, orientation, 0, 0, 0, 0, 0, 0, 0};
}

// No real profile, but one that says for which colours it is made, where a profile says so.
Bytes Profile(std::string_view space, std::size_t size = 200) {
    Bytes profile(size, 3);
    std::copy(space.begin(), space.end(), profile.begin() + 16);
    return profile;
}

PictureFile ThroughFile(const Bytes& bytes) {
    const TemporaryFolder folder;
    cli::WriteFileWhole(folder / "picture", bytes);
    return ReadPictureFile(folder / "picture");
}

PictureFile WrittenAndRead(const AnyPicture& picture, PictureFormat format, const WriteOptions& options) {
    return ThroughFile(EncodePictureFile(picture, RowOf(format), options));
}

}  // namespace

// 3 x 2 stored pixels a b c / d e f, named by column and row, and what is meant by each of the eight.
TEST_CASE("the eight orientations come out upright") {
    using Place = std::array<std::uint8_t, 2>;
    const auto corner = [](const Picture& picture, bool right, bool bottom) {
        const auto pixel = picture.At(right ? picture.width - 1 : 0, bottom ? picture.height - 1 : 0);
        return Place{pixel[0], pixel[1]};
    };
    struct Meant {
        int orientation;
        std::int32_t width;
        Place topLeft, topRight, bottomLeft;
    };
    const Meant all[] = {{1, 3, {0, 0}, {2, 0}, {0, 1}}, {2, 3, {2, 0}, {0, 0}, {2, 1}}, {3, 3, {2, 1}, {0, 1}, {2, 0}},
                         {4, 3, {0, 1}, {2, 1}, {0, 0}}, {5, 2, {0, 0}, {0, 1}, {2, 0}}, {6, 2, {0, 1}, {0, 0}, {2, 1}},
                         {7, 2, {2, 1}, {2, 0}, {0, 1}}, {8, 2, {2, 0}, {2, 1}, {0, 0}}};
    for (const Meant& meant : all) {
        CAPTURE(meant.orientation);
        const Picture upright = Oriented(Counted(3, 2), static_cast<Orientation>(meant.orientation));
        CHECK_EQ(upright.width, meant.width);
        CHECK(corner(upright, false, false) == meant.topLeft);
        CHECK(corner(upright, true, false) == meant.topRight);
        CHECK(corner(upright, false, true) == meant.bottomLeft);
    }
}

TEST_CASE("the orientation is read and reset in either byte order, and nonsense is upright") {
    for (const bool isBigEndian : {false, true}) {
        Bytes exif = Exif(6, isBigEndian);
        CHECK(OrientationIn(exif) == Orientation::FirstRowRight);
        SetUpright(exif);
        CHECK(exif == Exif(1, isBigEndian));
        for (std::size_t size = 0; size < exif.size(); ++size)
            CHECK(OrientationIn(std::span(exif).first(size)) == Orientation::Upright);
    }
    CHECK(OrientationIn(Exif(9, false)) == Orientation::Upright);
    Bytes circle = Exif(1, false);
    circle[22] = 8;  // the directory follows itself
    SetUpright(circle);
    CHECK(OrientationIn(circle) == Orientation::Upright);
}

TEST_CASE("a picture that lies on its side in the file is read upright and told as upright") {
    WriteOptions options;
    options.info.exif = Exif(6, true);
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Jpeg}) {
        const PictureFile file = WrittenAndRead(Counted(30, 20), format, options);
        const Picture& picture = std::get<Picture>(file.picture);
        CHECK_EQ(picture.width, 20);
        CHECK_EQ(picture.height, 30);
        // The stored column 0, row 19 is on top left: red 0, green 19, within what a JPEG loses.
        CHECK_LE(picture.At(0, 0)[0], 3);
        CHECK_LE(std::abs(picture.At(0, 0)[1] - 19), 3);
        CHECK(file.info.exif == Exif(1, true));
    }
}

TEST_CASE("profile, EXIF, XMP and resolution go through PNG and JPEG, either way") {
    WriteOptions options;
    options.info.profile = Profile("RGB ", 70000);  // more than one marker of a JPEG holds
    options.info.exif = Exif(1, false);
    options.info.xmp = {'<', 'x', '/', '>'};
    options.info.resolution = Resolution{11811, 11811};  // 300 dots to the inch: 300 / 0.0254 = 11811.02
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Jpeg}) {
        const PictureInfo info = WrittenAndRead(Counted(9, 9), format, options).info;
        CHECK(info.profile == options.info.profile);
        CHECK(info.exif == options.info.exif);
        CHECK(info.xmp == options.info.xmp);
        REQUIRE(info.resolution);
        CHECK_EQ(info.resolution->x, 11811);
        CHECK_EQ(info.resolution->y, 11811);
    }
}

TEST_CASE("text goes through a PNG as it is, and a JPEG's comment through both") {
    WriteOptions options;
    options.info.comments = {"a comment"};
    const PictureInfo jpeg = WrittenAndRead(Counted(9, 9), PictureFormat::Jpeg, options).info;
    CHECK(jpeg.comments == options.info.comments);
    const PictureInfo png = WrittenAndRead(Counted(9, 9), PictureFormat::Png, options).info;
    const std::string texts(png.texts.begin(), png.texts.end());
    CHECK_NE(texts.find("a comment"), std::string::npos);
    WriteOptions again;
    again.info.texts = png.texts;
    CHECK(WrittenAndRead(Counted(9, 9), PictureFormat::Png, again).info.texts == png.texts);
}

// Keyword, 0, text: in Latin-1 (0xFC is U+00FC, in UTF-8 0xC3 0xBC), deflated, and in UTF-8 with its two names.
TEST_CASE("every text of a PNG is a comment of a JPEG, behind its keyword unless that is Comment") {
    const auto chunk = [](std::string_view type, const std::string& data) {
        Bytes chunks;
        AppendChunk(chunks, type, Bytes(data.begin(), data.end()));
        return chunks;
    };
    Bytes packed(100);
    uLongf size = packed.size();
    const std::string long100(100, 'x');
    REQUIRE_EQ(compress(packed.data(), &size, reinterpret_cast<const Bytef*>(long100.data()), long100.size()), Z_OK);
    WriteOptions options;
    for (const Bytes& each :
         {chunk("tEXt", std::string("Author\0M\xFCller", 13)), chunk("tEXt", std::string("Comment\0plain", 13)),
          chunk("zTXt", std::string("Title\0\0", 7) +
                            std::string(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size))),
          chunk("iTXt", std::string("Source\0\0\0de\0Quelle\0here", 23)), chunk("tEXt", "no end"),
          chunk("zTXt", std::string("Title\0\0damaged", 14))})
        options.info.texts.insert(options.info.texts.end(), each.begin(), each.end());
    const PictureInfo jpeg = WrittenAndRead(Counted(9, 9), PictureFormat::Jpeg, options).info;
    CHECK(jpeg.comments ==
          std::vector<std::string>{"Author: M\xC3\xBCller", "plain", "Title: " + long100, "Source: here"});
}

// 64 KiB and one byte of zeros take some 80 bytes; 40,000 texts of 60,000 bytes would be 2.4 GB.
TEST_CASE("texts that unfold to more than a comment holds, or are very many, are left out") {
    const auto texts = [](std::size_t bytes, int count) {
        Bytes packed(1000);
        uLongf size = packed.size();
        const Bytes text(bytes, ' ');
        REQUIRE_EQ(compress(packed.data(), &size, text.data(), text.size()), Z_OK);
        Bytes data{'A', 0, 0};
        data.insert(data.end(), packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
        Bytes chunks;
        for (int i = 0; i < count; ++i) AppendChunk(chunks, "zTXt", data);
        return chunks;
    };
    CHECK(CommentsOf(texts(65537, 1)).empty());
    CHECK_EQ(CommentsOf(texts(65536, 1)).size(), 1);
    CHECK_EQ(CommentsOf(texts(60000, 1000)).size(), 18);  // 17 * 60000 is below 1048576, 18 * 60000 is above
}

TEST_CASE("a profile for colours is left out of a grey picture, and one for grey out of colours") {
    WriteOptions options;
    options.followsInfo = true;
    options.info.isGrey = true;
    for (const bool isGrey : {false, true}) {
        const Picture picture = isGrey ? Plain(4, 4, {9, 9, 9, 255}) : Counted(4, 4);
        options.info.profile = Profile("GRAY");
        CHECK_EQ(WrittenAndRead(picture, PictureFormat::Png, options).info.profile.empty(), !isGrey);
        options.info.profile = Profile("RGB ");
        CHECK_EQ(WrittenAndRead(picture, PictureFormat::Jpeg, options).info.profile.empty(), isGrey);
    }
}

TEST_CASE("grey stays grey and RGB stays RGB, as long as the pixels are") {
    struct Case {
        Picture picture;
        bool wasGrey, hadAlpha, isGrey, hasAlpha;
    };
    const Picture grey = Plain(5, 3, {40, 40, 40, 255});
    const Picture faint = Plain(5, 3, {40, 40, 40, 100});
    const Case cases[] = {{grey, true, false, true, false},          {Counted(5, 3), true, false, false, false},
                          {grey, false, false, false, false},        {faint, true, false, true, true},
                          {Counted(5, 3), false, true, false, true}, {grey, true, true, true, true}};
    for (const Case& each : cases) {
        CAPTURE(&each - cases);
        WriteOptions options;
        options.followsInfo = true;
        options.info.isGrey = each.wasGrey;
        options.info.hasAlpha = each.hadAlpha;
        const PictureFile read = WrittenAndRead(each.picture, PictureFormat::Png, options);
        CHECK_EQ(read.info.isGrey, each.isGrey);
        CHECK_EQ(read.info.hasAlpha, each.hasAlpha);
        CHECK(std::get<Picture>(read.picture) == each.picture);
        Picture16 words(5, 3);
        std::ranges::transform(each.picture.rgba, words.rgba.begin(),
                               [](std::uint8_t byte) { return static_cast<std::uint16_t>(byte * 257); });
        const PictureFile wide = WrittenAndRead(words, PictureFormat::Png, options);
        CHECK_EQ(wide.info.isGrey, each.isGrey);
        CHECK_EQ(wide.info.hasAlpha, each.hasAlpha);
        CHECK(std::get<Picture16>(wide.picture) == words);
    }
}

TEST_CASE("a JPEG keeps one colour to four pixels where it is told so, and a lower quality is a shorter file") {
    const auto size = [](const WriteOptions& options) {
        return EncodePictureFile(Counted(99, 99), RowOf(PictureFormat::Jpeg), options).size();
    };
    WriteOptions options;
    CHECK_FALSE(WrittenAndRead(Counted(99, 99), PictureFormat::Jpeg, options).info.halvesColour);
    const std::size_t usual = size(options);
    options.halvesColour = true;
    CHECK(WrittenAndRead(Counted(99, 99), PictureFormat::Jpeg, options).info.halvesColour);
    options.quality = 20;
    CHECK_LT(size(options), usual);
}

TEST_CASE("a JPEG with an end marker in its middle is refused as half of one is") {
    Picture picture(200, 200);
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) picture.rgba[i] = static_cast<std::uint8_t>(i * i / 7);
    const Bytes whole = EncodePictureFile(picture, RowOf(PictureFormat::Jpeg), {});
    Bytes half(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
    half.insert(half.end(), {0xFF, 0xD9});
    CHECK_NE(Thrown([&] { (void)ThroughFile(half); }).find(": JPEG: Corrupt JPEG data: premature end"),
             std::string::npos);
    Bytes middle = whole;
    middle[whole.size() / 2] = 0xFF;
    middle[whole.size() / 2 + 1] = 0xD9;
    CHECK_NE(Thrown([&] { (void)ThroughFile(middle); }).find(": JPEG: Corrupt JPEG data: premature end"),
             std::string::npos);
}

// The frame header of a JPEG: FF C0, length, 8 bits, height, width, the number of components. Four are CMYK.
TEST_CASE("a CMYK JPEG is refused by that word") {
    const Bytes cmyk = {0xFF, 0xD8, 0xFF, 0xC0, 0,    20,   8, 0,  8, 0, 8, 4, 1, 0x11, 0, 2, 0x11, 0, 3,  0x11,
                        0,    4,    0x11, 0,    0xFF, 0xDA, 0, 14, 4, 1, 0, 2, 0, 3,    0, 4, 0,    0, 63, 0};
    const std::string reason = Thrown([&] { (void)ThroughFile(cmyk); });
    CHECK_MESSAGE(reason.ends_with(": JPEG: CMYK is not read; convert the picture to RGB first"), reason);
}

// 200 of 255 over white: 40 * 200 / 255 + 255 * 55 / 255 = 31.37 + 55 = 86.37; over black 31.37.
TEST_CASE("a picture over a colour is opaque") {
    const AnyPicture white = OverColour(Plain(2, 2, {40, 0, 255, 200}), {255, 255, 255});
    CHECK(std::get<Picture>(white).At(1, 1) == std::array<std::uint8_t, 4>{86, 55, 255, 255});
    const AnyPicture black = OverColour(Plain(2, 2, {40, 0, 255, 200}), {0, 0, 0});
    CHECK(std::get<Picture>(black).At(1, 1) == std::array<std::uint8_t, 4>{31, 0, 200, 255});
    CHECK(ShowsThrough(Plain(2, 2, {1, 2, 3, 254})));
    CHECK_FALSE(ShowsThrough(white));
}

TEST_CASE("clear pixels may stay so where those that show through in part are laid on a colour") {
    Picture picture = Plain(2, 1, {40, 0, 255, 200});
    picture.Set(1, 0, {1, 2, 3, 0});
    CHECK(ShowsInPart(picture));
    const AnyPicture laid = OverColour(picture, {255, 255, 255}, ClearPixels::Kept);
    CHECK(std::get<Picture>(laid).At(0, 0) == std::array<std::uint8_t, 4>{86, 55, 255, 255});
    CHECK_EQ(std::get<Picture>(laid).At(1, 0)[3], 0);
    CHECK_FALSE(ShowsInPart(laid));
    CHECK(ShowsThrough(laid));
}

TEST_CASE("formats that lose nothing give the picture back, bytes and words, alpha where they have it") {
    for (const FormatRow& row : PictureFormats()) {
        if (!row.isExact) continue;
        CAPTURE(row.name);
        WriteOptions options;
        options.quality = 100;
        Picture picture = row.hasColour ? Counted(21, 13) : Plain(21, 13, {9, 9, 9, 255});
        if (row.hasAlpha) picture.Set(3, 4, {10, 20, 30, 40});
        CHECK(std::get<Picture>(WrittenAndRead(picture, row.format, options).picture) == picture);
        if (!row.hasWords) continue;
        Picture16 words(21, 13);
        for (std::size_t i = 0; i < words.rgba.size(); ++i)
            words.rgba[i] = i % 4 == 3 ? 65535 : static_cast<std::uint16_t>(row.hasColour ? i * 977 : 4711);
        if (row.hasAlpha) words.rgba[3] = 12345;
        CHECK(std::get<Picture16>(WrittenAndRead(words, row.format, options).picture) == words);
    }
}

TEST_CASE("a colour picture goes into no PGM, and words into no format of bytes") {
    const auto refusal = [](const AnyPicture& picture, PictureFormat format) {
        return Thrown([&] { (void)EncodePictureFile(picture, RowOf(format), {}); });
    };
    CHECK_EQ(refusal(Counted(4, 4), PictureFormat::Pgm), "a PGM is grey, and this picture is not; a .ppm has colors");
    CHECK_EQ(refusal(Picture16(4, 4), PictureFormat::Bmp),
             "a BMP has 8 bits a channel; 16 bits need a name in .png, .tif, .tiff, .ppm, .pnm or .pam");
}

// A header of 13 bytes, a palette of two colours, a picture of 2 x 1 pixels with the indices 0 and 1: minimum code size
// 2, then the codes clear (4), 0, 1, end (5) in 3 bits each, lowest first: 4 + 0*8 + 1*64 + 5*512 = 0x0A44.
TEST_CASE("a GIF is read") {
    const Bytes gif = {'G', 'I', 'F', '8', '9', 'a', 2, 0, 1, 0, 0x80, 0, 0, 255,  128,  0, 0,  0,
                       64,  ',', 0,   0,   0,   0,   2, 0, 1, 0, 0,    2, 2, 0x44, 0x0A, 0, ';'};
    const Picture picture = std::get<Picture>(ThroughFile(gif).picture);
    CHECK_EQ(picture.width, 2);
    CHECK(picture.At(0, 0) == std::array<std::uint8_t, 4>{255, 128, 0, 255});
    CHECK(picture.At(1, 0) == std::array<std::uint8_t, 4>{0, 0, 64, 255});
}

// Palette of four greys, 1 x 5 pixels at 1, 1 of a screen of 3 x 6, interlaced: clear, 0, 1, 2 in three bits each, and
// as the table has eight entries then, 3, 0 and the end (5) in four: 4 + 1*64 + 2*512 + 3*4096 + 5*2^20 = 0x503444.
// The rows come as 0, 4, 2, 1, 3.
TEST_CASE("an interlaced GIF that does not fill its screen has its rows in their places, and is clear around them") {
    const Bytes gif = {'G', 'I', 'F', '8', '9', 'a', 3, 0, 6, 0, 0x81, 0, 0, 10,   10, 10, 20,   20,   20,   30, 30,
                       30,  40,  40,  40,  ',', 1,   0, 1, 0, 1, 0,    5, 0, 0x40, 2,  3,  0x44, 0x34, 0x50, 0,  ';'};
    const PictureFile file = ThroughFile(gif);
    const Picture& picture = std::get<Picture>(file.picture);
    REQUIRE_EQ(picture.height, 6);
    CHECK(file.info.hasAlpha);
    CHECK_EQ(picture.At(0, 2)[3], 0);
    CHECK_EQ(picture.At(1, 0)[3], 0);
    std::string greys;
    for (std::int32_t y = 1; y < 6; ++y) greys += std::to_string(picture.At(1, y)[0]) + " ";
    CHECK_EQ(greys, "10 40 30 10 20 ");
}

// A screen of 16384 x 16384 would take a GiB.
TEST_CASE("a GIF that cannot hold its pixels is refused before there is memory for them") {
    Bytes gif = EncodePictureFile(Picture(8, 8), RowOf(PictureFormat::Gif), {});
    const auto place = [&gif](std::size_t at, std::uint32_t side) {
        gif[at] = static_cast<std::uint8_t>(side);
        gif[at + 1] = static_cast<std::uint8_t>(side >> 8U);
    };
    place(6, 16384);
    place(8, 16384);
    const std::array<std::uint8_t, 9> ofPicture{',', 0, 0, 0, 0, 8, 0, 8, 0};
    const auto found = std::search(gif.begin(), gif.end(), ofPicture.begin(), ofPicture.end());
    REQUIRE(found != gif.end());
    const auto at = static_cast<std::size_t>(found - gif.begin());
    place(at + 5, 16384);
    place(at + 7, 16384);
    CHECK_EQ(Thrown([&] { (void)DecodePictureFile(gif, Depths::Any); }), "GIF: ends too early, or is damaged");
    gif.resize(at);
    gif.push_back(';');
    CHECK_EQ(Thrown([&] { (void)DecodePictureFile(gif, Depths::Any); }), "GIF: has no picture");
}

TEST_CASE("a GIF keeps up to 256 colours, of which one is clear, and takes near ones for more") {
    Picture few = Counted(17, 15);  // 255 colours
    few.Set(0, 0, {200, 200, 200, 0});
    few.Set(1, 0, {200, 200, 200, 127});
    Picture kept = std::get<Picture>(WrittenAndRead(few, PictureFormat::Gif, {}).picture);
    CHECK_EQ(kept.At(0, 0)[3], 0);
    CHECK_EQ(kept.At(1, 0)[3], 0);
    for (const std::int32_t x : {0, 1}) kept.Set(x, 0, few.At(x, 0));
    CHECK(kept == few);

    const Picture many = Counted(60, 50);  // 3000 colours, so 12 share one on average: 4 columns by 3 rows
    const Picture near = std::get<Picture>(WrittenAndRead(many, PictureFormat::Gif, {}).picture);
    int furthest = 0;
    for (std::size_t i = 0; i < many.rgba.size(); ++i)
        furthest = std::max(furthest, std::abs(many.rgba[i] - near.rgba[i]));
    CHECK_LE(furthest, 8);  // the library tells colours apart by their highest five bits
    const Picture one = Plain(3, 3, {1, 2, 3, 255});
    CHECK(std::get<Picture>(WrittenAndRead(one, PictureFormat::Gif, {}).picture) == one);
    const Picture none = Plain(3, 3, {0, 0, 0, 0});
    CHECK_EQ(std::get<Picture>(WrittenAndRead(none, PictureFormat::Gif, {}).picture).At(2, 2)[3], 0);
}

TEST_CASE("AVIF and HEIC stay near at a lower quality, and hand on what the file says") {
    for (const PictureFormat format : {PictureFormat::Avif, PictureFormat::Heic}) {
        CAPTURE(RowOf(format).name);
        WriteOptions options;
        options.quality = 90;
        options.info.profile = Profile("RGB ");
        options.info.exif = Exif(1, false);
        options.info.xmp = {'<', 'x', '/', '>'};
        Picture picture = Counted(64, 48);
        picture.Set(20, 20, {20, 20, 7, 100});
        const PictureFile read = WrittenAndRead(picture, format, options);
        CHECK(read.info.hasAlpha);
        CHECK(read.info.profile == options.info.profile);
        CHECK(read.info.exif == options.info.exif);
        CHECK(read.info.xmp == options.info.xmp);
        const auto& near = std::get<Picture>(read.picture);
        REQUIRE_EQ(near.rgba.size(), picture.rgba.size());
        for (const std::int32_t x : {5, 40, 60}) CHECK_LE(std::abs(near.At(x, 30)[0] - x), 8);
    }
}

TEST_CASE("half a picture of the other formats is refused, and none brings the program down") {
    for (const FormatRow& row : PictureFormats()) {
        CAPTURE(row.name);
        Picture picture = row.hasColour ? Counted(40, 40) : Plain(40, 40, {9, 9, 9, 255});
        const Bytes whole = EncodePictureFile(picture, RowOf(row.format), {});
        const std::size_t needed = whole.size() - (row.format == PictureFormat::Png ? 12 : 0);  // the end's own chunk
        for (std::size_t size = 0; size < needed; size += 1 + whole.size() / 40) {
            const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            const std::string reason = Thrown([&] { (void)ThroughFile(part); });
            CHECK_MESSAGE(reason != "nothing", size << " of " << whole.size() << " bytes");
        }
    }
}

}  // namespace picture_io
