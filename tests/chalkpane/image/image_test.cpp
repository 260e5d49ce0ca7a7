#include "chalkpane/image/image.h"

#include <doctest/doctest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

constexpr PixelType colour = PixelType::Colour;
constexpr PixelType mask = PixelType::Mask;
constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
constexpr auto highest = std::numeric_limits<std::int32_t>::max();

void SetPixel8(Image& image, std::int32_t x, std::int32_t y, const Pixel8& pixel) {
    *reinterpret_cast<Pixel8*>(image.Address(x, y)) = pixel;
}
void SetPixel14(Image& image, std::int32_t x, std::int32_t y, const Pixel14& pixel) {
    *reinterpret_cast<Pixel14*>(image.Address(x, y)) = pixel;
}

// Both depths, mask and colour.
struct Kind {
    PixelType type;
    Depth depth;
};
constexpr Kind kinds[] = {
    {colour, Depth::Eight}, {colour, Depth::Fourteen}, {mask, Depth::Eight}, {mask, Depth::Fourteen}};

}  // namespace

TEST_CASE("Bytes of a pixel and a row follow from type, depth and width") {
    const auto bytes = [](std::int32_t width, std::int32_t type, std::int32_t depth) {
        const ImageDefinition definition(Rect(0, 0, width - 1, 2), type, depth, 0);
        return std::vector<std::int32_t>{definition.pixelBytes, definition.rowBytes};
    };
    CHECK_EQ(bytes(1, 2, 0), std::vector<std::int32_t>{1, 4});
    CHECK_EQ(bytes(4, 2, 0), std::vector<std::int32_t>{1, 4});
    CHECK_EQ(bytes(5, 2, 0), std::vector<std::int32_t>{1, 8});
    CHECK_EQ(bytes(1, 2, 1), std::vector<std::int32_t>{2, 4});
    CHECK_EQ(bytes(3, 2, 7), std::vector<std::int32_t>{2, 8});
    CHECK_EQ(bytes(3, 1, 0), std::vector<std::int32_t>{4, 12});
    CHECK_EQ(bytes(3, 0, 0), std::vector<std::int32_t>{4, 12});  // any type but 2 has four channels
    CHECK_EQ(bytes(3, 99, -1), std::vector<std::int32_t>{8, 24});
}

TEST_CASE(
    "The destructor is the one virtual operation: an image is a definition, a pointer to the table and two more") {
    CHECK(std::has_virtual_destructor_v<Image>);
    CHECK_FALSE(std::is_polymorphic_v<ImageDefinition>);
}

TEST_CASE("A new image is zero and keeps what it was given") {
    for (const Kind kind : kinds)
        for (const bool bitmap : {false, true}) {
            const Image image(Rect(-3, 5, 3, 8), static_cast<std::int32_t>(kind.type),
                              static_cast<std::int32_t>(kind.depth), 1, bitmap);
            CHECK(image.Bounds() == Rect(-3, 5, 3, 8));
            CHECK_EQ(image.flag, 1);
            CHECK_EQ(image.buffer->references, 1);
            for (const int value : reference::Picture(image).values) CHECK_EQ(value, 0);
        }
    CHECK(Image(4, 3, colour, Depth::Eight, AlphaForm::Straight).Bounds() == Rect(0, 0, 3, 2));
}

TEST_CASE("The top row y1 lies first in memory") {
    const Image image(Rect(10, 20, 14, 22), colour, Depth::Eight, AlphaForm::Straight);
    CHECK_EQ(image.Address(10, 22), image.buffer->pixels);
    CHECK_EQ(image.Address(11, 22) - image.Address(10, 22), 4);
    CHECK_EQ(image.Address(10, 21) - image.Address(10, 22), 20);
    CHECK_EQ(image.Row8(20).size(), 20u);
    CHECK_EQ(static_cast<void*>(image.Row8(20).data()), image.buffer->pixels + 40);
    const Image deepMask(Rect(10, 20, 14, 22), mask, Depth::Fourteen, AlphaForm::Straight);
    CHECK_EQ(deepMask.Row14(20).size(), 5u);
}

