#include "chalkpane/filters/effects/halftone_effect.h"

#include <limits>

#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

void Set(Filter& filter, const reference::HalftoneSettings& s) {
    SetNumber(filter, "Size", s.size);
    SetNumber(filter, "Softness", s.softness);
    SetNumber(filter, "Shape", s.shape);
    SetNumber(filter, "Color", s.colour ? 1 : 0);
    SetNumber(filter, "Red/Black Angle", s.angles[0]);
    SetNumber(filter, "Green Angle", s.angles[1]);
    SetNumber(filter, "Blue Angle", s.angles[2]);
}

// One row of opaque pixels of one grey.
Image GreyRow(std::int32_t width, std::uint8_t grey) {
    Image image = Image::Colour(width, 1, Depth::Eight, AlphaForm::Straight);
    for (std::size_t i = 0; i < image.Row8(0).size(); ++i) image.Row8(0)[i] = i % 4 == 3 ? 255 : grey;
    return image;
}

}  // namespace

TEST_CASE("Halftone is its plain reference in all shapes") {
    for (const int shape : {0, 1, 2, 3}) {
        for (const auto& [size, softness, colour] :
             {std::tuple{2, 0.0F, false}, std::tuple{10, 0.3F, true}, std::tuple{7, 1.0F, false},
              std::tuple{10, 0.3F, false}, std::tuple{31, 0.05F, true}}) {
            const reference::HalftoneSettings settings{size, softness, shape, colour, {15.0F, 75.0F, 210.0F}};
            CAPTURE(shape);
            CAPTURE(settings.size);
            HalftoneEffect filter;
            Set(filter, settings);
            CompareWithReference(filter, [&settings](const Image& source, const Rect* region, bool /*expand*/) {
                return reference::Halftone(source, settings, region);
            });
        }
    }
}

// Size 2, circle: u and v are -1 or 0, so values are -1, 0, 0, 1 in storage order. Descending: place 3 gets 0 * 255 / 4
// = 0, place 1 gets 63, place 2 127, place 0 191. Row 0 shows places 0 and 1 in turn: 150 lies below 191 and above 63.
TEST_CASE("Thresholds of the circle are ranks") {
    HalftoneEffect filter;
    Set(filter, {2, 0.0F, 1, false, {}});
    const auto result = Applied(filter, GreyRow(4, 150));
    CHECK((result->GetPixel8(0, 0) == Pixel8{0, 0, 0, 255}));
    CHECK((result->GetPixel8(1, 0) == Pixel8{255, 255, 255, 255}));
    CHECK((result->GetPixel8(2, 0) == Pixel8{0, 0, 0, 255}));
}

// Line of size 2: row 0 has |v| = 1, threshold 254. Colour 254 - without softness - is neither above nor below: 0 / 0,
// stored as 0; 255 is above.
TEST_CASE("Without softness a level on its threshold becomes 0") {
    HalftoneEffect filter;
    Set(filter, {2, 0.0F, 0, true, {}});
    CHECK_EQ(Applied(filter, GreyRow(1, 254))->GetPixel8(0, 0).green, 0);
    CHECK_EQ(Applied(filter, GreyRow(1, 255))->GetPixel8(0, 0).green, 255);
}

// Softness 0.3: h = 38. Line of size 10, row 0: threshold 254. 240 lies within 38 below: (240 - 254) * 255 / 76 < 0 ->
// 0. KEEP: the ramp starts at the threshold, not at the lower end. Row 5: v = 0, threshold 0; 20 -> 20 * 255 / 76
// = 67.1.
TEST_CASE("The soft ramp rises from the threshold on") {
    HalftoneEffect filter;
    Set(filter, {10, 0.3F, 0, true, {}});
    CHECK_EQ(Applied(filter, GreyRow(1, 240))->GetPixel8(0, 0).green, 0);
    Image source = Image::Colour(Rect(0, 5, 0, 5), Depth::Eight, AlphaForm::Straight);
    for (auto& channel : source.Row8(5)) channel = 20;
    CHECK((Applied(filter, source)->GetPixel8(0, 5) == Pixel8{67, 67, 67, 20}));
}

TEST_CASE("The angles of green and blue are offered in colour only") {
    HalftoneEffect filter;
    const auto enabled = [&filter](std::string_view label) {
        bool answer = false;
        SetParameter(filter, label, [&answer](ParameterValue& value) { answer = value.isEnabled(); });
        return answer;
    };
    filter.valuesChanged();  // nothing to switch yet
    SetNumber(filter, "Color", 0);
    filter.valuesChanged();
    CHECK_FALSE(enabled("Green Angle"));
    CHECK_FALSE(enabled("Blue Angle"));
    CHECK(enabled("Red/Black Angle"));
    SetNumber(filter, "Color", 1);
    filter.valuesChanged();
    CHECK(enabled("Green Angle"));
    CHECK(enabled("Blue Angle"));
}

TEST_CASE("Halftone takes any setting, anywhere in the plane") {
    const double infinity = std::numeric_limits<double>::infinity();
    const Image far = NoisePicture({2147483000, -2147483000, 2147483003, -2147482998}, PixelType::Colour,
                                   Depth::Fourteen, AlphaForm::Premultiplied, 3);
    for (const double value : {-1e30, -1.0, 0.0, 1.0, 1e30, infinity, -infinity, std::nan("")})
        for (const char* label : {"Softness", "Red/Black Angle"}) {
            HalftoneEffect filter;
            SetNumber(filter, label, value);
            CHECK(Applied(filter, far));
        }
    for (const double size : {-2147483648.0, -1.0, 0.0, 1.0, 2147483647.0}) {
        HalftoneEffect filter;
        SetNumber(filter, "Size", size);
        SetNumber(filter, "Shape", 200);
        CHECK(Applied(filter, far));
    }
}
