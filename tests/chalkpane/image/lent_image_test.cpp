#include <doctest/doctest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "chalkpane/composite/paster.h"
#include "chalkpane/image/image.h"

using namespace chalkpane;

namespace {

constexpr std::uint8_t untouched = 0xAB;

// Three rows of two pixels with five bytes between the rows, in a block with a byte on either side, so that a write
// beyond a row shows.
struct Block {
    static constexpr std::int32_t height = 3;
    static constexpr std::size_t stride = 2 * 4 + 5;

    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(1 + stride * height + 1, untouched);

    [[nodiscard]] LentPixels Pixels() { return {bytes.data() + 1, stride}; }
    [[nodiscard]] Image Lend() {
        return Image::Lend(Pixels(), Rect(10, 20, 11, 22), PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied);
    }
    [[nodiscard]] std::uint8_t* Row(std::size_t row) { return bytes.data() + 1 + row * stride; }
    // The bytes that no pixel lies on.
    [[nodiscard]] bool GapsAreUntouched() const {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool isPixel = i > 0 && i + 1 < bytes.size() && (i - 1) % stride < 8;
            if (!isPixel && bytes[i] != untouched) return false;
        }
        return true;
    }
};

}  // namespace

TEST_CASE("Named images have the type, depth and flag that the numbers give") {
    const Image colour = Image::Colour(3, 2, Depth::Fourteen, AlphaForm::Premultiplied);
    CHECK_EQ(colour.Bounds(), Rect(0, 0, 2, 1));
    CHECK_EQ(colour.type, 1);
    CHECK_EQ(colour.depth, 1);
    CHECK_EQ(colour.flag, 1);
    CHECK_EQ(colour.pixelBytes, 8);
    CHECK(colour.GetDepth() == Depth::Fourteen);
    CHECK(colour.GetAlphaForm() == AlphaForm::Premultiplied);
    CHECK(colour.GetPixelType() == PixelType::Colour);

    const Image mask = Image::Mask(Rect(-1, -1, 1, 1), Depth::Eight);
    CHECK_EQ(mask.Bounds(), Rect(-1, -1, 1, 1));
    CHECK_EQ(mask.type, 2);
    CHECK_EQ(mask.depth, 0);
    CHECK_EQ(mask.flag, 0);
    CHECK(mask.GetDepth() == Depth::Eight);
    CHECK(mask.GetAlphaForm() == AlphaForm::Straight);
    CHECK(mask.GetPixelType() == PixelType::Mask);
}

TEST_CASE("An image of another's format has its numbers, and compares as of its format") {
    const Image model(Rect(0, 0, 1, 1), PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied);
    const Image same(Rect(5, 5, 7, 5), model);
    CHECK_EQ(same.Bounds(), Rect(5, 5, 7, 5));
    CHECK_EQ(same.type, 1);
    CHECK_EQ(same.depth, 1);
    CHECK_EQ(same.flag, 1);
    CHECK(same.HasFormatOf(model));
    CHECK_FALSE(model.HasFormatOf(Image(2, 2, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied)));
    CHECK_FALSE(model.HasFormatOf(Image(2, 2, PixelType::Mask, Depth::Fourteen, AlphaForm::Straight)));
    // The form of alpha is no matter of format: the channels and their bits are the same.
    CHECK(model.HasFormatOf(Image(2, 2, PixelType::Colour, Depth::Fourteen, AlphaForm::Straight)));
}

TEST_CASE("Declaring the alpha form changes no pixel") {
    Image image = Image::Colour(1, 1, Depth::Eight, AlphaForm::Straight);
    for (auto& channel : image.Row8(0)) channel = 100;
    image.DeclareAlphaForm(AlphaForm::Premultiplied);
    CHECK(image.IsPremultiplied());
    CHECK_EQ(image.GetPixel8(0, 0), Pixel8{100, 100, 100, 100});
}

TEST_CASE("Any stored depth but 0 reads as fourteen bits, and any stored type but 2 as colour") {
    const ImageDefinition odd(Rect(0, 0, 0, 0), 99, -1, 7);
    CHECK(odd.GetDepth() == Depth::Fourteen);
    CHECK(odd.GetPixelType() == PixelType::Colour);
    CHECK(odd.GetAlphaForm() == AlphaForm::Premultiplied);
}

TEST_CASE("The first row in memory is the top row of a lent image, and its order is blue, green, red, alpha") {
    Block block;
    std::copy_n(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8}.begin(), 8, block.Row(0));
    std::fill_n(block.Row(1), 8, std::uint8_t{9});
    std::fill_n(block.Row(2), 8, std::uint8_t{10});
    const Image image = block.Lend();
    CHECK(image.GetPixel8(10, 22) == Pixel8{1, 2, 3, 4});
    CHECK(image.GetPixel8(11, 22) == Pixel8{5, 6, 7, 8});
    CHECK(image.GetPixel8(10, 21) == Pixel8{9, 9, 9, 9});
    CHECK(image.GetPixel8(11, 20) == Pixel8{10, 10, 10, 10});
}

