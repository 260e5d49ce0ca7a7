#include "chalkpane/image/halve_image.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <limits>

#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

constexpr PixelType colour = PixelType::Colour;
constexpr PixelType mask = PixelType::Mask;

struct Kind {
    PixelType type;
    Depth depth;
};
constexpr Kind kinds[] = {
    {colour, Depth::Eight}, {colour, Depth::Fourteen}, {mask, Depth::Eight}, {mask, Depth::Fourteen}};

Image Noise(const Rect& rect, const Kind& kind, std::uint32_t seed) {
    Image image(rect, kind.type, kind.depth, AlphaForm::Premultiplied);
    reference::FillWithNoise(image, seed);
    return image;
}

Image Flat(const Rect& rect, const Kind& kind, std::uint16_t value) {
    Image image(rect, kind.type, kind.depth, AlphaForm::Straight);
    for (std::int32_t y = rect.y0; y <= rect.y1; ++y) {
        if (kind.depth == Depth::Eight)
            for (auto& channel : image.Row8(y)) channel = static_cast<std::uint8_t>(value);
        else
            for (auto& channel : image.Row14(y)) channel = value;
    }
    return image;
}

}  // namespace

TEST_CASE("An image of width or height 1 cannot be halved") {
    CHECK_EQ(HalveImage(Image(1, 9, colour, Depth::Eight, AlphaForm::Straight), 0), nullptr);
    CHECK_EQ(HalveImage(Image(9, 1, mask, Depth::Fourteen, AlphaForm::Straight), 0.5), nullptr);
    CHECK_EQ(HalveImage(Image(0, 0, colour, Depth::Eight, AlphaForm::Straight), 0), nullptr);
}

TEST_CASE("The half has half the size rounded up, half the position truncated, and the same format") {
    for (const Kind& kind : kinds) {
        const auto half = HalveImage(Noise(Rect(-3, 5, 4, 9), kind, 1), 0);  // 8 x 5
        CHECK(half->Bounds() == Rect(-1, 2, 2, 4));                          // 4 x 3
        CHECK_EQ(half->GetPixelType(), kind.type);
        CHECK_EQ(half->GetDepth(), kind.depth);
        CHECK_EQ(half->flag, 1);
    }
}

// 1 2 1 / 2 4 2 / 1 2 1 around (2, 2): only (2, 2) = 160 gives 160 * 4 / 16; only a corner (1, 3) = 160 gives 10 more,
// a side (3, 2) = 8 gives 1 more.
TEST_CASE("Inside, every second pixel is the 1-2-1 mean around it") {
    Image image(5, 5, mask, Depth::Eight, AlphaForm::Straight);
    image.SetAlpha8(2, 2, 160);
    CHECK_EQ(HalveImage(image, 0)->GetMaskEdge8(1, 1, 0), 40);
    image.SetAlpha8(1, 3, 160);
    CHECK_EQ(HalveImage(image, 0)->GetMaskEdge8(1, 1, 0), 50);
    image.SetAlpha8(3, 2, 8);
    CHECK_EQ(HalveImage(image, 0)->GetMaskEdge8(1, 1, 0), 51);
    image.SetAlpha8(3, 2, 15);  // 160 * 4 + 160 + 30 = 830 >> 4 = 51: truncated
    CHECK_EQ(HalveImage(image, 0)->GetMaskEdge8(1, 1, 0), 51);
}

// At the border a sample half a pixel further, with nothing outside: the corner of a flat picture of odd size is a
// quarter, an edge a half; the near border still finds four pixels.
TEST_CASE("The border is sampled with nothing beyond the edge") {
    const auto half = HalveImage(Flat(Rect(0, 0, 4, 4), {colour, Depth::Eight}, 200), 0);
    CHECK_EQ(half->GetPixel8(0, 0).red, 200);
    CHECK_EQ(half->GetPixel8(2, 0).red, 100);
    CHECK_EQ(half->GetPixel8(2, 2).red, 50);
    CHECK_EQ(half->GetPixel8(1, 1).red, 200);
    // 14-bit masks take the nearest pixel there and do not darken.
    CHECK_EQ(HalveImage(Flat(Rect(0, 0, 4, 4), {mask, Depth::Fourteen}, 200), 0)->GetMaskEdge14(2, 2, 0), 200);
}

