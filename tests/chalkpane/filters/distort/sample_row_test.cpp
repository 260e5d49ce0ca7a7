#include "chalkpane/filters/distort/sample_row.h"

#include <doctest/doctest.h>

#include <limits>
#include <random>
#include <vector>

#include "chalkpane/image/sampling.h"
#include "tests/chalkpane/filters/filter_pictures.h"

using namespace chalkpane;

namespace {

// Places inside, on pixels, on the rim, outside and nowhere.
std::vector<float> Places(std::size_t count, unsigned seed) {
    constexpr float infinite = std::numeric_limits<float>::infinity();
    std::vector<float> places{0.0F,
                              3.0F,
                              -5.0F,
                              11.0F,
                              4.000001F,
                              2.9999998F,
                              infinite,
                              -infinite,
                              3e9F,
                              -3e9F,
                              std::numeric_limits<float>::quiet_NaN(),
                              -5.5F,
                              10.999999F,
                              1e-7F};
    std::mt19937 random(seed);
    while (places.size() < count) places.push_back(static_cast<float>(random() % 200000) / 8192.0F - 8.0F);
    std::shuffle(places.begin(), places.end(), random);
    return places;
}

template <typename Pixel, typename Row, typename Sample>
void CompareRow(Depth depth, Row row, Sample sample) {
    const Image image = test::NoisePicture({-5, -5, 11, 9}, PixelType::Colour, depth, AlphaForm::Straight, 2);
    const auto x = Places(517, 1);
    const auto y = Places(517, 2);
    for (const std::int32_t edgeMode : {edgeTransparent, edgeReflect, edgeWrap, edgeClamp}) {
        std::vector<Pixel> pixels(x.size());
        row(image, x, y, edgeMode, pixels);
        for (std::size_t i = 0; i < x.size(); ++i) {
            CAPTURE(edgeMode);
            CAPTURE(x[i]);
            CAPTURE(y[i]);
            CHECK((pixels[i] == sample(image, x[i], y[i], edgeMode)));
        }
    }
}

}  // namespace

TEST_CASE("A row of samples is the samples one by one") {
    CompareRow<Pixel8>(Depth::Eight, SampleRow8, SampleBilinear8);
    CompareRow<Pixel14>(Depth::Fourteen, SampleRow14, SampleBilinear14);
}

TEST_CASE("An image of one pixel has no inside to sample from") {
    const Image image = test::NoisePicture({2, 3, 2, 3}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 2);
    const std::vector<float> x{2.0F, 2.5F, 1.5F, 2.25F, 2.0F};
    const std::vector<float> y{3.0F, 3.0F, 3.5F, 2.25F, 2.9F};
    std::vector<Pixel8> pixels(x.size());
    SampleRow8(image, x, y, edgeTransparent, pixels);
    for (std::size_t i = 0; i < x.size(); ++i)
        CHECK((pixels[i] == SampleBilinear8(image, x[i], y[i], edgeTransparent)));
}
