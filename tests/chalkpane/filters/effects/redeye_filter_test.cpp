#include "chalkpane/filters/effects/redeye_filter.h"

#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

TEST_CASE("Red-eye removal is its plain reference") {
    for (const float sensitivity : {0.0F, 0.05F, 1.0F, 40.0F}) {
        CAPTURE(sensitivity);
        RedeyeFilter filter;
        SetNumber(filter, "Sensitivity", sensitivity);
        CompareWithReference(filter, [sensitivity](const Image& source, const Rect* region, bool /*expand*/) {
            return reference::FloatFiltered(source, region, [&](int, int, float& a, float& r, float& g, float& b) {
                const float k = r * 0.5133333F;
                if (a != 0.0F && g - sensitivity <= k && b * 0.1933333F - sensitivity <= k)
                    r = ((g + b * 0.1933333F) * 0.5F) / 0.5133333F;
            });
        });
    }
}

// Red 200: k = 102.67. Green 60 and blue 40 * 0.1933333 = 7.733 lie below: red = (60 + 7.733) * 0.5 / 0.5133333
// = 65.97. Green 103 lies 0.33 above k: red stays at sensitivity 0, and falls at 1: (103 + 7.733) * 0.5 / 0.5133333 =
// 107.86.
TEST_CASE("Red falls to the level of green and blue where it stands out") {
    Image source = Image::Colour(1, 1, Depth::Eight, AlphaForm::Straight);
    const auto redWith = [&source](std::uint8_t green, std::uint8_t alpha, double sensitivity) {
        const std::uint8_t pixel[] = {40, green, 200, alpha};
        std::copy(std::begin(pixel), std::end(pixel), source.Row8(0).begin());
        RedeyeFilter filter;
        SetNumber(filter, "Sensitivity", sensitivity);
        return static_cast<int>(Applied(filter, source)->GetPixel8(0, 0).red);
    };
    CHECK_EQ(redWith(60, 255, 0), 65);
    CHECK_EQ(redWith(103, 255, 0), 200);
    CHECK_EQ(redWith(103, 255, 1), 107);
    CHECK_EQ(redWith(60, 0, 0), 200);  // nothing shows under alpha 0
    CHECK_EQ(redWith(103, 255, 1e30), 107);
}

TEST_CASE("A fresh red-eye filter has no margin") {
    RedeyeFilter filter;
    RedeyeFilter none;
    SetNumber(none, "Sensitivity", 0);
    CHECK(filter.Equals(none));
    SetNumber(none, "Sensitivity", 0.05);
    CHECK(filter.Differs(none));
}
