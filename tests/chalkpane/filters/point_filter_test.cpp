#include "chalkpane/filters/point_filter.h"

#include <doctest/doctest.h>

#include <cmath>

#include "chalkpane/base/multi_processor.h"
#include "tests/chalkpane/filters/filter_pictures.h"
#include "tests/chalkpane/filters/test_filters.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

template <typename Channel>
void SetPixel(Image& image, std::int32_t x, std::int32_t y, std::initializer_list<int> channels) {
    auto* pixel = reinterpret_cast<Channel*>(image.Address(x, y));
    for (const int channel : channels) *pixel++ = static_cast<Channel>(channel);
}

// The one pixel of a picture through a probe: what the row saw, and what came out.
template <typename Channel>
struct OnePixel {
    OnePixel(Depth depth, AlphaForm form, std::initializer_list<int> channels) {
        Image image = Image::Colour(1, 1, depth, form);
        SetPixel<Channel>(image, 0, 0, channels);
        ProbeForTest probe;
        result = Applied(probe, image);
        seen = probe.calls.at(0).channels;
        const auto* pixel = reinterpret_cast<const Channel*>(result->Address(0, 0));
        left.assign(pixel, pixel + 4);
    }
    std::unique_ptr<Image> result;
    std::vector<int> seen;
    std::vector<int> left;
};
using Byte = OnePixel<std::uint8_t>;
using Word = OnePixel<std::uint16_t>;
using Channels = std::vector<int>;

}  // namespace

TEST_CASE("a region that misses the source gives a blank image of the source's bounds") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Image source = NoisePicture({3, 4, 12, 9}, PixelType::Colour, depth, AlphaForm::Premultiplied, 1);
        const Image blank = Image::Colour(source.Bounds(), depth, AlphaForm::Premultiplied);
        for (const Rect& region : {Rect(20, 20, 30, 30), Rect(8, 5, 4, 8), Rect()}) {
            ProbeForTest probe;
            const auto result = Applied(probe, source, &region);
            REQUIRE(result);
            CHECK(SamePixels(*result, blank));
            CHECK_EQ(probe.prepared, 0);
            CHECK(probe.calls.empty());
        }
    }
}

TEST_CASE("with a region the result is the region's part of the source") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen})
        for (const AlphaForm form : {AlphaForm::Straight, AlphaForm::Premultiplied}) {
            const Image source = NoisePicture({-3, -4, 22, 19}, PixelType::Colour, depth, form, 2);
            InvertForTest invert;
            const auto whole = Applied(invert, source);
            CHECK_EQ(whole->Bounds(), source.Bounds());
            const Rect region(5, 6, 90, 12);
            const auto part = Applied(invert, source, &region);
            REQUIRE_EQ(part->Bounds(), Rect(5, 6, 22, 12));
            CHECK(SamePixels(*part, *whole->Convert(region, depth)));
        }
}

TEST_CASE("a mask comes back equal to the source") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Image source = NoisePicture({0, 0, 9, 9}, PixelType::Mask, depth, AlphaForm::Straight, 3);
        InvertForTest invert;
        CHECK(SamePixels(*Applied(invert, source), source));
    }
}

TEST_CASE("the one channel of a mask goes to its own row operation, whatever the form") {
    Image source(Rect(4, 5, 6, 5), PixelType::Mask, Depth::Eight, AlphaForm::Premultiplied);
    source.Row8(5)[1] = 99;
    ProbeForTest probe;
    CHECK(SamePixels(*Applied(probe, source), source));
    REQUIRE_EQ(probe.calls.size(), 1);
    CHECK_EQ(probe.calls[0].channels, Channels{0, 99, 0});
    CHECK_EQ(probe.calls[0].firstX, 4);
    CHECK_EQ(probe.calls[0].lastX, 6);
    CHECK_EQ(probe.calls[0].y, 5);
}

// 65280 / 128 = 510, (100 * 510) >> 8 = 199; back by 128 + 1: (199 * 129) >> 8 = 100.
TEST_CASE("8-bit colour comes to the rows without its alpha and gets it back") {
    const Byte half(Depth::Eight, AlphaForm::Premultiplied, {100, 0, 128, 128});
    CHECK_EQ(half.seen, Channels{199, 0, 255, 128});
    CHECK_EQ(half.left, Channels{100, 0, 128, 128});
    CHECK_EQ(Byte(Depth::Eight, AlphaForm::Premultiplied, {10, 20, 30, 255}).seen, Channels{10, 20, 30, 255});
    // 65280 / 100 = 652, (200 * 652) >> 8 = 509, limited; (255 * 100) >> 8 = 99.
    const Byte above(Depth::Eight, AlphaForm::Premultiplied, {200, 0, 0, 100});
    CHECK_EQ(above.seen, Channels{255, 0, 0, 100});
    CHECK_EQ(above.left, Channels{99, 0, 0, 100});
}

