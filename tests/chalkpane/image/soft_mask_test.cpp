#include "chalkpane/image/soft_mask.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

constexpr PixelType colour = PixelType::Colour;
constexpr PixelType mask = PixelType::Mask;

SoftMask Mask(SoftMask::Kind kind, const Rect& rect, double softness) {
    SoftMask softMask;
    softMask.kind = kind;
    softMask.rect = rect;
    softMask.softness = softness;
    return softMask;
}

Image FullMask(const Rect& rect, Depth depth) {
    Image image(rect, mask, depth, AlphaForm::Straight);
    image.FillChannel(1.0);
    return image;
}

// What a pixel is multiplied with and shifted by, pixel by pixel and from the definition of each region.
struct Multiplier {
    std::int64_t factor;
    int shift;
};

Multiplier RectangleFade(const SoftMask& soft, double zoom, int x, int y, bool deep) {
    const int shift = deep ? 16 : 8;
    const double width = soft.softness * zoom;
    const double left = soft.rect.x0 * zoom + width, right = soft.rect.x1 * zoom - width;
    const double bottom = soft.rect.y0 * zoom + width, top = soft.rect.y1 * zoom - width;
    const double dx = x < left ? left - x : x > right ? x - right : 0;
    const double dy = y < bottom ? bottom - y : y > top ? y - top : 0;
    if (dx == 0 && dy == 0) return {std::int64_t{1} << shift, shift};
    const double distance = dx == 0 ? dy : dy == 0 ? dx : std::sqrt(dx * dx + dy * dy);
    const double factor = 1 - distance * soft.inverseWidth;
    return {factor < 0 ? 0 : factor > 1 ? 1 : static_cast<std::int64_t>(factor * (1 << shift)), shift};
}

Multiplier CircleFade(const SoftMask& soft, double zoom, int x, int y) {
    const double centreX = (soft.rect.x0 + soft.rect.x1) / 2.0 * zoom;
    const double centreY = (soft.rect.y0 + soft.rect.y1) / 2.0 * zoom;
    const double outer = std::min(soft.rect.Width(), soft.rect.Height()) / 2.0 * zoom;
    const double inner = outer - soft.softness * zoom;
    const double dx = std::abs(x - centreX), dy = std::abs(y - centreY);
    if (dy > outer || dx > std::sqrt(outer * outer - dy * dy)) return {0, 8};
    if (dy <= inner && dx <= std::sqrt(inner * inner - dy * dy)) return {256, 8};
    const double factor = (outer - std::sqrt(dx * dx + dy * dy)) * soft.inverseWidth;
    return {factor < 1 ? static_cast<std::int64_t>(factor * 256) : 256, 8};
}

void CheckAgainstReference(SoftMask softMask, const Rect& area, double zoom) {
    for (const PixelType type : {colour, mask})
        for (const Depth depth : {Depth::Eight, Depth::Fourteen})
            for (const bool alphaOnly : {false, true}) {
                Image image(area, type, depth, AlphaForm::Straight);
                reference::FillWithNoise(image, 44);
                reference::Picture wanted(image);
                softMask.alphaOnly = alphaOnly ? 1 : 0;
                softMask.ApplySoftMask(image, zoom);
                for (int y = area.y0; y <= area.y1; ++y)
                    for (int x = area.x0; x <= area.x1; ++x)
                        for (int c = type == colour && alphaOnly ? 3 : 0; c < wanted.channels; ++c) {
                            const Multiplier fade = softMask.kind == SoftMask::circle
                                                        ? CircleFade(softMask, zoom, x, y)
                                                        : RectangleFade(softMask, zoom, x, y, depth == Depth::Fourteen);
                            int& value = wanted.At(x, y, c);
                            value = static_cast<int>((value * fade.factor) >> fade.shift);
                        }
                CAPTURE(type);
                CAPTURE(depth);
                CAPTURE(alphaOnly);
                CAPTURE(zoom);
                CHECK(reference::Same(reference::Picture(image), wanted));
            }
}

}  // namespace