TEST_CASE("What cannot have pixels is an image of the empty rectangle") {
    CHECK(Image(0, 5, colour, Depth::Eight, AlphaForm::Straight).Bounds() == Rect());
    CHECK(Image(-7, 5, colour, Depth::Eight, AlphaForm::Straight).Bounds() == Rect());
    CHECK(Image(lowest, lowest, colour, Depth::Eight, AlphaForm::Straight).Bounds() == Rect());
    CHECK(Image(Rect(3, 3, 2, 9), mask, Depth::Eight, AlphaForm::Straight).Bounds() == Rect());
    CHECK(Image(Rect(lowest, 0, highest, 0), colour, Depth::Fourteen, AlphaForm::Straight).Bounds() == Rect());
    const Image none(0, 0, mask, Depth::Eight, AlphaForm::Straight);
    CHECK_EQ(none.ByteSize(), 0u);
    CHECK(none.GetPixel8(0, 0) == Pixel8());
    for (const int edgeMode : {0, 1, 2, 4}) CHECK_EQ(none.GetMaskEdge8(0, 0, edgeMode), 0);
    CHECK(none.Clone()->Bounds() == Rect());
    CHECK_EQ(none.Convert(Rect(), Depth::Eight), nullptr);
}

TEST_CASE("An image beyond all memory throws and leaves nothing behind") {
    const std::int32_t living = Image::LivingImages();
    CHECK_THROWS_AS(Image(highest / 4, highest, colour, Depth::Eight, AlphaForm::Straight), std::bad_alloc);
    CHECK_EQ(Image::LivingImages(), living);
}

TEST_CASE("Sharing images see each other's pixels, and the buffer stays until the last one goes") {
    const std::int32_t living = Image::LivingImages();
    auto first = std::make_unique<Image>(2, 2, colour, Depth::Eight, AlphaForm::Straight);
    auto second = std::make_unique<Image>(*first);
    CHECK_EQ(Image::LivingImages(), living + 2);
    CHECK_EQ(first->buffer->references, 2);
    SetPixel8(*first, 1, 1, {1, 2, 3, 4});
    CHECK(second->GetPixel8(1, 1) == Pixel8{1, 2, 3, 4});
    first.reset();
    CHECK_EQ(second->buffer->references, 1);
    CHECK(second->GetPixel8(1, 1) == Pixel8{1, 2, 3, 4});
    second.reset();
    CHECK_EQ(Image::LivingImages(), living);
}

TEST_CASE("Assigning shares the other's buffer and lets go of the own one") {
    Image first(2, 2, colour, Depth::Eight, AlphaForm::Straight);
    Image second(5, 5, mask, Depth::Fourteen, AlphaForm::Premultiplied);
    second = first;
    CHECK_EQ(second.buffer, first.buffer);
    CHECK_EQ(first.buffer->references, 2);
    CHECK_EQ(second.GetPixelType(), colour);
    const Image& same = second;
    second = same;
    CHECK_EQ(first.buffer->references, 2);
}

TEST_CASE("A clone has pixels of its own") {
    for (const Kind kind : kinds) {
        Image image(Rect(-2, -1, 4, 3), kind.type, kind.depth, AlphaForm::Premultiplied);
        reference::FillWithNoise(image, 3);
        const auto clone = image.Clone();
        CHECK_NE(clone->buffer, image.buffer);
        CHECK_EQ(clone->flag, 1);
        CHECK(reference::Same(reference::Picture(*clone), reference::Picture(image)));
        const auto cut = image.Convert(Rect(0, 0, 2, 2), kind.depth);
        CHECK(reference::Same(reference::Picture(*cut->Clone()), reference::Picture(*cut)));
    }
}

