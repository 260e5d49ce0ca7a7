#include "chalkpane/filters/blurs/super_softener.h"

#include <doctest/doctest.h>

#include <algorithm>

#include "tests/chalkpane/filters/wide_paths.h"

using namespace chalkpane;

// Strips of four rows and what is left of them, ends of rows that are no four pixels, and a tap for what the softness
// has after the point.
TEST_CASE("Super Soften makes the same of any picture in all its forms") {
    for (const double softness : {1.0, 5.5}) {
        CAPTURE(softness);
        SuperSoftener filter(softness, softness > 3.0 ? 3 : 1);
        test::CompareWithPlainForms(filter);
    }
}

// More passes than a float's range: infinity divided by itself is no number, which is 0.
TEST_CASE("Super Soften makes the same of what no float holds in all its forms") {
    SuperSoftener filter(200.0, 60);  // the gain is 7^40 * 9^20, some 10^53
    const Image source =
        test::NoisePicture(Rect(0, 0, 20, 9), PixelType::Colour, Depth::Fourteen, AlphaForm::Straight, 13);
    const auto made = [&](CpuFeatures features) {
        const test::ScopedCpuFeatures used(features);
        return test::Applied(filter, source);
    };
    const auto plain = made(CpuFeatures::Plain);
    for (std::int32_t y = plain->y0; y <= plain->y1; ++y)
        CHECK(std::ranges::all_of(plain->Row14(y), [](std::uint16_t channel) { return channel == 0; }));
    CHECK(test::SamePixels(*made(CpuFeatures::Avx2), *plain));
    CHECK(test::SamePixels(*made(CpuFeatures::All), *plain));
}