TEST_CASE("A soft mask is active with a kind and a softness of at least a thousandth") {
    CHECK_FALSE(SoftMask().IsActive());
    CHECK_FALSE(Mask(SoftMask::none, Rect(0, 0, 9, 9), 5).IsActive());
    CHECK_FALSE(Mask(SoftMask::rectangle, Rect(0, 0, 9, 9), 0.0009).IsActive());
    CHECK(Mask(SoftMask::rectangle, Rect(0, 0, 9, 9), 0.001).IsActive());
    CHECK(Mask(SoftMask::circle, Rect(0, 0, 9, 9), 1).IsActive());
    CHECK_FALSE(Mask(SoftMask::circle, Rect(0, 0, 9, 9), std::numeric_limits<double>::quiet_NaN()).IsActive());
}

TEST_CASE("Without a kind nothing fades") {
    Image image = FullMask(Rect(0, 0, 9, 9), Depth::Eight);
    Mask(SoftMask::none, Rect(3, 3, 5, 5), 2).ApplySoftMask(image, 1);
    for (const int value : reference::Picture(image).values) CHECK_EQ(value, 255);
}

// Rectangle 0 .. 20, softness 4: inside from 4 to 16. Column 3 is 1 away: 1 - 1/4 = 0.75, * 256 = 192, 255 * 192 >> 8 =
// 191; column 0 is 4 away: 0; beyond it below 0: 0. Corner (1, 0): 3 and 4 away, 5: 0; (2, 3): sqrt(5) = 2.236:
// 1 - 0.559 = 0.44098, * 256 = 112.9, 255 * 112 >> 8 = 111. 14 bits: 0.75 * 65536 = 49152, 16383 * 0.75 = 12287.25.
TEST_CASE("A rectangle fades straight along its sides and radially at its corners") {
    SoftMask softMask = Mask(SoftMask::rectangle, Rect(0, 0, 20, 20), 4);
    Image image = FullMask(Rect(-3, -3, 23, 23), Depth::Eight);
    softMask.ApplySoftMask(image, 1);
    CHECK_EQ(softMask.inverseWidth, 0.25F);
    CHECK_EQ(image.GetMaskEdge8(10, 10, 0), 255);
    CHECK_EQ(image.GetMaskEdge8(4, 16, 0), 255);
    CHECK_EQ(image.GetMaskEdge8(3, 10, 0), 191);
    CHECK_EQ(image.GetMaskEdge8(10, 17, 0), 191);
    CHECK_EQ(image.GetMaskEdge8(0, 10, 0), 0);
    CHECK_EQ(image.GetMaskEdge8(-3, 10, 0), 0);
    CHECK_EQ(image.GetMaskEdge8(1, 0, 0), 0);
    CHECK_EQ(image.GetMaskEdge8(2, 3, 0), 111);
    CHECK_EQ(image.GetMaskEdge8(18, 17, 0), 111);
    Image deep = FullMask(Rect(-3, -3, 23, 23), Depth::Fourteen);
    softMask.ApplySoftMask(deep, 1);
    CHECK_EQ(deep.GetMaskEdge14(3, 10, 0), 12287);
}

// Rectangle 0 .. 10 at zoom 2 is 0 .. 20; softness 2 becomes 4.
TEST_CASE("Rectangle and softness follow the zoom") {
    SoftMask softMask = Mask(SoftMask::rectangle, Rect(0, 0, 10, 10), 2);
    Image image = FullMask(Rect(0, 0, 20, 20), Depth::Eight);
    softMask.ApplySoftMask(image, 2);
    CHECK_EQ(softMask.inverseWidth, 0.25F);
    CHECK_EQ(image.GetMaskEdge8(3, 10, 0), 191);
    CHECK_EQ(image.GetMaskEdge8(4, 10, 0), 255);
}

// With a negative zoom the width is negative and factors rise above 1 outside: they multiply by 1, not by 256.
TEST_CASE("A factor above 1 all but clears the pixel") {
    Image image = FullMask(Rect(0, 0, 30, 0), Depth::Eight);
    Mask(SoftMask::rectangle, Rect(-30, -5, 0, 5), 1).ApplySoftMask(image, -0.5);
    // Scaled: x from 15 to 0, inner from 14.5 to 0.5: every column lies outside, at left of 14.5 first.
    CHECK_EQ(image.GetMaskEdge8(10, 0, 0), 0);  // 255 * 1 >> 8
    Image deep = FullMask(Rect(0, 0, 30, 0), Depth::Fourteen);
    Mask(SoftMask::rectangle, Rect(-30, -5, 0, 5), 1).ApplySoftMask(deep, -0.5);
    CHECK_EQ(deep.GetMaskEdge14(10, 0, 0), 0);
}

