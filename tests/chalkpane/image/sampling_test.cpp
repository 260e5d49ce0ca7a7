#include "chalkpane/image/sampling.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <limits>
#include <random>

#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

constexpr PixelType colour = PixelType::Colour;
constexpr PixelType mask = PixelType::Mask;

// Two by two pixels at (10, 20), all channels alike: 0 and 100 below, 200 and 44 above.
Image FourPixels(Depth depth) {
    Image image(Rect(10, 20, 11, 21), colour, depth, AlphaForm::Straight);
    const int values[] = {0, 100, 200, 44};
    for (int i = 0; i < 4; ++i)
        for (int c = 0; c < 4; ++c) {
            std::byte* address = image.Address(10 + i % 2, 20 + i / 2);
            if (depth == Depth::Eight)
                reinterpret_cast<std::uint8_t*>(address)[c] = static_cast<std::uint8_t>(values[i]);
            else
                reinterpret_cast<std::uint16_t*>(address)[c] = static_cast<std::uint16_t>(values[i] * 80);
        }
    return image;
}

}  // namespace

TEST_CASE("At a pixel's own position a sample is that pixel") {
    const Image image = FourPixels(Depth::Eight);
    CHECK(SampleBilinear8(image, 11, 20, edgeTransparent) == Pixel8{100, 100, 100, 100});
    CHECK(SampleBilinear8(image, 10 + 4e-6, 21 + 4e-6, edgeTransparent) == Pixel8{200, 200, 200, 200});
}

// Upwards is towards larger y: a quarter right and half up, weights 24576, 8192, 24576, 8192:
// (8192 * 100 + 24576 * 200 + 8192 * 44 + 32768) >> 16 = 93.5 -> 93.
TEST_CASE("Between pixels the four neighbours weigh by area") {
    CHECK_EQ(SampleBilinear8(FourPixels(Depth::Eight), 10.25, 20.5, edgeTransparent).green, 93);
    // (8192 * 8000 + 24576 * 16000 + 8192 * 3520 + 32768) >> 16 = 7440.5 -> 7440.
    CHECK_EQ(SampleBilinear14(FourPixels(Depth::Fourteen), 10.25, 20.5, edgeTransparent).green, 7440);
}

// Weights truncate one by one: at 0.4, 0.4 they are 23592.96, 15728.64 twice and 10485.76, together 65533 of 65536. A
// flat 14-bit picture of 16383 gives (65533 * 16383 + 32768) >> 16 = 16382.75; at 0.5, 0.5 nothing is lost.
TEST_CASE("Truncated weights may fall short of the whole") {
    Image image(2, 2, colour, Depth::Fourteen, AlphaForm::Straight);
    for (std::int32_t y = 0; y < 2; ++y)
        for (auto& channel : image.Row14(y)) channel = 16383;
    CHECK_EQ(SampleBilinear14(image, 0.4, 0.4, edgeTransparent).red, 16382);
    CHECK_EQ(SampleBilinear14(image, 0.5, 0.5, edgeTransparent).red, 16383);
}

TEST_CASE("Beyond the edge a sample reads by the edge mode") {
    const Image image = FourPixels(Depth::Eight);
    // Half way out to the right on the lower line: 100 and nothing, 100, or the 0 at the left end.
    CHECK_EQ(SampleBilinear8(image, 11.5, 20, edgeTransparent).blue, 50);
    CHECK_EQ(SampleBilinear8(image, 11.5, 20, edgeClamp).blue, 100);
    CHECK_EQ(SampleBilinear8(image, 11.5, 20, edgeWrap).blue, 50);
    CHECK_EQ(SampleBilinear8(image, 11.5, 20.5, edgeWrap).blue, 86);  // (100 + 0 + 44 + 200) / 4
    CHECK_EQ(SampleBilinear8(image, 9.5, 20, edgeTransparent).blue, 0);
    CHECK_EQ(SampleBilinear8(image, 9.5, 20, edgeReflect).blue, 50);
}

// 0.5 * 1 + 0.5 * 2 + 0.5 = 2.0.
TEST_CASE("An 8-bit mask interpolates and rounds") {
    Image image(2, 1, mask, Depth::Eight, AlphaForm::Straight);
    image.Row8(0)[0] = 1;
    image.Row8(0)[1] = 2;
    CHECK_EQ(SampleMaskBilinear8(image, 0.5, 0, edgeClamp), 2);
    CHECK_EQ(SampleMaskBilinear8(image, 0.49, 0, edgeClamp), 1);
    CHECK_EQ(SampleMaskBilinear8(image, 1.5, 0, edgeTransparent), 1);
}

