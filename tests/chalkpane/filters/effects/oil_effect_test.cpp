#include "chalkpane/filters/effects/oil_effect.h"

#include "tests/address_checks.h"
#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

TEST_CASE("Oil is its plain reference") {
    for (const int radius : {1, 3, 5, 9}) {
        for (const int levels : {2, 17, 100, 255}) {
            for (const bool intensity : {true, false}) {
                if (radius > 3 && levels != 17) continue;
                if (radius > 5 && tests::hasAddressChecks) continue;  // the reference takes half a minute, there
                CAPTURE(radius);
                CAPTURE(levels);
                CAPTURE(intensity);
                OilEffect filter;
                SetNumber(filter, "Radius", radius);
                SetNumber(filter, "Levels", levels);
                SetNumber(filter, "Use Intensity", intensity ? 1 : 0);
                CompareWithReference(
                    filter,
                    [&](const Image& source, const Rect* region, bool /*expand*/) {
                        return reference::Oil(source, radius, levels, intensity, region);
                    },
                    false);
            }
        }
    }
}

TEST_CASE("Oil with all levels and radius 0 is a plain copy") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
    OilEffect filter;
    SetNumber(filter, "Levels", 255);
    SetNumber(filter, "Radius", 0);
    CHECK(SamePixels(*Applied(filter, source), source));
}

// Blue of 10, 100, 200 in one row, which the window of radius 1 sees three times: in the middle each tone counts 3, and
// at the right the edge's 200 counts twice as often as 100.
TEST_CASE("Among equally full tones the darkest wins") {
    Image source = Image::Colour(3, 1, Depth::Eight, AlphaForm::Straight);
    auto row = source.Row8(0);
    row[0] = 10;
    row[4] = 100;
    row[8] = 200;
    OilEffect filter;
    SetNumber(filter, "Use Intensity", 0);
    const auto result = Applied(filter, source);
    CHECK_EQ(result->Row8(0)[4], 10);
    CHECK_EQ(result->Row8(0)[8], 200);
}

TEST_CASE("Oil works in 8 bits and takes any setting") {
    const Image deep = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 3);
    OilEffect filter;
    CHECK_EQ(filter.PreferredDepth(1), 0);
    CHECK(SamePixels(*Applied(filter, deep), *Applied(filter, *deep.Convert(Rect(), Depth::Eight))));
    for (const double value : {-2147483648.0, -1.0, 0.0, 2147483647.0})
        for (const char* label : {"Radius", "Levels"}) {
            OilEffect hostile;
            SetNumber(hostile, label, value);
            CHECK(Applied(hostile, deep));
        }
}