TEST_CASE("Conversion at the same depth shares the pixels of the part cut out") {
    for (const Kind kind : kinds) {
        Image image(Rect(0, 0, 9, 9), kind.type, kind.depth, AlphaForm::Premultiplied);
        reference::FillWithNoise(image, 4);
        const auto cut = image.Convert(Rect(-5, 3, 4, 6), kind.depth);
        REQUIRE(cut);
        CHECK(cut->Bounds() == Rect(0, 3, 4, 6));
        CHECK_EQ(cut->buffer, image.buffer);
        CHECK_EQ(image.buffer->references, 2);
        CHECK_EQ(cut->rowBytes, image.rowBytes);
        CHECK_EQ(cut->flag, 1);
        CHECK_EQ(cut->Address(2, 5), image.Address(2, 5));
    }
}

TEST_CASE("An invalid rectangle converts the whole image, one that misses it gives null") {
    const Image image(Rect(0, 0, 9, 9), colour, Depth::Eight, AlphaForm::Straight);
    CHECK(image.Convert(Rect(), Depth::Eight)->Bounds() == image.Bounds());
    CHECK(image.Convert(Rect(), Depth::Fourteen)->Bounds() == image.Bounds());
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        CHECK_EQ(image.Convert(Rect(10, 0, 12, 5), depth), nullptr);
        CHECK_EQ(image.Convert(Rect(3, 3, 2, 5), depth), nullptr);  // valid, though reversed on x
    }
}

// 200 * 64 + (200 >> 2) = 12850; 16383 >> 6 = 255, 12850 >> 6 = 200.
TEST_CASE("Conversion to another depth widens and narrows each channel") {
    Image image(Rect(-1, -1, 2, 1), colour, Depth::Eight, AlphaForm::Premultiplied);
    SetPixel8(image, 0, 1, {0, 200, 255, 3});
    const auto deep = image.Convert(Rect(0, 0, 9, 9), Depth::Fourteen);
    CHECK(deep->Bounds() == Rect(0, 0, 2, 1));
    CHECK_EQ(deep->depth, 1);
    CHECK_EQ(deep->flag, 1);
    CHECK(deep->GetPixel14(0, 1) == Pixel14{0, 12850, 16383, 192});
    const auto back = deep->Convert(Rect(), Depth::Eight);
    CHECK(back->GetPixel8(0, 1) == Pixel8{0, 200, 255, 3});
    Image deepMask(3, 1, mask, Depth::Fourteen, AlphaForm::Straight);
    deepMask.Row14(0)[2] = 16319;  // 254.98 * 64
    CHECK_EQ(deepMask.Convert(Rect(), Depth::Eight)->Row8(0)[2], 254);
}

TEST_CASE("Widening and narrowing keep every 8-bit value") {
    for (int value = 0; value < 256; ++value) CHECK_EQ(Narrow(Widen(static_cast<std::uint8_t>(value))), value);
}

TEST_CASE("Pixels outside the image are zero") {
    Image image(Rect(5, 5, 6, 6), colour, Depth::Eight, AlphaForm::Straight);
    reference::FillWithNoise(image, 1);
    for (const auto& [x, y] : {std::pair{4, 5}, {7, 5}, {5, 4}, {5, 7}, {lowest, highest}, {highest, lowest}})
        CHECK(image.GetPixel8(x, y) == Pixel8());
    Image deep(Rect(5, 5, 6, 6), colour, Depth::Fourteen, AlphaForm::Straight);
    SetPixel14(deep, 6, 6, {1, 2, 3, 4});
    CHECK(deep.GetPixel14(6, 6) == Pixel14{1, 2, 3, 4});
    CHECK(deep.GetPixel14(6, 7) == Pixel14());
}

