#include "chalkpane/filters/effects/pixellate_effect.h"

#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

TEST_CASE("Pixellate is its plain reference") {
    for (const int size : {2, 3, 10, 100}) {
        CAPTURE(size);
        PixellateEffect filter;
        SetNumber(filter, "Size", size);
        CompareWithReference(filter, [size](const Image& source, const Rect* region, bool /*expand*/) {
            return reference::Pixellate(source, size, region);
        });
    }
}

// Size 2 over columns -1 .. 3: blocks are -2 .. -1, 0 .. 1 and 2 .. 3, so the first has one column inside. Means: 9;
// (1 + 2 + 1) / 2 = 2; (10 + 13 + 1) / 2 = 12.
TEST_CASE("Squares stand at multiples of their size and round their mean") {
    Image source = Image::Mask(Rect(-1, 0, 3, 0), Depth::Eight);
    const std::uint8_t values[] = {9, 1, 2, 10, 13};
    std::copy(std::begin(values), std::end(values), source.Row8(0).begin());
    PixellateEffect filter;
    SetNumber(filter, "Size", 2);
    const auto result = Applied(filter, source);
    const auto row = result->Row8(0);
    CHECK(std::vector<int>(row.begin(), row.end()) == std::vector<int>{9, 2, 2, 12, 12});
}

TEST_CASE("Squares of one pixel are a plain copy, whatever the region") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
    const Rect region(2, 2, 4, 4);
    PixellateEffect filter;
    CHECK_FALSE(filter.IsActive());
    CHECK(SamePixels(*Applied(filter, source, &region), source));
    SetNumber(filter, "Size", 2);
    CHECK(filter.IsActive());
    CHECK(filter.MovesPixels());
}

// Size 2147483647 in a picture on both sides of 0 makes blocks from -2147483647 and from 0.
TEST_CASE("Squares of any size stay inside the picture") {
    const Image source = NoisePicture({-3, -3, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Straight, 3);
    PixellateEffect filter;
    SetNumber(filter, "Size", 2147483647);
    const auto huge = Applied(filter, source);
    SetNumber(filter, "Size", 70000);
    CHECK(SamePixels(*huge, *Applied(filter, source)));
    CHECK(SamePixels(*huge, reference::Pixellate(source, 1000, nullptr)));
    SetNumber(filter, "Size", -5);
    CHECK(SamePixels(*Applied(filter, source), source));
}

TEST_CASE("Pixellate reads the whole square although the region shows a part of it") {
    Image source = Image::Mask(4, 1, Depth::Eight);
    source.Row8(0)[3] = 200;
    PixellateEffect filter;
    SetNumber(filter, "Size", 4);
    const Rect region(0, 0, 1, 0);
    const auto result = Applied(filter, source, &region);
    CHECK(result->Bounds() == region);
    CHECK_EQ(result->Row8(0)[0], 50);
}
