#include "chalkpane/filters/effects/emboss_effect.h"

#include <limits>

#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/chalkpane/filters/wide_paths.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

void SetColour(Filter& filter, const Colour& colour) {
    SetParameter(filter, "Color", [&colour](ParameterValue& value) { value.setColour(colour); });
}

// Opaque grey.
Image Grey(std::int32_t width, std::int32_t height, Depth depth, int level) {
    Image image = Image::Colour(width, height, depth, AlphaForm::Straight);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c) reference::Put(image, x, y, c, c == 3 ? reference::FullScale(image) : level);
    return image;
}

}  // namespace

TEST_CASE("Emboss is its plain reference") {
    const std::vector<reference::EmbossSettings> settings{
        {90.0F, 30.0F, 0.5F, {16383, 8000, 300}, 0.0F},     {225.0F, 45.0F, 1.0F, {100, 16000, 9000}, 0.7F},
        {10.0F, 90.0F, 0.02F, {100, 16000, 9000}, 1.0F},    {300.0F, 0.0F, 0.1F, {16383, 16383, 16383}, 0.25F},
        {45.0F, 60.0F, 0.0F, {16383, 16383, 16383}, 0.25F},
    };
    for (const auto& s : settings) {
        CAPTURE(s.direction);
        EmbossEffect filter;
        SetNumber(filter, "Light Direction", s.direction);
        SetNumber(filter, "Light Elevation", s.elevation);
        SetNumber(filter, "Bump Height", s.bump);
        SetNumber(filter, "Mix With Image", s.mix);
        SetColour(filter, {static_cast<std::uint16_t>(s.bgr[2]), static_cast<std::uint16_t>(s.bgr[1]),
                           static_cast<std::uint16_t>(s.bgr[0])});
        CompareWithReference(filter, [&s](const Image& source, const Rect* region, bool /*expand*/) {
            return reference::Emboss(source, s, region);
        });
    }
}

TEST_CASE("Emboss is the same with and without the forms for wider registers, of words above full scale too") {
    for (const double bump : {-0.3, 1e-7, 0.01, 0.5, 1.0}) {
        for (const double elevation : {-40.0, 0.0, 35.0, 90.0}) {
            CAPTURE(bump);
            CAPTURE(elevation);
            EmbossEffect filter;
            SetNumber(filter, "Light Direction", 200);
            SetNumber(filter, "Light Elevation", elevation);
            SetNumber(filter, "Bump Height", bump);
            SetNumber(filter, "Mix With Image", 0.6);
            SetColour(filter, {16383, 8000, 300});
            CompareWithPlainForms(filter);
        }
    }
}

// Elevation 90: Lz = sin(90) * 255.9 truncated = 255, and 255 / 255 lets the whole colour through. 14 bits: 16383.
// The colour's 16383 >> 6 = 255, 8000 >> 6 = 125, 64 >> 6 = 1.
TEST_CASE("A flat picture under light from above takes the colour itself") {
    EmbossEffect filter;
    SetNumber(filter, "Light Elevation", 90);
    SetColour(filter, {16383, 8000, 64});
    CHECK((Applied(filter, Grey(3, 3, Depth::Eight, 90))->GetPixel8(1, 1) == Pixel8{1, 125, 255, 255}));
    CHECK((Applied(filter, Grey(3, 3, Depth::Fourteen, 90))->GetPixel14(1, 1) == Pixel14{64, 8000, 16383, 16383}));
}

// Light along +y: Ly = 255.9 truncated = 255 at elevation 0, Lz = 0, Lx = 0. The slope: the row below (y = 0) is 90,
// the one above black: Ny = 0.33333 * 3 * 270 = 269.9973 truncated = 269. Nz = 6 * 255 / (3 * 1) = 510. Shade = 269 *
// 255 / sqrt(269 * 269 + 510 * 510) = 68595 / 576.59 = 118.97 truncated = 118. White times 118 / 255 = 118 or, where
// the quotient rounds down, 117.
TEST_CASE("The row that follows is the one below") {
    Image source = Grey(3, 3, Depth::Eight, 0);
    for (int x = 0; x < 3; ++x)
        for (int c = 0; c < 3; ++c) reference::Put(source, x, 0, c, 90);
    EmbossEffect filter;
    SetNumber(filter, "Light Elevation", 0);
    SetNumber(filter, "Bump Height", 1);
    SetColour(filter, {16383, 16383, 16383});
    const auto lit = Applied(filter, source);
    CHECK(reference::Get(*lit, 1, 1, 0) >= 117);
    CHECK(reference::Get(*lit, 1, 1, 0) <= 118);
    CHECK_EQ(reference::Get(*lit, 0, 1, 0), 0);  // the rim has the background's shade, 0
    SetNumber(filter, "Light Direction", 270);
    CHECK_EQ(reference::Get(*Applied(filter, source), 1, 1, 0), 0);  // facing away from the light
}

// A bump of 0.0001: Nz = 6 * 16383 / 0.0003 = 327,660,000, whose square needs 57 bits; the shade stays close to Lz.
TEST_CASE("A flat bump keeps the background's shade at 14 bits") {
    Image source = Grey(5, 5, Depth::Fourteen, 0);
    reference::Put(source, 1, 2, 0, 16383);
    EmbossEffect filter;
    SetNumber(filter, "Light Elevation", 90);
    SetNumber(filter, "Bump Height", 0.0001);
    SetColour(filter, {16383, 16383, 16383});
    CHECK(reference::Get(*Applied(filter, source), 2, 2, 0) >= 16380);
}

TEST_CASE("Emboss clears colour under alpha 0") {
    Image source = Image::Colour(1, 1, Depth::Eight, AlphaForm::Straight);
    source.Row8(0)[0] = 77;
    EmbossEffect filter;
    SetNumber(filter, "Mix With Image", 1);
    CHECK((Applied(filter, source)->GetPixel8(0, 0) == Pixel8{0, 0, 0, 0}));
}

TEST_CASE("Emboss takes any setting") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 3);
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {-1e30, -1.0, 1e-30, 1e30, infinity, -infinity, std::nan("")})
        for (const char* label : {"Light Direction", "Light Elevation", "Bump Height", "Mix With Image"}) {
            EmbossEffect filter;
            SetNumber(filter, label, value);
            CHECK(Applied(filter, source));
        }
}