// Columns 3, 4, 5, 6 of values 10, 11, 12, 13.
TEST_CASE("Edge modes bring a position inside") {
    Image image(Rect(3, 0, 6, 0), mask, Depth::Eight, AlphaForm::Straight);
    for (int i = 0; i < 4; ++i) image.Row8(0)[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(10 + i);
    const auto read = [&](std::int32_t edgeMode, std::int32_t from) {
        std::vector<int> values;
        for (std::int32_t x = from; x < from + 8; ++x) values.push_back(image.GetMaskEdge8(x, 0, edgeMode));
        return values;
    };
    CHECK_EQ(read(edgeTransparent, 1), std::vector{0, 0, 10, 11, 12, 13, 0, 0});
    CHECK_EQ(read(edgeClamp, 1), std::vector{10, 10, 10, 11, 12, 13, 13, 13});
    CHECK_EQ(read(edgeReflect, 0), std::vector{13, 12, 11, 10, 11, 12, 13, 12});
    // Period 6: -3 is 3, 9 is 3, 0 and 6 are 6.
    CHECK_EQ(read(edgeReflect, -3), std::vector{10, 11, 12, 13, 12, 11, 10, 11});
    CHECK_EQ(read(edgeReflect, 5), std::vector{12, 13, 12, 11, 10, 11, 12, 13});
    CHECK_EQ(read(edgeWrap, 1), std::vector{12, 13, 10, 11, 12, 13, 10, 11});
    CHECK_EQ(read(3, 1), read(edgeWrap, 1));  // any other mode wraps
    CHECK_EQ(read(-9, 1), read(edgeWrap, 1));
}

TEST_CASE("Edge modes agree with stepwise reflection and wrapping on both axes") {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 5}, {2, 1}, {2, 3}, {5, 4}}) {
        Image image(Rect(-2, 3, -3 + width, 2 + height), colour, Depth::Fourteen, AlphaForm::Straight);
        reference::FillWithNoise(image, 8);
        const reference::Picture reference(image);
        bool right = true;
        for (const int edgeMode : {0, 1, 2, 4})
            for (int y = -20; y < 30; ++y)
                for (int x = -20; x < 30; ++x) {
                    const Pixel14 pixel = image.GetPixelEdge14(x, y, edgeMode);
                    right = right && pixel.blue == reference.Edge(x, y, 0, edgeMode) &&
                            pixel.alpha == reference.Edge(x, y, 3, edgeMode);
                }
        CHECK(right);
    }
}

TEST_CASE("A single pixel reflects into itself") {
    Image image(1, 1, mask, Depth::Fourteen, AlphaForm::Straight);
    image.Row14(0)[0] = 777;
    CHECK_EQ(image.GetMaskEdge14(50, -50, edgeReflect), 777);
}

TEST_CASE("Positions at the ends of the 32-bit range are brought inside") {
    Image image(Rect(lowest, highest - 2, lowest + 2, highest), colour, Depth::Eight, AlphaForm::Straight);
    reference::FillWithNoise(image, 2);
    CHECK(image.GetPixelEdge8(highest, lowest, edgeClamp) == image.GetPixel8(lowest + 2, highest - 2));
    // The range of 2^32 columns is one more than a multiple of 3.
    CHECK(image.GetPixelEdge8(highest, highest, edgeWrap) == image.GetPixel8(lowest, highest));
    CHECK(image.GetPixelEdge8(highest, highest, edgeTransparent) == Pixel8());
    static_cast<void>(image.GetPixelEdge8(highest, lowest, edgeReflect));
}

TEST_CASE("Alpha is set at 8 bits and widened in a 14-bit image") {
    Image image(2, 1, colour, Depth::Eight, AlphaForm::Straight);
    image.SetAlpha8(1, 0, 200);
    CHECK(image.GetPixel8(1, 0) == Pixel8{0, 0, 0, 200});
    Image deep(2, 1, colour, Depth::Fourteen, AlphaForm::Straight);
    deep.SetAlpha8(1, 0, 200);
    CHECK(deep.GetPixel14(1, 0) == Pixel14{0, 0, 0, 12850});
    Image small(2, 1, mask, Depth::Eight, AlphaForm::Straight);
    small.SetAlpha8(1, 0, 9);
    CHECK_EQ(small.Row8(0)[1], 9);
    Image deepMask(2, 1, mask, Depth::Fourteen, AlphaForm::Straight);
    deepMask.SetAlpha8(1, 0, 255);
    CHECK_EQ(deepMask.Row14(0)[1], 16383);
}