// x0 = 3: the grid starts at plane column 2, before the image; then 4, 6: odd columns of the buffer.
TEST_CASE("An image that starts at an odd position is sampled on the plane's even grid") {
    Image image(Rect(3, 3, 9, 9), mask, Depth::Fourteen, AlphaForm::Straight);
    reference::FillWithNoise(image, 9);
    image.Row14(6)[3] = 5000;  // column 6
    const auto half = HalveImage(image, 0);
    CHECK(half->Bounds() == Rect(1, 1, 4, 4));
    int sum = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            sum += (2 - std::abs(dx)) * (2 - std::abs(dy)) * image.GetMaskEdge14(6 + dx, 6 + dy, 0);
    CHECK_EQ(half->GetMaskEdge14(3, 3, 0), sum >> 4);
    CHECK_EQ(half->GetMaskEdge14(1, 1, 0), 0);  // plane (2, 2) lies outside, and 14-bit masks do not interpolate
}

TEST_CASE("Parts of one picture are reduced to the same pixels wherever they start") {
    const Image whole = Noise(Rect(0, 0, 19, 19), {colour, Depth::Eight}, 17);
    const auto half = HalveImage(whole, 0);
    for (std::int32_t start = 0; start < 4; ++start) {
        const auto part = HalveImage(*whole.Convert(Rect(start, start, 18, 18), Depth::Eight), 0);
        for (std::int32_t y = 3; y <= 7; ++y)
            for (std::int32_t x = 3; x <= 7; ++x) CHECK(part->GetPixel8(x, y) == half->GetPixel8(x, y));
    }
}

TEST_CASE("Noise of all sizes and positions is reduced and blended as in the plain reference") {
    std::uint32_t seed = 100;
    for (const Kind& kind : kinds)
        for (const std::int32_t start : {-4, -3, 0, 5})
            for (std::int32_t width = 2; width <= 9; ++width)
                for (const std::int32_t height : {2, 3, 8}) {
                    const Rect rect(start, 1 - start, start + width - 1, height - start);
                    const Image image = Noise(rect, kind, ++seed);
                    const reference::Picture reference(image);
                    CAPTURE(seed);
                    CAPTURE(kind.type);
                    CAPTURE(kind.depth);
                    CAPTURE(start);
                    CAPTURE(width);
                    CAPTURE(height);
                    CHECK(reference::Same(reference::Picture(*HalveImage(image, 0)), reference::Halved(reference)));
                    for (const double blend : {0.001, 0.3, 0.5, 0.77, 1.0})
                        CHECK(reference::Same(reference::Picture(*HalveImage(image, blend)),
                                              reference::Blended(reference, blend)));
                }
}

// An image of 4 x 4, blend 0.5, so k = 128. One pixel (1, 1) of 16 in black: H at (0, 0) is sampled at the border:
// (0.5, 0.5) -> 4; H at (1, 1) around (2, 2) has the corner: 1; (1, 0) and (0, 1) are border samples at (2.5, 0.5) and
// (0.5, 2.5): 0.
// (0, 0): (4 - 0) * 128 >> 8 = 2. (1, 0): (4 + 0) * 128 >> 9 = 1. (0, 1): the same, 1.
// (1, 1): (4 + 0 + 0 + 1 - 64) * 128 + 16 * 1024 = 8832, >> 10 = 8. (2, 2): (1 - 0) * 128 >> 8 = 0.
TEST_CASE("A blended level lies between the picture and its half") {
    Image image(4, 4, mask, Depth::Eight, AlphaForm::Straight);
    image.SetAlpha8(1, 1, 16);
    const auto blended = HalveImage(image, 0.5);
    CHECK(blended->Bounds() == image.Bounds());
    const auto at = [&](std::int32_t x, std::int32_t y) { return static_cast<int>(blended->GetMaskEdge8(x, y, 0)); };
    CHECK_EQ(at(0, 0), 2);
    CHECK_EQ(at(1, 0), 1);
    CHECK_EQ(at(0, 1), 1);
    CHECK_EQ(at(1, 1), 8);
    CHECK_EQ(at(2, 2), 0);
}

