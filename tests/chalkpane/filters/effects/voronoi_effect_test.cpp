#include "chalkpane/filters/effects/voronoi_effect.h"

#include <limits>
#include <set>

#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

void Set(Filter& filter, double spacing, double randomness, double edges) {
    SetNumber(filter, "Spacing", spacing);
    SetNumber(filter, "Randomness", randomness);
    SetNumber(filter, "Edges", edges);
}

}  // namespace

TEST_CASE("Stained glass is its plain reference") {
    struct Settings {
        double spacing;
        double randomness;
        double edges;
    };
    for (const Settings& s : {Settings{10.0, 0.0, 0.0}, Settings{1.0, 0.3, 0.5}, Settings{3.7, 1.0, 0.25},
                              Settings{12.0, 0.5, 1.0}, Settings{100.0, 0.2, 0.1}}) {
        CAPTURE(s.spacing);
        VoronoiEffect filter;
        Set(filter, s.spacing, s.randomness, s.edges);
        CompareWithReference(filter, [&s](const Image& source, const Rect* region, bool /*expand*/) {
            return reference::Voronoi(source, s.spacing, s.randomness, s.edges, region);
        });
    }
}

// Spacing 10, no randomness: centres of grid row 0 at y = 0 are ... -5, 5, 15 ... (even rows start at 5 - 20). Column
// 10 lies 5 from two of them and goes to the one that is met first, the left; column 0 goes to -5, which reads the
// source's edge.
TEST_CASE("Without randomness the cells are a regular grid") {
    Image source = Image::Colour(Rect(0, 0, 39, 0), Depth::Eight, AlphaForm::Straight);
    for (int x = 0; x < 40; ++x)
        for (int c = 0; c < 4; ++c) reference::Put(source, x, 0, c, x);
    VoronoiEffect filter;
    Set(filter, 10, 0, 0);
    const auto result = Applied(filter, source);
    for (int x = 0; x < 40; ++x) {
        CAPTURE(x);
        const int cell = x == 0 ? 0 : x <= 10 ? 5 : (x <= 20 ? 15 : (x <= 30 ? 25 : 35));
        CHECK_EQ(reference::Get(*result, x, 0, 0), cell);
        CHECK_EQ(reference::Get(*result, x, 0, 3), cell);
    }
}

// The same row with edges of 0.4 * 10 = 4 pixels: at column 10 both distances are 5, difference 0 < 3: black. At 12
// they are 7 and 3, difference 4: full colour. At 11: 6 and 4, difference 2 < 3: black. Alpha stays.
TEST_CASE("Between the cells runs a black line") {
    Image source = Image::Colour(Rect(0, 0, 39, 0), Depth::Eight, AlphaForm::Straight);
    for (int x = 0; x < 40; ++x)
        for (int c = 0; c < 4; ++c) reference::Put(source, x, 0, c, 200);
    VoronoiEffect filter;
    Set(filter, 10, 0, 0.4);
    const auto result = Applied(filter, source);
    CHECK((result->GetPixel8(10, 0) == Pixel8{0, 0, 0, 200}));
    CHECK((result->GetPixel8(11, 0) == Pixel8{0, 0, 0, 200}));
    CHECK((result->GetPixel8(12, 0) == Pixel8{200, 200, 200, 200}));
}

// 460 rows are eight bands of 64. With randomness 0 and at most a pixel to reach, some columns keep the row before.
TEST_CASE("Stained glass in bands, on several workers, is that of one row after the other") {
    const Image source = NoisePicture({-5, -77, 24, 382}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    for (const double spacing : {0.4, 0.9, 3.0, 12.0, 70.0}) {
        for (const double randomness : {0.0, 0.4, 1.0, 3.0}) {
            CAPTURE(spacing);
            CAPTURE(randomness);
            VoronoiEffect filter;
            Set(filter, spacing, randomness, 0.2);
            MultiProcessor::Restart(1);
            const auto wanted = Applied(filter, source);
            MultiProcessor::Restart(3);
            CHECK(SamePixels(*Applied(filter, source), *wanted));
        }
    }
    VoronoiEffect filter;
    Set(filter, 3.7, 1.0, 0.25);
    CHECK(SamePixels(*Applied(filter, source), reference::Voronoi(source, 3.7, 1.0, 0.25, nullptr)));
    MultiProcessor::Restart(0);
}

TEST_CASE("Two runs of stained glass on one picture are equal") {
    const Image source = NoisePicture({0, 0, 50, 50}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 3);
    VoronoiEffect filter;
    Set(filter, 8, 0.8, 0.3);
    CHECK(SamePixels(*Applied(filter, source), *Applied(filter, source)));
}

TEST_CASE("Stained glass takes any setting, anywhere in the plane") {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Rect& bounds :
         {Rect(-40000, -40000, -39995, -39995), Rect(2147483000, 2147483000, 2147483003, 2147483003),
          Rect(-2147483000, -2147483000, -2147482998, -2147482998)}) {
        const Image source = NoisePicture(bounds, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
        for (const double value : {-1e30, -1.0, 0.0, 1e-30, 1.0, 1e30, infinity, -infinity, std::nan("")})
            for (const char* label : {"Spacing", "Randomness", "Edges"}) {
                VoronoiEffect filter;
                SetNumber(filter, label, value);
                CHECK(Applied(filter, source));
            }
    }
}