TEST_CASE(
    "An image that is still to be written has the rectangle and format asked for, and rows with nothing between") {
    const Rect area(-3, 4, 1, 6);
    const auto deep = Image::Unwritten(area, Image::Colour(1, 1, Depth::Fourteen, AlphaForm::Premultiplied));
    CHECK(deep->Bounds() == area);
    CHECK(deep->HasFormatOf(Image::Colour(1, 1, Depth::Fourteen, AlphaForm::Straight)));
    CHECK(deep->IsPremultiplied());
    CHECK_EQ(deep->rowBytes, 40);
    // Five bytes a row are rounded up to eight, of which the last three are zero.
    const auto narrow = Image::Unwritten(area, Image::Mask(1, 1, Depth::Eight));
    CHECK_EQ(narrow->rowBytes, 8);
    for (int y = 4; y <= 6; ++y)
        for (int gap = 5; gap < 8; ++gap) CHECK_EQ(std::to_integer<int>(narrow->Address(-3, y)[gap]), 0);
    CHECK_EQ(Image::Unwritten(Rect(), Image::Mask(1, 1, Depth::Eight))->ByteSize(), 0);
}

// 0.5 * 255 + 0.5 = 128.0; 0.5 * 16383 + 0.5 = 8192.0.
TEST_CASE("Filling a channel rounds, and keeps inside the image") {
    Image image(Rect(0, 0, 3, 3), colour, Depth::Eight, AlphaForm::Straight);
    image.FillChannel(Rect(2, -5, 50, 1), 0.5);
    CHECK(image.GetPixel8(2, 0) == Pixel8{0, 0, 0, 128});
    CHECK(image.GetPixel8(3, 1) == Pixel8{0, 0, 0, 128});
    CHECK(image.GetPixel8(1, 0) == Pixel8());
    CHECK(image.GetPixel8(2, 2) == Pixel8());
    Image deepMask(2, 2, mask, Depth::Fourteen, AlphaForm::Straight);
    deepMask.FillChannel(0.5);
    for (const int value : reference::Picture(deepMask).values) CHECK_EQ(value, 8192);
    deepMask.FillChannel(Rect(), 1.0);
    CHECK_EQ(deepMask.Row14(0)[0], 8192);
    deepMask.FillChannel(1.0);
    CHECK_EQ(deepMask.Row14(0)[0], 16383);
}

TEST_CASE("Filling with what lies outside 0 to 1, or with NaN, stores an end") {
    Image image(1, 1, mask, Depth::Eight, AlphaForm::Straight);
    const auto filled = [&](double value) {
        image.FillChannel(value);
        return static_cast<int>(image.Row8(0)[0]);
    };
    CHECK_EQ(filled(1e300), 255);
    CHECK_EQ(filled(-1e300), 0);
    CHECK_EQ(filled(std::numeric_limits<double>::quiet_NaN()), 0);
    CHECK_EQ(filled(std::numeric_limits<double>::infinity()), 255);
}

TEST_CASE("Alpha goes into a mask, which is cleared first where it is not covered") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        Image image(Rect(0, 0, 3, 3), colour, depth, AlphaForm::Straight);
        reference::FillWithNoise(image, 6);
        reference::Picture reference(image);
        Image inside(Rect(1, 1, 2, 2), mask, depth, AlphaForm::Straight);
        image.CopyAlphaToMask(inside);
        CHECK_EQ(reference::Picture(inside).At(2, 1, 0), reference.At(2, 1, 3));
        Image beyond(Rect(2, 2, 5, 5), mask, depth, AlphaForm::Straight);
        beyond.FillChannel(1.0);
        image.CopyAlphaToMask(beyond);
        CHECK_EQ(reference::Picture(beyond).At(3, 2, 0), reference.At(3, 2, 3));
        CHECK_EQ(reference::Picture(beyond).At(4, 2, 0), 0);
        CHECK_EQ(reference::Picture(beyond).At(2, 5, 0), 0);
        Image apart(Rect(20, 20, 22, 22), mask, depth, AlphaForm::Straight);
        apart.FillChannel(1.0);
        image.CopyAlphaToMask(apart);
        for (const int value : reference::Picture(apart).values) CHECK_EQ(value, 0);
        Image otherDepth(Rect(0, 0, 3, 3), mask, depth == Depth::Eight ? Depth::Fourteen : Depth::Eight,
                         AlphaForm::Straight);
        image.CopyAlphaToMask(otherDepth);  // another format: nothing
        for (const int value : reference::Picture(otherDepth).values) CHECK_EQ(value, 0);
    }
}