// Rectangle 0 .. 20: centre 10, radius 21 / 2 = 10.5, softness 4.2, inner radius 6.3. Pixel (18, 10): distance 8,
// (10.5 - 8) / 4.2 = 0.595, * 256 = 152.4, 255 * 152 >> 8 = 151. 14 bits: 16383 * 152 >> 8 = 9727.
TEST_CASE("A circle fades in its ring and is nothing beyond") {
    SoftMask softMask = Mask(SoftMask::circle, Rect(0, 0, 20, 20), 4.2);
    Image image = FullMask(Rect(-5, -5, 25, 25), Depth::Eight);
    softMask.ApplySoftMask(image, 1);
    CHECK_EQ(image.GetMaskEdge8(10, 10, 0), 255);
    CHECK_EQ(image.GetMaskEdge8(16, 10, 0), 255);
    CHECK_EQ(image.GetMaskEdge8(18, 10, 0), 151);
    CHECK_EQ(image.GetMaskEdge8(10, 2, 0), 151);
    CHECK_EQ(image.GetMaskEdge8(21, 10, 0), 0);
    CHECK_EQ(image.GetMaskEdge8(10, -1, 0), 0);
    CHECK_EQ(image.GetMaskEdge8(0, 0, 0), 0);
    Image deep = FullMask(Rect(-5, -5, 25, 25), Depth::Fourteen);
    softMask.ApplySoftMask(deep, 1);
    CHECK_EQ(deep.GetMaskEdge14(18, 10, 0), 9727);  // eight bits of fade here in both depths
}

TEST_CASE("With alpha alone colour stays, but a mask fades all the same") {
    Image image(Rect(0, 0, 4, 4), colour, Depth::Eight, AlphaForm::Straight);
    for (std::int32_t y = 0; y <= 4; ++y)
        for (auto& channel : image.Row8(y)) channel = 200;
    SoftMask softMask = Mask(SoftMask::rectangle, Rect(10, 10, 20, 20), 1);
    softMask.alphaOnly = 1;
    softMask.ApplySoftMask(image, 1);
    CHECK(image.GetPixel8(2, 2) == Pixel8{200, 200, 200, 0});
    Image full = FullMask(Rect(0, 0, 4, 4), Depth::Eight);
    softMask.ApplySoftMask(full, 1);
    CHECK_EQ(full.GetMaskEdge8(2, 2, 0), 0);
}

TEST_CASE("Fades agree with the plain reference at every pixel") {
    for (const double zoom : {1.0, 0.5, 0.37, 2.0})
        for (const double softness : {0.001, 1.0, 3.7, 9.0, 40.0}) {
            const Rect area(-12, -9, 60, 50);
            CheckAgainstReference(Mask(SoftMask::rectangle, Rect(-3, 2, 20, 15), softness), area, zoom);
            CheckAgainstReference(Mask(SoftMask::circle, Rect(-3, 2, 20, 15), softness), area, zoom);
            CheckAgainstReference(Mask(SoftMask::circle, Rect(0, 0, 20, 22), softness), area, zoom);
        }
}

TEST_CASE("Settings and zooms that mean nothing are survived") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    for (const auto kind : {SoftMask::rectangle, SoftMask::circle})
        for (const double zoom : {nan, infinity, -infinity, 0.0, -1.0, 1e300, 1e-300, 5e-324, 1.0})
            for (const double softness : {nan, infinity, 0.0, -3.0, 1e300, 1e-300, 2.0})
                for (const Rect& rect :
                     {Rect(0, 0, 9, 9), Rect(), Rect(9, 0, 3, 5), Rect(lowest, lowest, highest, highest)})
                    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                        Image image(Rect(-3, -3, 12, 12), colour, depth, AlphaForm::Straight);
                        reference::FillWithNoise(image, 1);
                        Mask(kind, rect, softness).ApplySoftMask(image, zoom);
                        Image none(0, 0, mask, depth, AlphaForm::Straight);
                        Mask(kind, rect, softness).ApplySoftMask(none, zoom);
                        Image far(Rect(highest - 2, lowest, highest, lowest + 1), mask, depth, AlphaForm::Straight);
                        Mask(kind, rect, softness).ApplySoftMask(far, zoom);
                        CHECK_EQ(far.GetMaskEdge8(0, 0, 0), 0);
                    }
}
