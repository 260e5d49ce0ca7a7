#include <doctest/doctest.h>

#include <cmath>
#include <memory>
#include <random>

#include "chalkpane/composite/settled_tiles.h"
#include "tests/chalkpane/brush/brush_fixture.h"
#include "tests/chalkpane/scoped_cpu_features.h"
#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

struct Stroke {
    int sourceType;
    int radius;
    double opacity;
};

void SetUp(BasicBrush& brush, Image& canvas, const Stroke& stroke) {
    brush.SetTarget(&canvas);
    brush.SetSourceType(stroke.sourceType);
    ValueOf(brush, BrushParameter::Opacity).setDouble(stroke.opacity);
    brush.SetColour({12000, 0, 16383});
    brush.SetSize(stroke.radius);
}

// One brush that paints alone and one that paints every dab, on canvases that are alike.
struct TwoBrushes {
    TwoBrushes(std::int32_t width, std::int32_t height, unsigned seed, const Stroke& stroke, SettledTiles& tiles)
        : alone(NewCanvas(width, height)) {
        reference::FillWithNoise(alone, seed);
        alone.Premultiply(alone);
        plain = alone.Clone();
        SetUp(aloneBrush, alone, stroke);
        SetUp(plainBrush, *plain, stroke);
        aloneBrush.PaintAlone(&tiles);
    }
    void RequireSameBegin(double x, double y) {
        REQUIRE_EQ(aloneBrush.BeginStroke(x, y, 1), plainBrush.BeginStroke(x, y, 1));
    }
    void RequireSameStep(double x, double y, double pressure) {
        REQUIRE_EQ(aloneBrush.ContinueStroke(x, y, pressure), plainBrush.ContinueStroke(x, y, pressure));
    }
    void ChangeColour() {
        for (BasicBrush* brush : {&aloneBrush, &plainBrush}) brush->SetColour({1000, 9000, 500});
    }
    void RequireSamePictures() const {
        REQUIRE(reference::Same(reference::Picture(alone), reference::Picture(*plain)));
    }

    Image alone;
    std::unique_ptr<Image> plain;
    BasicBrush aloneBrush{"Alone"};
    BasicBrush plainBrush{"Plain"};
};

}  // namespace

// A scribble in a small place, and a change of colour in the middle of it.
TEST_CASE("passing over settled tiles leaves the pixels and rectangles of painting every dab") {
    int settled = 0;
    for (unsigned seed = 1; seed <= 24; ++seed) {
        CAPTURE(seed);
        const test::ScopedCpuFeatures features(seed % 3 == 0 ? CpuFeatures::Plain : CpuFeatures::All);
        std::mt19937 random(seed);
        SettledTiles tiles;
        TwoBrushes brushes(72, 52, seed,
                           {.sourceType = seed % 4 == 0   ? 5
                                          : seed % 7 == 0 ? 6
                                                          : 0,
                            .radius = static_cast<int>(1 + random() % 40),
                            .opacity = seed % 5 == 0 ? 0.7 : 1.0},
                           tiles);
        std::uniform_real_distribution<double> place(-10, 80);
        brushes.RequireSameBegin(30, 30);
        for (int i = 0; i < 300; ++i) {
            const double x = place(random);
            if (i == 200) brushes.ChangeColour();
            brushes.RequireSameStep(x, place(random), 1);
            settled += tiles.Hold({32, 24, 39, 31}) ? 1 : 0;
        }
        brushes.RequireSamePictures();
    }
    CHECK_GT(settled, 300);
}

// Nearly on one line, whose rim never comes to rest; in part beside the canvas, as far as a wide dab reaches.
TEST_CASE("passing over settled pixels leaves the pixels and rectangles of painting every dab") {
    int held = 0;
    for (unsigned seed = 1; seed <= 36; ++seed) {
        CAPTURE(seed);
        const test::ScopedCpuFeatures features(seed % 3 == 0 ? CpuFeatures::Plain : CpuFeatures::All);
        std::mt19937 random(seed);
        const auto pixels = std::make_unique<SettledPixels>();
        SettledTiles tiles(pixels.get());
        const auto radius = static_cast<int>(seed % 6 == 5 ? 60 + random() % 200 : 1 + random() % 34);
        TwoBrushes brushes(
            160, 120, seed,
            {.sourceType = seed % 2 == 0 ? 5 : 0, .radius = radius, .opacity = seed % 5 == 0 ? 0.6 : 1.0}, tiles);
        std::uniform_real_distribution<double> nearby(0, seed % 4 == 0 ? 0 : 2);
        const double slope = std::tan(static_cast<double>(seed));
        brushes.RequireSameBegin(80, 60);
        for (int i = 0; i < 300; ++i) {
            const double way = std::abs(std::remainder(i * 17.0, 160.0)) - 40;
            const double x = 80 + way + nearby(random);
            const double y = 60 + slope * way + nearby(random);
            if (i == 250) brushes.ChangeColour();
            brushes.RequireSameStep(x, y, seed % 7 == 0 ? 0.5 + nearby(random) / 8 : 1);
            held += tiles.HeldLast() ? 1 : 0;
        }
        brushes.RequireSamePictures();
    }
    CHECK_GT(held, 500);
}