TEST_CASE("Clearing a cut-out leaves the rest of the buffer") {
    Image image(Rect(0, 0, 3, 3), mask, Depth::Eight, AlphaForm::Straight);
    image.FillChannel(1.0);
    image.Convert(Rect(1, 1, 2, 2), Depth::Eight)->Clear();
    for (std::int32_t y = 0; y < 4; ++y)
        for (std::int32_t x = 0; x < 4; ++x)
            CHECK_EQ(image.GetMaskEdge8(x, y, 0), Rect(1, 1, 2, 2).Contains(x, y) ? 0 : 255);
}

// Alpha 128: factor 128 + 1 = 129, 200 * 129 >> 8 = 100 (25800 / 256 = 100.8).
// Alpha 8192: factor 8192 + 1, 10000 * 8193 >> 14 = 5000 (81930000 / 16384 = 5000.6).
TEST_CASE("Premultiplying shifts, and leaves what is opaque") {
    Image image(3, 1, colour, Depth::Eight, AlphaForm::Straight);
    SetPixel8(image, 0, 0, {200, 100, 255, 128});
    SetPixel8(image, 1, 0, {200, 100, 255, 255});
    SetPixel8(image, 2, 0, {200, 100, 255, 0});
    image.Premultiply(Rect(-4, -4, 9, 9));
    CHECK(image.GetPixel8(0, 0) == Pixel8{100, 50, 128, 128});
    CHECK(image.GetPixel8(1, 0) == Pixel8{200, 100, 255, 255});
    CHECK(image.GetPixel8(2, 0) == Pixel8{0, 0, 0, 0});
    Image deep(3, 1, colour, Depth::Fourteen, AlphaForm::Straight);
    SetPixel14(deep, 0, 0, {10000, 0, 16383, 8192});
    SetPixel14(deep, 1, 0, {10000, 0, 16383, 16383});
    SetPixel14(deep, 2, 0, {65535, 0, 16383, 65535});
    deep.Premultiply(deep);
    CHECK(deep.GetPixel14(0, 0) == Pixel14{5000, 0, 8192, 8192});  // 16383 * 8193 >> 14 = 8192.5
    CHECK(deep.GetPixel14(1, 0) == Pixel14{10000, 0, 16383, 16383});
    CHECK(deep.GetPixel14(2, 0) == Pixel14{65535, 0, 16383, 65535});
}

// 8 bits: 60 * 652 >> 8 = 152. 14 bits: 7 * 16383 / 14 = 8191.5, but the factor is the 32-bit float below: 8191.
// 14 bits: 7 * (16383 / 14) = 7 * 1170.2142857... = 8191.5, rounded 8192. (The factor in 32 bits is 1170.2142333984375,
// by which 7 becomes 8191.4996.) 15 * 1170.2 is beyond full scale. 4000 * (16383 / 8191) = 8000.49, rounded 8000.
TEST_CASE("Unpremultiplying leaves what has no alpha and what is opaque") {
    Image image(4, 1, colour, Depth::Eight, AlphaForm::Straight);
    SetPixel8(image, 0, 0, {60, 200, 0, 100});
    SetPixel8(image, 1, 0, {60, 200, 0, 0});
    SetPixel8(image, 2, 0, {60, 200, 0, 255});
    SetPixel8(image, 3, 0, {60, 200, 0, 100});
    image.Unpremultiply(Rect(0, 0, 2, 0));
    CHECK(image.GetPixel8(0, 0) == Pixel8{152, 255, 0, 100});
    CHECK(image.GetPixel8(1, 0) == Pixel8{60, 200, 0, 0});
    CHECK(image.GetPixel8(2, 0) == Pixel8{60, 200, 0, 255});
    CHECK(image.GetPixel8(3, 0) == Pixel8{60, 200, 0, 100});
    Image deep(3, 1, colour, Depth::Fourteen, AlphaForm::Straight);
    SetPixel14(deep, 0, 0, {7, 15, 0, 14});
    SetPixel14(deep, 1, 0, {7, 15, 0, 0});
    SetPixel14(deep, 2, 0, {4000, 12000, 0, 8191});
    deep.Unpremultiply(deep);
    CHECK(deep.GetPixel14(0, 0) == Pixel14{8192, 16383, 0, 14});
    CHECK(deep.GetPixel14(1, 0) == Pixel14{7, 15, 0, 0});
    CHECK(deep.GetPixel14(2, 0) == Pixel14{8000, 16383, 0, 8191});
}