// 2 x 2 with 3 at (0, 0), blend 0.5. H, sampled at (0.5, 0.5): 3 / 4 = 0.75, rounded 1. (0, 0): (1 - 3) * 128 + 3 * 256
// = 512, >> 8 = 2. The others have no full block: 0 + (1 - 0) * 0.5 = 0.5, which 8 bits truncate to 0 and 14 bits round
// to
// 1. There H is the pixel itself, 3, so (0, 0) is 3, and the others are 0 + 3 * 0.5 + 0.5 = 2.
TEST_CASE("At 8 bits the last row and column of a blended level truncate") {
    Image image(2, 2, mask, Depth::Eight, AlphaForm::Straight);
    image.SetAlpha8(0, 0, 3);
    const auto blended = HalveImage(image, 0.5);
    CHECK_EQ(blended->GetMaskEdge8(0, 0, 0), 2);
    CHECK_EQ(blended->GetMaskEdge8(1, 0, 0), 0);
    CHECK_EQ(blended->GetMaskEdge8(0, 1, 0), 0);
    CHECK_EQ(blended->GetMaskEdge8(1, 1, 0), 0);
    Image deep(2, 2, mask, Depth::Fourteen, AlphaForm::Straight);
    deep.Row14(0)[0] = 3;
    const auto rounded = HalveImage(deep, 0.5);
    CHECK_EQ(rounded->GetMaskEdge14(0, 0, 0), 3);
    CHECK_EQ(rounded->GetMaskEdge14(1, 0, 0), 2);
    CHECK_EQ(rounded->GetMaskEdge14(1, 1, 0), 2);
}

TEST_CASE("A flat picture of even size stays flat in a blended level, up to the last row and column") {
    for (const Kind& kind : kinds)
        for (const double blend : {0.1, 0.5, 0.9}) {
            const auto blended = HalveImage(Flat(Rect(0, 0, 7, 7), kind, 201), blend);
            for (const int value : reference::Picture(*blended).values) CHECK_EQ(value, 201);
        }
}

// Words above full scale in a flat picture: all is limited to 16383, but where four pixels meet to 16384.
TEST_CASE("The limit of a 14-bit level is one higher where four pixels meet") {
    const auto blended = HalveImage(Flat(Rect(0, 0, 7, 7), {colour, Depth::Fourteen}, 20000), 0.5);
    CHECK_EQ(blended->GetPixel14(2, 2).red, 0x3fff);
    CHECK_EQ(blended->GetPixel14(3, 2).red, 0x3fff);
    CHECK_EQ(blended->GetPixel14(2, 3).red, 0x3fff);
    CHECK_EQ(blended->GetPixel14(3, 3).red, 0x4000);
}

TEST_CASE("Blends that are no share of a picture count as the nearest end") {
    const Image image = Noise(Rect(0, 0, 6, 6), {colour, Depth::Eight}, 3);
    const reference::Picture own(image);
    CHECK(reference::Same(reference::Picture(*HalveImage(image, 1e300)), own));
    CHECK(reference::Same(reference::Picture(*HalveImage(image, std::numeric_limits<double>::quiet_NaN())), own));
    CHECK(reference::Same(reference::Picture(*HalveImage(image, -5)), reference::Blended(own, 0)));
}

TEST_CASE("Images at the ends of the 32-bit range are halved") {
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    for (const Kind& kind : kinds)
        for (const Rect& rect :
             {Rect(highest - 4, lowest, highest, lowest + 4), Rect(lowest, highest - 5, lowest + 5, highest)})
            for (const double blend : {0.0, 0.5}) CHECK_NE(HalveImage(Noise(rect, kind, 1), blend), nullptr);
}
