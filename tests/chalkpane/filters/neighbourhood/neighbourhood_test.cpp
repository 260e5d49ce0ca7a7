#include <doctest/doctest.h>

#include <vector>

#include "chalkpane/filters/blurs/softener.h"
#include "chalkpane/filters/blurs/super_softener.h"
#include "chalkpane/filters/blurs/threshold_blur.h"
#include "chalkpane/filters/neighbourhood/dilate_filter.h"
#include "chalkpane/filters/neighbourhood/edge_detect_filter.h"
#include "chalkpane/filters/neighbourhood/median_filter.h"
#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/chalkpane/filters/wide_paths.h"
#include "tests/chalkpane/scoped_cpu_features.h"
#include "tests/reference/neighbourhood.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

Image MaskOf(std::int32_t width, std::int32_t height, const std::vector<int>& values) {
    Image image = Image::Mask(width, height, Depth::Eight);
    auto value = values.begin();
    for (std::int32_t y = height; y-- > 0;)
        for (std::int32_t x = 0; x < width; ++x) reference::Put(image, x, y, 0, *value++);
    return image;
}

// Values from the top row down.
std::vector<int> ValuesOf(const Image& image) {
    std::vector<int> values;
    for (std::int32_t y = image.y1; y >= image.y0; --y)
        for (std::int32_t x = image.x0; x <= image.x1; ++x) values.push_back(reference::Get(image, x, y, 0));
    return values;
}

}  // namespace

TEST_CASE("The blur is its plain reference") {
    for (const double softness : {1.0, 2.5, 7.0}) {
        CAPTURE(softness);
        Softener filter(softness);
        CompareWithReference(filter, [softness](const Image& source, const Rect* region, bool expand) {
            return reference::Blur(source, softness, region, expand);
        });
    }
}

TEST_CASE("A blur below one pixel is a plain copy") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
    Softener filter(0.9);
    CHECK_FALSE(filter.IsActive());
    CHECK(SamePixels(*Applied(filter, source), source));
}

// Softness 1: weights 1 and exp(-4) = 0.0183156, sum 1.0366313. Sides 256 * 0.0183156 / 1.0366313 + 0.5 = 5.02 -> 5,
// the middle 246.95 + 0.5 -> 247; they add up to 257, so the middle gives one back: 5, 246, 5. Down a column through a
// lone 255: (128 + 246 * 255) >> 8 = 245, beside it (128 + 5 * 255) >> 8 = 5. Along the rows: (128 + 246 * 245) >> 8 =
// 235 in the middle, (128 + 5 * 245) >> 8 = 5 beside, (128 + 246 * 5) >> 8 = 5 above, and (128 + 5 * 5) >> 8 = 0 in the
// corners.
TEST_CASE("A blur of one pixel has three taps that add up to 256") {
    const Image source = MaskOf(3, 3, {0, 0, 0, 0, 255, 0, 0, 0, 0});
    Softener filter(1.0);
    CHECK(ValuesOf(*Applied(filter, source)) == std::vector<int>{0, 5, 0, 5, 235, 5, 0, 5, 0});
}

TEST_CASE("A flat picture stays flat inside under the blur, and fades at its edge") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const int full = depth == Depth::Eight ? 255 : 16383;
        Image source = Image::Mask(60, 60, depth);
        source.FillChannel(1.0);
        for (const double softness : {1.0, 3.3, 10.0, 20.0}) {
            Softener filter(softness);
            const auto result = Applied(filter, source);
            CHECK_EQ(reference::Get(*result, 30, 30, 0), full);
            CHECK(reference::Get(*result, 0, 0, 0) < full);
        }
    }
}

TEST_CASE("The soft blur is its plain reference") {
    for (const double softness : {0.5, 1.7, 9.25, 40.0}) {
        for (const std::uint8_t passes : {std::uint8_t{1}, std::uint8_t{3}, std::uint8_t{4}}) {
            if (passes < 3 && softness < 1.0) continue;
            CAPTURE(softness);
            CAPTURE(static_cast<int>(passes));
            SuperSoftener filter(softness, passes);
            CompareWithReference(filter, [softness, passes](const Image& source, const Rect* region, bool expand) {
                return reference::SuperSoften(source, softness, passes, region, expand);
            });
        }
    }
}

// The pass for the fraction is made with three passes and more only.
TEST_CASE("Half a pixel of the coarse soft blur is a plain copy, of the high one it is not") {
    const Image source = MaskOf(3, 3, {0, 0, 0, 0, 200, 0, 0, 0, 0});
    SuperSoftener filter;
    SetNumber(filter, "Softness", 0.5);
    SetNumber(filter, "Quality", 0);
    CHECK(SamePixels(*Applied(filter, source), source));
    // Radii (i + 0.5) / 3 are 0; three taps with 0.5, gain 2: 100 in the middle and 50 beside it along the row. Down
    // the columns 100 / 2 = 50, 100 * 0.5 / 2 = 25, 50 / 2 = 25, 50 * 0.5 / 2 + 0.5 = 13.
    SetNumber(filter, "Quality", 2);
    CHECK(ValuesOf(*Applied(filter, source)) == std::vector<int>{13, 25, 13, 25, 50, 25, 13, 25, 13});
}