TEST_CASE("Operations write the rows of a lent image and nothing between them") {
    Block block;
    Image image = block.Lend();
    CHECK_EQ(image.rowBytes, std::int32_t{Block::stride});
    image.Clear();
    image.FillChannel(1.0);
    CHECK_EQ(block.Row(2)[3], 255);
    Image source = Image::Colour(Rect(11, 20, 30, 22), Depth::Eight, AlphaForm::Premultiplied);
    for (std::int32_t y = source.y0; y <= source.y1; ++y) std::ranges::fill(source.Row8(y), std::uint8_t{200});
    source.FillChannel(1.0);
    Paster().Paste(source, image, source.Bounds(), 0, nullptr, Clip::Limiting);
    CHECK(image.GetPixel8(11, 21) == Pixel8{200, 200, 200, 255});
    CHECK_EQ(block.Row(1)[4], 200);
    CHECK_EQ(block.Row(1)[0], 0);
    CHECK(block.GapsAreUntouched());
}

TEST_CASE("Words of a lent image are written in place too") {
    std::vector<std::uint16_t> words(2 * 12, 5);
    Image image = Image::Lend({words.data(), 12 * sizeof(std::uint16_t)}, Rect(0, 0, 1, 1), PixelType::Colour,
                              Depth::Fourteen, AlphaForm::Straight);
    image.FillChannel(1.0);
    CHECK_EQ(words[12 + 3], 16383);  // row 1 in memory is y = 0
    CHECK_EQ(words[8], 5);           // the third pixel of row 0 is none of the image's
    CHECK_EQ(image.GetPixel14(1, 0), Pixel14{5, 5, 5, 16383});
}

TEST_CASE("Lent pixels are never freed, however many images share them") {
    Block block;  // on a vector: freeing its pixels would end the test
    const std::int32_t before = Image::LivingImages();
    {
        auto image = std::make_unique<Image>(block.Lend());
        const Image copy = *image;
        image.reset();
        Image assigned = Image::Mask(1, 1, Depth::Eight);
        assigned = copy;
        assigned.Clear();
    }
    CHECK_EQ(Image::LivingImages(), before);
    CHECK_EQ(block.Row(0)[0], 0);
    CHECK(block.GapsAreUntouched());
}

TEST_CASE("Copies and parts of a lent image share its pixels; a clone and another depth do not") {
    Block block;
    const Image image = block.Lend();
    const auto clone = image.Clone();
    const auto deep = image.Convert(Rect(), Depth::Fourteen);
    CHECK_EQ(clone->rowBytes, 8);  // packed: the gaps are the caller's, not the picture's
    CHECK_EQ(deep->rowBytes, 16);
    const auto part = image.Convert(Rect(11, 21, 11, 21), Depth::Eight);
    CHECK_EQ(part->rowBytes, std::int32_t{Block::stride});
    part->Clear();
    CHECK(image.GetPixel8(11, 21) == Pixel8{});
    CHECK(image.GetPixel8(10, 21) == Pixel8{untouched, untouched, untouched, untouched});
    CHECK(clone->GetPixel8(11, 21) == Pixel8{untouched, untouched, untouched, untouched});
    constexpr std::uint16_t widened = untouched * 64 + (untouched >> 2);
    CHECK(deep->GetPixel14(11, 21) == Pixel14{widened, widened, widened, widened});
    CHECK_FALSE(clone->buffer->isLent);
    CHECK_FALSE(deep->buffer->isLent);
}

TEST_CASE("Pixels that cannot be lent give an image of the empty rectangle") {
    std::vector<std::uint16_t> words(64);
    const Rect rect(0, 0, 3, 1);
    const auto lent = [&](LentPixels pixels, Depth depth, const Rect& area) {
        return Image::Lend(pixels, area, PixelType::Colour, depth, AlphaForm::Straight).Bounds();
    };
    CHECK_EQ(lent({words.data(), 16}, Depth::Eight, rect), rect);
    CHECK_EQ(lent({words.data(), 32}, Depth::Fourteen, rect), rect);
    CHECK_EQ(lent({nullptr, 16}, Depth::Eight, rect), Rect());
    CHECK_EQ(lent({words.data(), 15}, Depth::Eight, rect), Rect());     // a byte short of a row
    CHECK_EQ(lent({words.data(), 31}, Depth::Fourteen, rect), Rect());  // short, and odd
    CHECK_EQ(lent({words.data(), 33}, Depth::Fourteen, rect), Rect());  // every other row at an odd address
    auto* const odd = reinterpret_cast<std::uint8_t*>(words.data()) + 1;
    CHECK_EQ(lent({odd, 32}, Depth::Fourteen, rect), Rect());
    CHECK_EQ(lent({odd, 17}, Depth::Eight, rect), rect);
    CHECK_EQ(lent({words.data(), std::size_t{1} << 31}, Depth::Eight, rect), Rect());
    CHECK_EQ(lent({words.data(), 16}, Depth::Eight, Rect()), Rect());
}
