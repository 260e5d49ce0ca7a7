#include "module/image_conversion.h"

#include <doctest/doctest.h>

#include <array>
#include <limits>
#include <vector>

namespace chalkpane::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t alphaFormat = 6406;
constexpr std::int32_t rgbFormat = 6407;
constexpr std::int32_t rgbaFormat = 6408;

TEST_CASE("Alpha alone becomes white of that alpha") {
    const Bytes data{0, 7, 255};
    const std::uint8_t* pixels = ConvertImageToRgba(alphaFormat, 3, 1, data.data());
    CHECK_EQ(Bytes(pixels, pixels + 12), Bytes{255, 255, 255, 0, 255, 255, 255, 7, 255, 255, 255, 255});
}

TEST_CASE("Three colours keep their order and become opaque") {
    const Bytes data{1, 2, 3, 4, 5, 6};
    const std::uint8_t* pixels = ConvertImageToRgba(rgbFormat, 1, 2, data.data());
    CHECK_EQ(Bytes(pixels, pixels + 8), Bytes{1, 2, 3, 255, 4, 5, 6, 255});
}

TEST_CASE("Four channels are handed back as they are") {
    const Bytes data(16);
    CHECK_EQ(ConvertImageToRgba(rgbaFormat, 2, 2, data.data()), data.data());
}

TEST_CASE("An unknown format gives no picture") {
    const Bytes data(16);
    CHECK_EQ(ConvertImageToRgba(6409, 2, 2, data.data()), nullptr);
    CHECK_EQ(ConvertImageToRgba(-1, 2, 2, data.data()), nullptr);
}

TEST_CASE("Conversions share one buffer, which is good until the next one") {
    const Bytes first{10, 20, 30};
    const Bytes second{40, 50};
    const std::uint8_t* before = ConvertImageToRgba(alphaFormat, 3, 1, first.data());
    const std::uint8_t* after = ConvertImageToRgba(alphaFormat, 2, 1, second.data());
    CHECK_EQ(before, after);  // it does not shrink and need not grow
    CHECK_EQ(before[3], 40);
}

TEST_CASE("Sizes without pixels, sizes beyond all memory and missing data give no picture") {
    const Bytes data(16);
    constexpr std::int32_t huge = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t format : {alphaFormat, rgbFormat, rgbaFormat}) {
        CHECK_EQ(ConvertImageToRgba(format, 0, 2, data.data()), nullptr);
        CHECK_EQ(ConvertImageToRgba(format, 2, -1, data.data()), nullptr);
        CHECK_EQ(ConvertImageToRgba(format, -2, -2, data.data()), nullptr);
        CHECK_EQ(ConvertImageToRgba(format, 40000, 40000, data.data()), nullptr);
        CHECK_EQ(ConvertImageToRgba(format, huge, huge, data.data()), nullptr);
        CHECK_EQ(ConvertImageToRgba(format, 2, 2, nullptr), nullptr);
    }
}

}  // namespace
}  // namespace chalkpane::testing