TEST_CASE("Smart blur leaves in the result what was there") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
    ThresholdBlur filter;
    SetNumber(filter, "Softness", 5);
    CHECK(filter.IsActive());
    std::unique_ptr<Image> result;
    filter.Apply(source, result, false, nullptr, true);
    CHECK_FALSE(result);
    result = source.Clone();
    const Image* const before = result.get();
    filter.Apply(source, result, false, nullptr, true);
    CHECK_EQ(result.get(), before);
}

TEST_CASE("The median is its plain reference") {
    for (const int radius : {1, 2, 3, 7, 8}) {
        CAPTURE(radius);
        MedianFilter filter;
        SetNumber(filter, "Radius", radius);
        CompareWithReference(
            filter,
            [radius](const Image& source, const Rect* region, bool expand) {
                return reference::Median(source, radius, region, expand);
            },
            false);
    }
}

// Rows longer than the pieces in which columns are sorted, and values few enough for medians at the ends of bins.
TEST_CASE("Medians are the same with wide registers and without, at every size of window") {
    for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
        for (const std::int32_t width : {7, 33, 700}) {
            Image source = NoisePicture({-5, 2, width - 6, 13}, type, Depth::Eight, AlphaForm::Straight, 17);
            for (std::int32_t y = 2; y < 8; ++y)
                for (auto& value : source.Row8(y)) value = static_cast<std::uint8_t>((value & 0x30) + 15);
            for (const int radius : {1, 2, 3, 6, 7, 20, 127}) {
                MedianFilter filter;
                SetNumber(filter, "Radius", radius);
                const auto wide = Applied(filter, source);
                const ScopedCpuFeatures plain(CpuFeatures::Plain);
                CAPTURE(type);
                CAPTURE(width);
                CAPTURE(radius);
                CHECK(SamePixels(*wide, *Applied(filter, source)));
            }
        }
    }
}

TEST_CASE("The median of one pixel is the pixel, whatever the radius") {
    MedianFilter filter;
    SetNumber(filter, "Radius", 20);
    CHECK(ValuesOf(*Applied(filter, MaskOf(1, 1, {173}))) == std::vector<int>{173});
}

// Nine values, half of them is 4: four 10s fill the lowest bin of 16 exactly, so the search ends there at its top, 15,
// although the fifth value is 200.
TEST_CASE("A median at the end of a bin of 16 is the top of the bin") {
    MedianFilter filter;
    SetNumber(filter, "Radius", 1);
    const auto result = Applied(filter, MaskOf(3, 3, {10, 10, 200, 10, 200, 200, 10, 200, 200}));
    CHECK_EQ(reference::Get(*result, 1, 1, 0), 15);
}

TEST_CASE("A median of radius 0 is a plain copy") {
    MedianFilter filter;
    const Image source = MaskOf(3, 1, {1, 200, 3});
    CHECK(SamePixels(*Applied(filter, source), source));
}

TEST_CASE("Edge detection is its plain reference") {
    for (const double brightness : {0.0, 1.3, 5.0, 10.0}) {
        CAPTURE(brightness);
        EdgeDetectFilter filter;
        SetNumber(filter, "Brightness", brightness);
        CompareWithReference(filter, [brightness](const Image& source, const Rect* region, bool expand) {
            return reference::EdgeDetect(source, brightness, region, expand);
        });
    }
}

TEST_CASE("Edges are the same with and without the forms for wider registers, of words above full scale too") {
    for (const double brightness : {-1.0, 0.0, 0.37, 5.0, 10.0, 1e9}) {
        CAPTURE(brightness);
        EdgeDetectFilter filter;
        SetNumber(filter, "Brightness", brightness);
        CompareWithPlainForms(filter);
    }
}

// A slope that rises to the right: inside, gx = (0 + 0 + 0) - (100 + 200 + 100) = -400 counts as 0, on the rim as 400.
// At brightness 10 the factor is 1: rim pixels of the middle column at top and bottom reach 255, the middle one is 0.
TEST_CASE("Inside, a horizontal slope counts one way only; on the rim both ways") {
    EdgeDetectFilter filter;
    SetNumber(filter, "Brightness", 10);
    const Image rising = MaskOf(3, 3, {0, 50, 100, 0, 50, 100, 0, 50, 100});
    CHECK(ValuesOf(*Applied(filter, rising)) == std::vector<int>{200, 255, 200, 200, 0, 200, 200, 255, 200});
    const Image falling = MaskOf(3, 3, {100, 50, 0, 100, 50, 0, 100, 50, 0});
    CHECK_EQ(reference::Get(*Applied(filter, falling), 1, 1, 0), 255);
}