TEST_CASE("a fully transparent premultiplied 8-bit pixel has no colour") {
    const Byte clear(Depth::Eight, AlphaForm::Premultiplied, {0, 7, 255, 0});
    CHECK_EQ(clear.seen, Channels{0, 0, 0, 0});
    CHECK_EQ(clear.left, Channels{0, 0, 0, 0});
}

// 16383 / 8192 = 1.99988, 1000 * 1.99988 + 0.5 = 2000.378; back by 8192 + 1: (2000 * 8193) >> 14 = 1000.
TEST_CASE("14-bit colour comes to the rows without its alpha and gets it back") {
    const Word half(Depth::Fourteen, AlphaForm::Premultiplied, {1000, 0, 16383, 8192});
    CHECK_EQ(half.seen, Channels{2000, 0, 16383, 8192});
    CHECK_EQ(half.left[0], 1000);
    CHECK_EQ(Word(Depth::Fourteen, AlphaForm::Premultiplied, {10, 20, 30, 16383}).seen, Channels{10, 20, 30, 16383});
    CHECK_EQ(Word(Depth::Fourteen, AlphaForm::Premultiplied, {10, 20, 30, 16383}).left, Channels{10, 20, 30, 16383});
}

// A word over an alpha of 0 is without bound, and so limited. No word is none.
TEST_CASE("a fully transparent premultiplied 14-bit pixel shows full colour to the rows and has none behind them") {
    const Word clear(Depth::Fourteen, AlphaForm::Premultiplied, {0, 7, 16383, 0});
    CHECK_EQ(clear.seen, Channels{0, 16383, 16383, 0});
    CHECK_EQ(clear.left, Channels{0, 0, 0, 0});
}

TEST_CASE("colour that is not premultiplied is left as it stands") {
    CHECK_EQ(Byte(Depth::Eight, AlphaForm::Straight, {100, 7, 255, 0}).seen, Channels{100, 7, 255, 0});
    CHECK_EQ(Byte(Depth::Eight, AlphaForm::Straight, {100, 7, 255, 0}).left, Channels{100, 7, 255, 0});
    CHECK_EQ(Word(Depth::Fourteen, AlphaForm::Straight, {100, 7, 16383, 3}).seen, Channels{100, 7, 16383, 3});
    CHECK_EQ(Word(Depth::Fourteen, AlphaForm::Straight, {100, 7, 16383, 3}).left, Channels{100, 7, 16383, 3});
}

TEST_CASE("words beyond full scale are survived") {
    CHECK_EQ(Word(Depth::Fourteen, AlphaForm::Premultiplied, {65535, 0, 9, 65535}).left, Channels{65535, 0, 9, 65535});
    CHECK_EQ(Word(Depth::Fourteen, AlphaForm::Premultiplied, {65535, 0, 0, 1}).seen, Channels{16383, 0, 0, 1});
}

// The row makes alpha half; its colour is premultiplied by that: (200 * (128 + 1)) >> 8 = 100.
TEST_CASE("colour is premultiplied by the alpha that the row leaves") {
    Image source = Image::Colour(1, 1, Depth::Eight, AlphaForm::Premultiplied);
    SetPixel<std::uint8_t>(source, 0, 0, {200, 0, 0, 255});
    ProbeForTest probe;
    probe.change = [](std::int32_t, std::int32_t, float& a, float&, float&, float&) { a = 128; };
    CHECK_EQ(Applied(probe, source)->GetPixel8(0, 0), Pixel8{100, 0, 0, 128});
}

TEST_CASE("pixels go to a pixel operation with their place, as floats in the scale of a byte") {
    Image source = Image::Colour(Rect(7, -2, 7, -2), Depth::Eight, AlphaForm::Straight);
    SetPixel<std::uint8_t>(source, 7, -2, {10, 20, 30, 40});
    ProbeForTest probe;
    probe.change = [](std::int32_t x, std::int32_t y, float& a, float& r, float& g, float& b) {
        CHECK_EQ(x, 7);
        CHECK_EQ(y, -2);
        CHECK_EQ(b, 10.0F);
        CHECK_EQ(g, 20.0F);
        CHECK_EQ(r, 30.0F);
        CHECK_EQ(a, 40.0F);
        b += 0.99F;
        g = -1000;
        r = 1000;
        a = std::nanf("");
    };
    CHECK_EQ(Applied(probe, source)->GetPixel8(7, -2), Pixel8{10, 0, 255, 0});
}

// 127.5 * 64.24706 = 8191.50: truncated. 255.1 and infinity are limited.
TEST_CASE("a pixel operation's 14-bit results are truncated and limited") {
    Image source = Image::Colour(1, 1, Depth::Fourteen, AlphaForm::Straight);
    ProbeForTest probe;
    probe.change = [](std::int32_t, std::int32_t, float& a, float& r, float& g, float& b) {
        b = 127.5F;
        g = 255.1F;
        r = std::numeric_limits<float>::infinity();
        a = -0.5F;
    };
    CHECK_EQ(Applied(probe, source)->GetPixel14(0, 0), Pixel14{8191, 16383, 16383, 0});
}

