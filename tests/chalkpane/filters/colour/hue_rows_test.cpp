#include "chalkpane/filters/colour/hue_rows.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <vector>

#include "tests/chalkpane/scoped_cpu_features.h"

using namespace chalkpane;

namespace {

template <typename Channel>
std::vector<Channel> Turned(CpuFeatures features, std::vector<Channel> pixels, float turn, const float* byValue) {
    const test::ScopedCpuFeatures used(features);
    TurnHues(pixels, turn, byValue);
    return pixels;
}

template <typename Channel>
void RequireSame(const std::vector<Channel>& pixels, float turn, const float* byValue) {
    const auto plain = Turned(CpuFeatures::Plain, pixels, turn, byValue);
    const auto wide = Turned(CpuFeatures::All, pixels, turn, byValue);
    CAPTURE(turn);
    const auto difference = std::ranges::mismatch(plain, wide).in1 - plain.begin();
    CAPTURE(difference);
    REQUIRE(plain == wide);
}

// Far ones, and such whose wrapped hue is 1 by rounding.
constexpr std::array turns{0.0F,  -0.0F,    1e-9F, -1e-9F,     1.0F / 6,
                           0.25F, 1.0F / 3, 0.5F,  0.9999999F, -0.7654321F,
                           12.5F, 1e6F,     -3e7F, 1e30F,      std::numeric_limits<float>::infinity()};

}  // namespace

// Every pair of two channels, with the third at an end, between, and alike: all sextants, their borders and all greys.
TEST_CASE("hues of bytes turn alike in the plain and the wide form") {
    constexpr std::size_t levels = 256;
    std::vector<std::uint8_t> pixels;
    pixels.reserve(levels * levels * 4 * 4);
    for (std::size_t a = 0; a < levels; ++a)
        for (std::size_t b = 0; b < levels; ++b)
            for (const std::size_t c : {std::size_t{0}, std::size_t{255}, a, (a + b) / 2}) {
                std::array colour{a, b, c};
                std::rotate(colour.begin(), colour.begin() + static_cast<std::ptrdiff_t>((a + b) % 3), colour.end());
                for (const std::size_t channel : colour) pixels.push_back(static_cast<std::uint8_t>(channel));
                pixels.push_back(static_cast<std::uint8_t>(a ^ b));
            }
    for (const float turn : turns) RequireSame(pixels, turn, nullptr);
    std::vector<float> byValue(levels);
    for (std::size_t i = 0; i < levels; ++i) byValue[i] = static_cast<float>(i) / 100 - 1;
    RequireSame(pixels, 0.1F, byValue.data());
}

TEST_CASE("hues of words turn alike in the plain and the wide form") {
    constexpr unsigned seed = 5;
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::vector<std::uint16_t> pixels(4 * 50001);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::uint32_t before = pixels[i < 4 ? 0 : i - 1];
        const bool isNear = random() % 3 == 0;
        const std::uint32_t limit = i % 1024 == 0 ? 65536 : 16384;  // what an overflow has left is turned alike
        pixels[i] = static_cast<std::uint16_t>((isNear ? before + random() % 3 : random()) % limit);
    }
    for (const float turn : turns) RequireSame(pixels, turn, nullptr);
    std::vector<float> byValue(16384);
    for (std::size_t i = 0; i < byValue.size(); ++i) byValue[i] = static_cast<float>(i) / 5000;
    RequireSame(pixels, -0.2F, byValue.data());
}