// Lower 200 above upper 100: 150 is at or above the upper threshold, but below the lower one, which is asked first. The
// radius below 1 leaves the matte unblurred; softness 0 turns it black or white.
TEST_CASE("Crossed thresholds: below the lower one is black") {
    DilateFilter filter;
    SetNumber(filter, "Radius", 0.5);
    SetNumber(filter, "Lower Threshold", 200);
    SetNumber(filter, "Upper Threshold", 100);
    CHECK(ValuesOf(*Applied(filter, MaskOf(3, 1, {150, 199, 200}))) == std::vector<int>{0, 0, 255});
}

// Luma of (B 10, G 20, R 30) is (77 * 30 + 151 * 20 + 28 * 10) >> 8 = 5610 >> 8 = 21, of white 255. Between thresholds
// 0 and 256 nothing changes; softness 100 maps v to (v - 27) * 255 / 200 above 27: 21 gives 0, 255 is above 227 and
// gives 255.
TEST_CASE("Dilation leaves a matte of grey, opaque pixels") {
    Image source = Image::Colour(2, 1, Depth::Eight, AlphaForm::Straight);
    const std::uint8_t pixels[] = {10, 20, 30, 40, 255, 255, 255, 0};
    std::copy(std::begin(pixels), std::end(pixels), source.Row8(0).begin());
    DilateFilter filter;
    SetNumber(filter, "Radius", 0.5);
    SetNumber(filter, "Lower Threshold", 0);
    SetNumber(filter, "Upper Threshold", 256);
    SetNumber(filter, "Softness", 100);
    const auto result = Applied(filter, source);
    CHECK((result->GetPixel8(0, 0) == Pixel8{0, 0, 0, 255}));
    CHECK((result->GetPixel8(1, 0) == Pixel8{255, 255, 255, 255}));
}

// Softness 20: 127 - 20 = 107 .. 147; 127 gives (127 - 107) * 255 / 40 = 127, 107 gives 0, 148 gives 255.
TEST_CASE("Dilation ramps between the softened thresholds") {
    DilateFilter filter;
    SetNumber(filter, "Radius", 0.5);
    SetNumber(filter, "Lower Threshold", 0);
    SetNumber(filter, "Upper Threshold", 256);
    SetNumber(filter, "Softness", 20);
    CHECK(ValuesOf(*Applied(filter, MaskOf(4, 1, {107, 127, 147, 148}))) == std::vector<int>{0, 127, 255, 255});
}

TEST_CASE("Dilation with a region and expansion grows beyond the region") {
    DilateFilter filter;
    SetNumber(filter, "Radius", 2.5);
    const Image source = NoisePicture({0, 0, 20, 20}, PixelType::Mask, Depth::Eight, AlphaForm::Straight, 5);
    const Rect region(4, 4, 10, 10);
    CHECK(Applied(filter, source, &region, true)->Bounds() == Rect(1, 1, 13, 13));
    CHECK(Applied(filter, source, &region, false)->Bounds() == region);
}

TEST_CASE("A region beside the picture gives a blank picture of the source's bounds") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
    const Rect beside(20, 20, 30, 30);
    const Rect reversed(6, 6, 2, 2);
    Softener softener(3.0);
    SuperSoftener superSoftener(3.0, 3);
    MedianFilter median;
    SetNumber(median, "Radius", 2);
    DilateFilter dilate;
    EdgeDetectFilter edges;
    for (Filter* filter :
         {static_cast<Filter*>(&softener), static_cast<Filter*>(&superSoftener), static_cast<Filter*>(&median),
          static_cast<Filter*>(&dilate), static_cast<Filter*>(&edges)}) {
        for (const Rect& region : {beside, reversed}) {
            const auto result = Applied(*filter, source, &region, true);
            REQUIRE(result);
            CHECK(SamePixels(*result, Image(source.Bounds(), source)));
        }
    }
}

TEST_CASE("Filters say their support radius") {
    Softener softener(3.2);
    CHECK(softener.InputRegion({}, {0, 0, 1, 1}) == Rect(-4, -4, 5, 5));
    SuperSoftener superSoftener(0.5, 3);
    CHECK(superSoftener.OutputRegion({}, {0, 0, 1, 1}) == Rect(-1, -1, 2, 2));
    DilateFilter dilate;
    SetNumber(dilate, "Radius", 2.9);
    CHECK(dilate.InputRegion({}, {0, 0, 1, 1}) == Rect(-2, -2, 3, 3));
    EdgeDetectFilter edges;
    CHECK(edges.OutputRegion({}, {0, 0, 1, 1}) == Rect(-1, -1, 2, 2));
    ThresholdBlur smart;
    SetNumber(smart, "Softness", 4);
    CHECK(smart.InputRegion({}, {0, 0, 1, 1}) == Rect(-4, -4, 5, 5));
    CHECK(smart.OutputRegion({}, {0, 0, 1, 1}) == Rect(0, 0, 1, 1));
}
