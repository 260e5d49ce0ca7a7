#include <doctest/doctest.h>

#include <random>

#include "chalkpane/composite/settled_tiles.h"
#include "tests/chalkpane/brush/brush_fixture.h"
#include "tests/chalkpane/scoped_cpu_features.h"
#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

void SetUp(BasicBrush& brush, Image& canvas, int sourceType, int radius, double opacity) {
    brush.SetTarget(&canvas);
    brush.SetSourceType(sourceType);
    ValueOf(brush, BrushParameter::Opacity).setDouble(opacity);
    brush.SetColour({12000, 0, 16383});
    brush.SetSize(radius);
}

}  // namespace

// A scribble in a small place, and a change of colour in the middle of it.
TEST_CASE("passing over settled tiles leaves the pixels and rectangles of painting every dab") {
    int settled = 0;
    for (unsigned seed = 1; seed <= 24; ++seed) {
        CAPTURE(seed);
        const test::ScopedCpuFeatures features(seed % 3 == 0 ? CpuFeatures::Plain : CpuFeatures::All);
        std::mt19937 random(seed);
        const int sourceType = seed % 4 == 0 ? 5 : seed % 7 == 0 ? 6 : 0;
        const int radius = static_cast<int>(1 + random() % 40);
        const double opacity = seed % 5 == 0 ? 0.7 : 1.0;
        Image alone = NewCanvas(72, 52);
        reference::FillWithNoise(alone, seed);
        alone.Premultiply(alone);
        const auto plain = alone.Clone();
        BasicBrush aloneBrush("Alone");
        BasicBrush plainBrush("Plain");
        SetUp(aloneBrush, alone, sourceType, radius, opacity);
        SetUp(plainBrush, *plain, sourceType, radius, opacity);
        SettledTiles tiles;
        aloneBrush.PaintAlone(&tiles);
        std::uniform_real_distribution<double> place(-10, 80);
        REQUIRE_EQ(aloneBrush.BeginStroke(30, 30, 1), plainBrush.BeginStroke(30, 30, 1));
        for (int i = 0; i < 300; ++i) {
            const double x = place(random);
            const double y = place(random);
            if (i == 200)
                for (BasicBrush* brush : {&aloneBrush, &plainBrush}) brush->SetColour({1000, 9000, 500});
            REQUIRE_EQ(aloneBrush.ContinueStroke(x, y, 1), plainBrush.ContinueStroke(x, y, 1));
            settled += tiles.Hold({32, 24, 39, 31}) ? 1 : 0;
        }
        REQUIRE(reference::Same(reference::Picture(alone), reference::Picture(*plain)));
    }
    CHECK_GT(settled, 300);
}
