#include "chalkpane/filters/colour/hue_rows.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <span>
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
    for (const CpuFeatures features : {CpuFeatures::Avx2, CpuFeatures::All}) {
        const auto wide = Turned(features, pixels, turn, byValue);
        CAPTURE(turn);
        CAPTURE(static_cast<int>(features));
        const auto difference = std::ranges::mismatch(plain, wide).in1 - plain.begin();
        CAPTURE(difference);
        REQUIRE(plain == wide);
    }
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

// The largest component comes back as it was, whatever it is: for greys that is all.
TEST_CASE("greys of all words stay what they are in every form") {
    constexpr std::size_t levels = 65536;
    std::vector<std::uint16_t> pixels(4 * levels);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint16_t>(i / 4);
    RequireSame(pixels, 0.3F, nullptr);
    const auto turned = Turned(CpuFeatures::All, pixels, 0.3F, nullptr);
    CHECK(std::equal(turned.begin(), turned.begin() + 4 * 16384, pixels.begin()));
}

TEST_CASE("rows of all lengths turn alike, and nothing beyond them") {
    std::mt19937 random(6);
    for (std::size_t length = 0; length < 40; ++length) {
        CAPTURE(length);
        std::vector<std::uint8_t> bytes(4 * 48);
        std::vector<std::uint16_t> words(4 * 48);
        for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
        for (auto& word : words) word = static_cast<std::uint16_t>(random() % 16384);
        const auto turned = [length](CpuFeatures features, auto row) {
            const test::ScopedCpuFeatures used(features);
            TurnHues(std::span(row).first(4 * length), 0.4F, nullptr);
            return row;
        };
        for (const CpuFeatures features : {CpuFeatures::Avx2, CpuFeatures::All}) {
            CHECK(turned(features, bytes) == turned(CpuFeatures::Plain, bytes));
            CHECK(turned(features, words) == turned(CpuFeatures::Plain, words));
        }
    }
}
