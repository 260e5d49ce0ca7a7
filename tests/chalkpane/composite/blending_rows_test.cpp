#include <doctest/doctest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/image/unpremultiply_row.h"

using namespace chalkpane;

namespace {

using Row8 = std::vector<std::uint8_t>;
using Row14 = std::vector<std::uint16_t>;

Row8 Unpremultiplied8(const Row8& input) {
    Row8 output(input.size(), 7);
    UnpremultiplyRow8(static_cast<std::int32_t>(input.size() / 4), input, output);
    return output;
}
Row14 Unpremultiplied14(const Row14& input) {
    Row14 output(input.size(), 7);
    UnpremultiplyRow14(static_cast<std::int32_t>(input.size() / 4), input, output);
    return output;
}

}  // namespace

TEST_CASE("A mask becomes the alpha of a row of colours") {
    const Row8 colours{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    Row8 output(12, 0);
    MergeMaskRow8(output, 3, colours, Row8{50, 60, 70}, 1);
    CHECK(output == Row8{1, 2, 3, 50, 5, 6, 7, 60, 9, 10, 11, 70});
    const Row14 words{1, 2, 3, 4, 5, 6, 7, 8};
    Row14 deepOutput(8, 0);
    MergeMaskRow14(deepOutput, 2, words, Row14{16383, 500}, 1);
    CHECK(deepOutput == Row14{1, 2, 3, 16383, 5, 6, 7, 500});
}

TEST_CASE("The alpha of four-channel pixels serves as a mask with a step of 4") {
    const Row8 colours{1, 2, 3, 4, 5, 6, 7, 8};
    const Row8 pixels{0, 0, 0, 90, 0, 0, 0, 91};
    Row8 output(8, 0);
    MergeMaskRow8(output, 2, colours, std::span(pixels).subspan(3), 4);
    CHECK(output == Row8{1, 2, 3, 90, 5, 6, 7, 91});
}

TEST_CASE("No row is passed by a count too large, nor touched by one below 1") {
    Row8 output(8, 9);
    const Row8 untouched = output;
    MergeMaskRow8(output, 0, Row8(8, 1), Row8(2, 2), 1);
    MergeMaskRow8(output, -3, Row8(8, 1), Row8(2, 2), 1);
    UnpremultiplyRow8(-1, Row8(8, 1), output);
    CHECK(output == untouched);
    MergeMaskRow8(output, 100, Row8(8, 1), Row8(1, 2), 1);
    CHECK(output == Row8{1, 1, 1, 2, 9, 9, 9, 9});
    UnpremultiplyRow8(100, Row8{1, 2, 3, 255}, output);
    CHECK(output == Row8{1, 2, 3, 255, 9, 9, 9, 9});
    Row14 words(4, 9);
    UnpremultiplyRow14(100, Row14(8, 16383), words);
    CHECK(words == Row14(4, 16383));
}

TEST_CASE("Without alpha the 8-bit colour is black") { CHECK(Unpremultiplied8({200, 100, 50, 0}) == Row8{0, 0, 0, 0}); }

// (200 * 652) >> 8 = 509, limited; (30 * 652) >> 8 = 76.
TEST_CASE("8-bit colour is divided by alpha and limited") {
    CHECK(Unpremultiplied8({200, 30, 0, 100}) == Row8{255, 76, 0, 100});
    CHECK(Unpremultiplied8({200, 30, 1, 255}) == Row8{200, 30, 1, 255});
}

TEST_CASE("Every 8-bit colour under every alpha comes out by the table") {
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int colour = 0; colour < 256; ++colour) {
            const auto c = static_cast<std::uint8_t>(colour);
            const int factor = alpha == 0 ? 0 : 65280 / alpha;
            const auto wanted = static_cast<std::uint8_t>(alpha == 255 ? colour : std::min(colour * factor / 256, 255));
            const auto a = static_cast<std::uint8_t>(alpha);
            REQUIRE(Unpremultiplied8({c, 0, c, a}) == Row8{wanted, 0, wanted, a});
        }
}

TEST_CASE("Where 14-bit alpha is nothing or full, the output alpha is the red word") {
    CHECK(Unpremultiplied14({100, 200, 300, 0}) == Row14{100, 200, 300, 300});
    CHECK(Unpremultiplied14({100, 200, 300, 16383}) == Row14{100, 200, 300, 300});
}

// 4000 * (16383 / 8191) = 8000.49 rounds to 8000; 12000 goes beyond full scale.
TEST_CASE("Elsewhere 14-bit colour is divided and limited, and the output alpha stays as it was") {
    CHECK(Unpremultiplied14({4000, 12000, 0, 8191}) == Row14{8000, 16383, 0, 7});
}

// 16383 / 14 = 1170.2142857. 32-bit floats lie 1 / 8192 apart there, the nearest being 1170 + 1755 / 8192; 7 times it
// is 8191.49963, so the sum with a half is below 8192, while the exact 8191.5 would be rounded up.
TEST_CASE("The 14-bit factor is a 32-bit float") { CHECK_EQ(Unpremultiplied14({7, 0, 0, 14})[0], 8191); }

TEST_CASE("Random 14-bit pixels come out as by the plain formula") {
    constexpr std::uint32_t seed = 5;
    CAPTURE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 200000; ++i) {
        const auto colour = static_cast<std::uint16_t>(random() % 16384);
        const auto alpha = static_cast<std::uint16_t>(1 + random() % 16382);
        const float factor = static_cast<float>(16383.0 / alpha);
        const double rounded = static_cast<double>(colour) * static_cast<double>(factor) + 0.5;
        const auto wanted = static_cast<std::uint16_t>(rounded >= 16383 ? 16383 : static_cast<int>(rounded));
        CAPTURE(colour);
        CAPTURE(alpha);
        REQUIRE_EQ(Unpremultiplied14({0, colour, 0, alpha})[1], wanted);
    }
}

TEST_CASE("Rows may be unpremultiplied in place") {
    Row8 row{200, 30, 0, 100, 1, 2, 3, 255};
    UnpremultiplyRow8(2, row, row);
    CHECK(row == Row8{255, 76, 0, 100, 1, 2, 3, 255});
}