TEST_CASE("a pixel operation that changes nothing leaves every value of either depth") {
    Image words = Image::Colour(4096, 1, Depth::Fourteen, AlphaForm::Straight);
    std::uint16_t word = 0;
    for (auto& channel : words.Row14(0)) channel = word++;
    Image bytes = Image::Colour(64, 1, Depth::Eight, AlphaForm::Straight);
    std::uint8_t byte = 0;
    for (auto& channel : bytes.Row8(0)) channel = byte++;
    ProbeForTest probe;
    probe.change = [](std::int32_t, std::int32_t, float&, float&, float&, float&) {};
    CHECK(SamePixels(*Applied(probe, words), words));
    CHECK(SamePixels(*Applied(probe, bytes), bytes));
}

TEST_CASE("a row's span is cut to the row, and what lies outside it is copied") {
    for (const AlphaForm form : {AlphaForm::Straight, AlphaForm::Premultiplied}) {
        const Image source = NoisePicture({0, 0, 9, 2}, PixelType::Colour, Depth::Eight, form, 4);
        ProbeForTest probe;
        probe.span = [](std::int32_t y, std::int32_t& first, std::int32_t& last) {
            CHECK_EQ(first, 0);
            CHECK_EQ(last, 9);
            if (y == 1) return false;
            first = y == 0 ? -50 : 6;
            last = y == 0 ? 3 : 1000;
            return true;
        };
        probe.change = [](std::int32_t, std::int32_t, float& a, float& r, float& g, float& b) { a = r = g = b = 0; };
        const auto result = Applied(probe, source);
        REQUIRE_EQ(probe.calls.size(), 3);
        CHECK_EQ(probe.calls[0].lastX, 3);
        CHECK_EQ(probe.calls[0].channels.size(), 16);
        CHECK_EQ(probe.calls[1].firstX, 0);
        CHECK_EQ(probe.calls[1].lastX, 9);
        CHECK_EQ(probe.calls[2].firstX, 6);
        CHECK_EQ(probe.calls[2].lastX, 9);
        CHECK_EQ(result->GetPixel8(3, 0), Pixel8());
        CHECK_EQ(result->GetPixel8(4, 0), source.GetPixel8(4, 0));
        CHECK_EQ(result->GetPixel8(5, 2), source.GetPixel8(5, 2));
        CHECK_EQ(result->GetPixel8(6, 2), Pixel8());
    }
}

TEST_CASE("an empty span copies the row, and its row operation is not called") {
    const Image source = NoisePicture({0, 0, 9, 2}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 5);
    const Image mask = NoisePicture({0, 0, 9, 2}, PixelType::Mask, Depth::Eight, AlphaForm::Straight, 5);
    ProbeForTest probe;
    probe.span = [](std::int32_t y, std::int32_t& first, std::int32_t& last) {
        first = y == 1 ? 700 : 5;
        last = y == 1 ? 800 : 4;
        return true;
    };
    CHECK(SamePixels(*Applied(probe, source), source));
    CHECK(SamePixels(*Applied(probe, mask), mask));
    CHECK(probe.calls.empty());
}

TEST_CASE("a run prepares once before its rows, which come in ascending order, and ends once") {
    const Image source = NoisePicture({0, -3, 4, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Straight, 6);
    ProbeForTest probe;
    Applied(probe, source);
    CHECK_EQ(probe.prepared, 1);
    CHECK_EQ(probe.ended, 1);
    REQUIRE_EQ(probe.calls.size(), 12);
    for (int i = 0; i < 12; ++i) CHECK_EQ(probe.calls[static_cast<std::size_t>(i)].y, i - 3);
}

TEST_CASE("a mask is ignored by a filter") {
    const Image source = NoisePicture({0, 0, 20, 20}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 7);
    const Image mask = Image::Mask(source.Bounds(), Depth::Eight);
    InvertForTest invert;
    std::unique_ptr<Image> masked;
    invert.ApplyMasked(source, masked, &mask, false, nullptr, false);
    CHECK(SamePixels(*masked, *Applied(invert, source)));
}

TEST_CASE("one worker and many give the same picture") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Image source = NoisePicture({0, 0, 299, 299}, PixelType::Colour, depth, AlphaForm::Premultiplied, 8);
        InvertForTest invert;
        MultiProcessor::Restart(1);
        const auto alone = Applied(invert, source);
        MultiProcessor::Restart(4);
        const auto together = Applied(invert, source);
        MultiProcessor::Restart(0);
        CHECK(SamePixels(*alone, *together));
    }
}

TEST_CASE("an image without pixels comes back without any") {
    const Image source = Image::Colour(0, 0, Depth::Eight, AlphaForm::Straight);
    InvertForTest invert;
    const auto result = Applied(invert, source);
    REQUIRE(result);
    CHECK_FALSE(result->IsValid());
}
