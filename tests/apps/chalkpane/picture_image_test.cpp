#include "apps/chalkpane/filtering/picture_image.h"

#include <doctest/doctest.h>

#include "tests/apps/chalkpane/pictures.h"
#include "tests/cli/temporary_folder.h"

namespace chalkpane::app {
namespace {

using cli::testing::TemporaryFolder;
using picture_io::AnyPicture;
using picture_io::Picture;
using picture_io::Picture16;

AnyPicture OnePixel(const std::array<std::uint8_t, 4>& rgba) {
    Picture picture(1, 1);
    picture.Set(0, 0, rgba);
    return picture;
}

}  // namespace

TEST_CASE("Every 14-bit channel comes back from 16 bits, and full scale is full scale") {
    for (std::uint16_t channel = 0; channel <= 16383; ++channel) REQUIRE_EQ(ChannelOf16(WordOf14(channel)), channel);
    CHECK_EQ(WordOf14(0), 0);
    CHECK_EQ(WordOf14(16383), 65535);
    CHECK_EQ(WordOf14(8192), 32770);  // 8192 * 4, and its two highest bits, 10
}

TEST_CASE("Every 14-bit channel comes back from a file") {
    const TemporaryFolder folder;
    Image image = Image::Colour(64, 64, Depth::Fourteen, AlphaForm::Straight);
    std::uint16_t next = 0;
    for (std::int32_t y = 0; y < 64; ++y)
        for (auto& channel : image.Row14(y)) channel = next++;
    WriteImage(image, folder / "all.png");
    const auto read = ReadImage(folder / "all.png", {}, AlphaForm::Straight);
    CHECK(testing::Same(*read, image));
}

// 100 widens to 100 * 64 + 25 = 6425; the word 0x64FF is 25855, of which 14 bits are 6463 and 8 bits 100.
TEST_CASE("Depths are the engine's own conversions") {
    const auto bytes = OnePixel({100, 0, 255, 255});
    CHECK(ImageOf(bytes, {}, AlphaForm::Straight)->GetPixel8(0, 0) == Pixel8{255, 0, 100, 255});
    CHECK(ImageOf(bytes, Depth::Fourteen, AlphaForm::Straight)->GetPixel14(0, 0) == Pixel14{16383, 0, 6425, 16383});
    Picture16 words(1, 1);
    words.Set(0, 0, {0x64FF, 0, 65535, 65535});
    CHECK(ImageOf(words, {}, AlphaForm::Straight)->GetPixel14(0, 0) == Pixel14{16383, 0, 6463, 16383});
    CHECK(ImageOf(words, Depth::Eight, AlphaForm::Straight)->GetPixel8(0, 0) == Pixel8{255, 0, 100, 255});
}

TEST_CASE("A file's top row is the image's highest") {
    Picture picture(2, 3);
    picture.Set(1, 0, {1, 2, 3, 255});
    const auto image = ImageOf(picture, {}, AlphaForm::Straight);
    CHECK(image->Bounds() == Rect(0, 0, 1, 2));
    CHECK(image->GetPixel8(1, 2) == Pixel8{3, 2, 1, 255});
    CHECK(std::get<Picture>(PictureOf(*image)) == picture);
}

// 200 * 100 / 255 is 78.4 and 50 * 100 / 255 is 19.6; back, 78 * 255 / 100 is 198.9 and 20 * 255 / 100 is 51.
TEST_CASE("Alpha is multiplied in and divided out to the nearest") {
    const auto image = ImageOf(OnePixel({200, 50, 255, 100}), {}, AlphaForm::Premultiplied);
    CHECK_EQ(image->flag, 1);
    CHECK(image->GetPixel8(0, 0) == Pixel8{100, 20, 78, 100});
    CHECK(std::get<Picture>(PictureOf(*image)).At(0, 0) == std::array<std::uint8_t, 4>{199, 51, 255, 100});
    CHECK_EQ(image->flag, 1);  // telling changes nothing
}

// Premultiplied, a colour of any alpha is one of alpha + 1 steps: all of them survive being told and read again.
TEST_CASE("Premultiplied colours come back through straight ones at every alpha") {
    for (std::int32_t alpha = 1; alpha < 256; ++alpha) {
        Image image = Image::Colour(alpha + 1, 1, Depth::Eight, AlphaForm::Premultiplied);
        for (std::int32_t c = 0; c <= alpha; ++c) {
            const auto channel = static_cast<std::uint8_t>(c);
            testing::Put(image, c, 0, {channel, channel, channel, static_cast<std::uint8_t>(alpha)});
        }
        REQUIRE(testing::Same(*ImageOf(PictureOf(image), {}, AlphaForm::Premultiplied), image));
    }
}

TEST_CASE("No colour is left where alpha is 0, and none rises above full scale") {
    Image image = Image::Colour(2, 1, Depth::Eight, AlphaForm::Premultiplied);
    testing::Put(image, 0, 0, {9, 9, 9, 0});
    testing::Put(image, 1, 0, {200, 100, 50, 100});  // more blue than alpha allows
    SetAlphaForm(image, AlphaForm::Straight);
    CHECK(image.GetPixel8(0, 0) == Pixel8{0, 0, 0, 0});
    CHECK(image.GetPixel8(1, 0) == Pixel8{255, 255, 128, 100});
}

// Red is 77 * 255 / 256 = 76; half of white is 255 * 128 / 255.
TEST_CASE("A mask is as light as its picture, times its alpha, and full where that is white") {
    Picture picture(4, 1);
    picture.Set(0, 0, {255, 255, 255, 255});
    picture.Set(1, 0, {255, 0, 0, 255});
    picture.Set(2, 0, {255, 255, 255, 128});
    picture.Set(3, 0, {0, 0, 0, 255});
    const auto mask = MaskOf(picture, Depth::Eight);
    REQUIRE(mask->IsMask());
    const auto row = mask->Row8(0);
    CHECK_EQ(row[0], 255);
    CHECK_EQ(row[1], 76);
    CHECK_EQ(row[2], 128);
    CHECK_EQ(row[3], 0);
    CHECK_EQ(MaskOf(picture, Depth::Fourteen)->Row14(0)[0], 16383);
}

}  // namespace chalkpane::app