TEST_CASE("A mask has no colour to premultiply") {
    Image image(4, 4, mask, Depth::Eight, AlphaForm::Straight);
    reference::FillWithNoise(image, 6);
    const reference::Picture before(image);
    image.Premultiply(image);
    image.Unpremultiply(image);
    CHECK(reference::Same(reference::Picture(image), before));
}

TEST_CASE("Copying takes the overlap of both images and the region, with one worker and with many") {
    for (const std::int32_t workers : {1, 3}) {
        MultiProcessor::Restart(workers);
        for (const Kind kind : kinds) {
            Image source(Rect(-5, -5, 300, 400), kind.type, kind.depth, AlphaForm::Straight);
            reference::FillWithNoise(source, 11);
            Image target(Rect(0, 0, 500, 380), kind.type, kind.depth, AlphaForm::Straight);
            reference::FillWithNoise(target, 12);
            reference::Picture from(source);
            reference::Picture wanted(target);
            for (int y = 10; y <= 380; ++y)
                for (int x = 0; x <= 250; ++x)
                    for (int c = 0; c < wanted.channels; ++c) wanted.At(x, y, c) = from.At(x, y, c);
            target.CopyRegion(source, Rect(-100, 10, 250, 1000));
            CHECK(reference::Same(reference::Picture(target), wanted));
            target.CopyRegion(source, Rect());
            target.CopyRegion(source, Rect(1000, 0, 2000, 5));
            CHECK(reference::Same(reference::Picture(target), wanted));
        }
    }
    MultiProcessor::Restart(0);
}

TEST_CASE("The second form of copying clears the target first") {
    Image source(Rect(0, 0, 9, 9), mask, Depth::Eight, AlphaForm::Straight);
    source.FillChannel(1.0);
    Image target(Rect(5, 5, 14, 14), mask, Depth::Eight, AlphaForm::Straight);
    target.FillChannel(0.5);
    target.ClearAndCopyRegion(source, Rect(0, 0, 7, 7));
    for (std::int32_t y = 5; y <= 14; ++y)
        for (std::int32_t x = 5; x <= 14; ++x) CHECK_EQ(target.GetMaskEdge8(x, y, 0), x <= 7 && y <= 7 ? 255 : 0);
}

TEST_CASE("Copying between formats changes nothing") {
    Image source(4, 4, colour, Depth::Eight, AlphaForm::Straight);
    source.FillChannel(1.0);
    for (const Kind kind : {Kind{colour, Depth::Fourteen}, Kind{mask, Depth::Eight}, Kind{mask, Depth::Fourteen}}) {
        Image target(4, 4, kind.type, kind.depth, AlphaForm::Straight);
        target.CopyRegion(source, Rect(0, 0, 3, 3));
        for (const int value : reference::Picture(target).values) CHECK_EQ(value, 0);
    }
}

TEST_CASE("An image can be moved in the plane and keeps its pixels") {
    Image image(Rect(0, 0, 3, 3), mask, Depth::Eight, AlphaForm::Straight);
    image.SetAlpha8(1, 2, 99);
    image.Translate(100, -50);
    CHECK_EQ(image.GetMaskEdge8(101, -48, 0), 99);
}
