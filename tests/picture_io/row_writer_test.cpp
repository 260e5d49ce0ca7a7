#include "picture_io/row_writer.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <vector>

#include "picture_io/decoded.h"
#include "picture_io/row_reader.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Colours without a pattern that packs well.
template <typename Word>
BasicPicture<Word> Mixed(std::int32_t width, std::int32_t height) {
    BasicPicture<Word> picture(width, height);
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) {
        state = state * 1664525U + 1013904223U;
        picture.rgba[i] = i % 4 == 3 ? static_cast<Word>(~Word{0}) : static_cast<Word>((state >> 27U) + i / 400);
    }
    return picture;
}

template <typename Word>
BasicPicture<Word> Rows(const BasicPicture<Word>& picture, std::int32_t first, std::int32_t count) {
    BasicPicture<Word> rows(picture.width, count);
    const auto rowWords = static_cast<std::ptrdiff_t>(picture.width) * 4;
    std::copy_n(picture.rgba.begin() + first * rowWords, count * rowWords, rows.rgba.begin());
    return rows;
}

WriteOptions Following(bool isGrey) {
    WriteOptions options;
    options.followsInfo = true;
    options.info.isGrey = isGrey;
    return options;
}

}  // namespace

// 900 pixels of 4 bytes, 2 words wide, make bands of 72 rows of half a mebibyte; 700 rows are ten of them.
TEST_CASE("a PNG of many bands comes back whole, however its rows are handed over and packed") {
    const auto check = [](const auto& picture) {
        for (const int compression : {0, 1, 4, 9}) {
            CAPTURE(compression);
            PngWriter atOnce({picture.width, picture.height, Channels::RGBA, sizeof(picture.rgba[0]) == 2}, {},
                             compression);
            atOnce.Write(picture);
            const Bytes whole = atOnce.Finish();
            CHECK(DecodePictureFile(whole, Depths::Any).picture == AnyPicture(picture));
            PngWriter rowByRow({picture.width, picture.height, Channels::RGBA, sizeof(picture.rgba[0]) == 2}, {},
                               compression);
            for (std::int32_t y = 0; y < picture.height; ++y) rowByRow.Write(Rows(picture, y, 1));
            CHECK(rowByRow.Finish() == whole);
        }
    };
    check(Mixed<std::uint8_t>(900, 700));
    check(Mixed<std::uint16_t>(900, 350));
    check(Mixed<std::uint8_t>(1, 1));
    check(Mixed<std::uint8_t>(16384, 9));  // a row after the other
}

TEST_CASE("a picture written by rows has the bytes of one written at once") {
    for (const FormatRow& format : PictureFormats()) {
        CAPTURE(format.name);
        Picture picture = Mixed<std::uint8_t>(60, 50);
        if (!format.hasColour)
            for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
                picture.rgba[i + 1] = picture.rgba[i + 2] = picture.rgba[i];
        const WriteOptions options = Following(false);
        RowWriter writer(format, 60, 50, options, RowWriter::FirstGuess(format, options));
        for (std::int32_t y = 0; y < 50; y += 10) REQUIRE(writer.Write(Rows(picture, y, 10)));
        CHECK(writer.Finish() == EncodePictureFile(picture, format, options));
    }
}

TEST_CASE("a row that needs more channels than the file was begun with has it begun anew with them") {
    const FormatRow& png = RowOf(PictureFormat::Png);
    const WriteOptions options = Following(true);
    Picture grey(8, 6);
    std::ranges::fill(grey.rgba, std::uint8_t{255});
    Picture last = grey;
    last.Set(3, 5, {1, 2, 3, 255});
    Picture clear = grey;
    clear.Set(3, 5, {9, 9, 9, 0});
    struct Case {
        const Picture& picture;
        bool isGrey, isOpaque;
    };
    for (const Case& each : {Case{last, false, true}, Case{clear, true, false}}) {
        RowWriter bold(png, 8, 6, options, RowWriter::FirstGuess(png, options));
        CHECK(bold.Write(Rows(each.picture, 0, 5)));
        CHECK_FALSE(bold.Write(Rows(each.picture, 5, 1)));
        CHECK_EQ(bold.WidenedGuess().isGrey, each.isGrey);
        CHECK_EQ(bold.WidenedGuess().isOpaque, each.isOpaque);
        RowWriter again(png, 8, 6, options, bold.WidenedGuess());
        REQUIRE(again.Write(each.picture));
        CHECK(again.Finish() == EncodePictureFile(each.picture, png, options));
    }
}

TEST_CASE("a picture read by rows is the picture, and tells what its file says") {
    const Picture picture = Mixed<std::uint8_t>(50, 45);
    WriteOptions options;
    options.info.comments = {"a comment"};
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Jpeg, PictureFormat::Tiff}) {
        const Bytes bytes = EncodePictureFile(picture, RowOf(format), options);
        const PictureFile whole = DecodePictureFile(bytes, Depths::Any);
        RowReader reader(bytes, Depths::Any, "picture");
        CHECK_EQ(reader.Height(), 45);
        CHECK(reader.Info().comments == whole.info.comments);
        Picture read(50, 45);
        for (std::int32_t y = 0; y < 45; y += 20) {
            const auto rows = std::get<Picture>(reader.Read(20));
            CHECK_EQ(rows.height, y == 40 ? 5 : 20);
            std::ranges::copy(rows.rgba, read.rgba.begin() + 50 * 4 * y);
        }
        CHECK(AnyPicture(read) == whole.picture);
    }
}

}  // namespace picture_io
