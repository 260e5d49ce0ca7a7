#include "chalkpane/composite/small_dab.h"

#include <doctest/doctest.h>

#include <bit>
#include <cstring>
#include <random>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/composite/src_over_row.h"

using namespace chalkpane;

namespace {

constexpr std::int32_t side = 17;

void FillAtRandom(Image& image, std::mt19937& random) {
    for (std::int32_t y = image.y0; y <= image.y1; ++y)
        for (auto& channel : image.Row8(y)) channel = static_cast<std::uint8_t>(random());
}

// By the arithmetic of a single pixel.
void OverEachPixel(Image& canvas, const Image& mask, std::int32_t left, std::int32_t top, std::uint32_t pixel,
                   std::int32_t opacity) {
    const auto source = std::bit_cast<std::array<std::uint8_t, 4>>(pixel);
    for (std::int32_t y = mask.y0; y <= mask.y1; ++y)
        for (std::int32_t x = mask.x0; x <= mask.x1; ++x) {
            const std::uint8_t m = mask.Row8(y)[static_cast<std::size_t>(x - mask.x0)];
            auto* const target =
                reinterpret_cast<std::uint8_t*>(canvas.Address(left + x - mask.x0, top - (mask.y1 - y)));
            if (m != 0) OverPixel8(target, source.data(), m, opacity);
        }
}

bool AreSame(const Image& a, const Image& b) { return std::memcmp(a.origin, b.origin, a.ByteSize()) == 0; }

}  // namespace

TEST_CASE("a small dab painted as a block leaves the bytes of its single pixels, plain and wide") {
    constexpr unsigned seed = 31;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const auto below = [&](int count) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(count)); };
    for (int round = 0; round < 3000; ++round) {
        CAPTURE(round);
        Image mask = Image::Mask(1 + below(4), 1 + below(4), Depth::Eight);
        FillAtRandom(mask, random);
        if (round % 5 == 0) mask.FillChannel(round % 2);
        SmallMask8 small;
        REQUIRE(small.Take(mask));
        Image expected = Image::Colour(side, side, Depth::Eight, AlphaForm::Premultiplied);
        FillAtRandom(expected, random);
        const auto plain = expected.Clone();
        const auto wide = expected.Clone();
        const auto pixel = static_cast<std::uint32_t>(random() | 0xff000000U);
        const std::int32_t opacity = below(256);
        Rect place(0, 0, mask.Width() - 1, mask.Height() - 1);
        place.Translate(below(side), below(side));
        const SmallDabTarget onPlain = SmallDabTarget::Of(*plain, pixel);
        const SmallDabTarget onWide = SmallDabTarget::Of(*wide, pixel);
        REQUIRE(onPlain.origin != nullptr);
        if (!onPlain.Holds(place)) continue;
        OverEachPixel(expected, mask, place.x0, place.y1, pixel, opacity);
        SmallColourOver8Plain(onPlain, small, place.x0, place.y1, opacity);
        REQUIRE(AreSame(*plain, expected));
        if constexpr (builtWithAvx2) {
            if (!HasAvx2()) continue;
            SmallColourOver8Avx2(onWide, small, place.x0, place.y1, opacity);
            REQUIRE(AreSame(*wide, expected));
        }
    }
}

TEST_CASE("a mask of five pixels a side, or of 14 bits, is no small one") {
    SmallMask8 small;
    CHECK(small.Take(Image::Mask(4, 4, Depth::Eight)));
    CHECK_FALSE(small.Take(Image::Mask(5, 4, Depth::Eight)));
    CHECK_FALSE(small.Take(Image::Mask(4, 5, Depth::Eight)));
    CHECK_FALSE(small.Take(Image::Mask(3, 3, Depth::Fourteen)));
    CHECK_FALSE(small.Take(Image::Colour(3, 3, Depth::Eight, AlphaForm::Straight)));
}

// A block is 4 pixels wide and high, whatever the mask.
TEST_CASE("a block beyond the canvas, and a canvas of another kind, are left to the rows") {
    const Image canvas = Image::Colour(32, 32, Depth::Eight, AlphaForm::Premultiplied);
    const SmallDabTarget target = SmallDabTarget::Of(canvas, 0xff000000U);
    REQUIRE(target.origin != nullptr);
    CHECK(target.Holds({10, 10, 12, 12}));
    CHECK(target.Holds({0, 1, 2, 3}));
    CHECK(target.Holds({28, 29, 30, 31}));
    CHECK_FALSE(target.Holds({-1, 10, 1, 12}));
    CHECK_FALSE(target.Holds({29, 10, 31, 12}));
    CHECK_FALSE(target.Holds({10, 0, 12, 2}));
    CHECK_FALSE(target.Holds({10, 30, 12, 32}));
    CHECK(SmallDabTarget::Of(Image::Colour(5, 5, Depth::Eight, AlphaForm::Premultiplied), 0).origin != nullptr);
    CHECK(SmallDabTarget::Of(Image::Colour(8, 8, Depth::Fourteen, AlphaForm::Premultiplied), 0).origin == nullptr);
    CHECK(SmallDabTarget::Of(Image::Mask(16, 16, Depth::Eight), 0).origin == nullptr);
}