TEST_CASE("A 14-bit mask never interpolates") {
    Image image(Rect(-1, -1, 1, 1), mask, Depth::Fourteen, AlphaForm::Straight);
    reference::FillWithNoise(image, 5);
    for (const double fraction : {0.0, 0.25, 0.5, 0.999}) {
        CHECK_EQ(SampleMask14(image, -1 + fraction, 0 + fraction, edgeClamp), image.GetMaskEdge14(-1, 0, edgeClamp));
        CHECK_EQ(SampleMask14(image, -2 + fraction, 0 + fraction, edgeTransparent), 0);
    }
}

TEST_CASE("Random positions sample as in the plain reference, in every format and edge mode") {
    constexpr std::uint32_t seed = 31;
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> position(-12.0, 12.0);
    for (const auto& [width, height] : {std::pair{7, 5}, {1, 4}, {4, 1}, {1, 1}}) {
        const Rect rect(-3, -2, width - 4, height - 3);
        Image colour8 = Image::Colour(rect, Depth::Eight, AlphaForm::Straight);
        Image colour14 = Image::Colour(rect, Depth::Fourteen, AlphaForm::Straight);
        Image mask8 = Image::Mask(rect, Depth::Eight);
        Image mask14 = Image::Mask(rect, Depth::Fourteen);
        for (Image* image : {&colour8, &colour14, &mask8, &mask14}) reference::FillWithNoise(*image, seed);
        const reference::Picture reference8(colour8), reference14(colour14), referenceMask8(mask8),
            referenceMask14(mask14);
        for (int i = 0; i < 4000; ++i) {
            double x = position(random);
            double y = position(random);
            if (i % 3 == 0) x = static_cast<float>(x);
            if (i % 5 == 0) y = std::floor(y);
            if (i % 10 == 0) x = std::floor(x * 4) / 4;
            for (const std::int32_t edgeMode : {0, 1, 2, 4}) {
                const Pixel8 pixel8 = SampleBilinear8(colour8, x, y, edgeMode);
                const Pixel14 pixel14 = SampleBilinear14(colour14, x, y, edgeMode);
                const bool same =
                    pixel8.blue == reference8.Sample(x, y, 0, edgeMode) &&
                    pixel8.green == reference8.Sample(x, y, 1, edgeMode) &&
                    pixel8.red == reference8.Sample(x, y, 2, edgeMode) &&
                    pixel8.alpha == reference8.Sample(x, y, 3, edgeMode) &&
                    pixel14.blue == reference14.Sample(x, y, 0, edgeMode) &&
                    pixel14.alpha == reference14.Sample(x, y, 3, edgeMode) &&
                    SampleMaskBilinear8(mask8, x, y, edgeMode) == referenceMask8.Sample(x, y, 0, edgeMode) &&
                    SampleMask14(mask14, x, y, edgeMode) == referenceMask14.Sample(x, y, 0, edgeMode);
                CAPTURE(x);
                CAPTURE(y);
                CAPTURE(edgeMode);
                REQUIRE(same);
            }
        }
    }
}

TEST_CASE("Positions that are NaN or far away are survived") {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Image image = FourPixels(Depth::Eight);
    const Image deep = FourPixels(Depth::Fourteen);
    const Image none(0, 0, colour, Depth::Eight, AlphaForm::Straight);
    for (const double far : {nan, infinity, -infinity, 1e300, -1e300, 2147483647.5, -2147483648.5, 4e9})
        for (const std::int32_t edgeMode : {0, 1, 2, 4}) {
            static_cast<void>(SampleBilinear8(image, far, 20, edgeMode));
            static_cast<void>(SampleBilinear14(deep, 10, far, edgeMode));
            CHECK(SampleBilinear8(none, far, 0.5, edgeMode) == Pixel8());
        }
    CHECK(SampleBilinear8(image, infinity, 20, edgeClamp) == Pixel8{100, 100, 100, 100});
    CHECK(SampleBilinear8(image, -1e300, 21, edgeClamp) == Pixel8{200, 200, 200, 200});
    CHECK(SampleBilinear8(image, nan, nan, edgeTransparent) == Pixel8());
}
