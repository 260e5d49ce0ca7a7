#include "chalkpane/filters/distort/jitter_effect.h"

#include <limits>

#include "chalkpane/filters/noise/grain_random.h"
#include "chalkpane/transform/transformer.h"
#include "tests/chalkpane/filters/reference_comparison.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

void Set(Filter& filter, double angle, double zoom, double moveX, double moveY) {
    SetNumber(filter, "Max Angle", angle);
    SetNumber(filter, "Max Zoom", zoom);
    SetNumber(filter, "Max Move X", moveX);
    SetNumber(filter, "Max Move Y", moveY);
}

// The picture that a seed leads to; `seed` becomes the next one.
std::unique_ptr<Image> Jittered(const Image& source, std::uint32_t& seed, float angle, double zoom, double moveX,
                                double moveY) {
    GrainRandom random(seed);
    double draws[4];
    for (double& draw : draws) draw = (random.Next() & 0x7fffu) / 16384.0 - 1.0;
    seed = random.Next();
    const double x = (source.x0 + source.x1) * 0.5;
    const double y = (source.y0 + source.y1) * 0.5;
    const double scale = draws[1] * zoom / 100.0 + 1.0;
    Transformer transformer;
    transformer.SetTransform(x, y, x + draws[2] * moveX, y + draws[3] * moveY, scale, scale,
                             static_cast<float>(draws[0]) * angle);
    Rect area;
    return transformer.Apply(source, area);
}

}  // namespace

TEST_CASE("Jitter draws turn, zoom and move, and goes on from the fifth number") {
    for (const auto& [bounds, type, depth, flag] : PictureCases()) {
        const Image source = NoisePicture(bounds, type, depth, flag, 7);
        JitterEffect filter;
        Set(filter, 25, 40, 5, -12);
        std::uint32_t seed = 0;
        for (int run = 0; run < 3; ++run) {
            CAPTURE(run);
            const auto wanted = Jittered(source, seed, 25.0F, 40, 5, -12);
            CHECK(SamePixels(*Applied(filter, source), *wanted));
        }
    }
}

// Seed 0: a = 3, b = 1, c = 1. Draws: 30903 + 3 = 30906; 30903 * 30903 + 3 = 954995412, low 15 bits 4820 (29144 * 32768
// = 954990592). Third: t = 3 * 3 = 9; c = (954995409 >> 16) + (954995409 & 65535) * 30903 = 14572 + 4817 * 30903 =
// 148874323; + 9 = 148874332, low 15 bits 148874332 - 4543 * 32768 = 9308: 9308 / 16384 - 1 = -0.431884. A move of 64 x
// that is -27.64.
TEST_CASE("The third draw moves along x") {
    Image source = Image::Mask(Rect(0, 0, 0, 0), Depth::Eight);
    source.Row8(0)[0] = 255;
    JitterEffect filter;
    Set(filter, 0, 0, 64, 0);
    const auto result = Applied(filter, source);
    CHECK(result->Contains(-28, 0));
    CHECK(result->Contains(-27, 0));
    CHECK_FALSE(result->Contains(-24, 0));
    CHECK_FALSE(result->Contains(-31, 0));
}

TEST_CASE("Within a step all runs are alike, and the next step is another") {
    const Image source = NoisePicture({0, 0, 20, 20}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 7);
    const Image mask = NoisePicture({0, 0, 20, 20}, PixelType::Mask, Depth::Eight, AlphaForm::Straight, 8);
    JitterEffect filter;
    Set(filter, 25, 40, 5, 5);
    CHECK(filter.NeedsStepHooks());
    std::uint32_t seed = 0;
    for (int step = 0; step < 2; ++step) {
        std::uint32_t maskSeed = seed;
        filter.BeginStep();
        CHECK(SamePixels(*Applied(filter, source), *Jittered(source, seed, 25.0F, 40, 5, 5)));
        CHECK(SamePixels(*Applied(filter, mask), *Jittered(mask, maskSeed, 25.0F, 40, 5, 5)));
        filter.EndStep();
    }
    filter.BeginStep();
    filter.EndStep();  // a step without a run draws nothing
    CHECK(SamePixels(*Applied(filter, source), *Jittered(source, seed, 25.0F, 40, 5, 5)));
}

TEST_CASE("Seeded from time, jitter depends on the frame alone") {
    const Image source = NoisePicture({0, 0, 20, 20}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 7);
    JitterEffect filter;
    Set(filter, 25, 40, 5, 5);
    SetNumber(filter, "Seed From Time", 1);
    filter.Attach(&source, 190, 7.6, nullptr);
    for (int run = 0; run < 2; ++run) {
        std::uint32_t seed = 190;
        CHECK(SamePixels(*Applied(filter, source), *Jittered(source, seed, 25.0F, 40, 5, 5)));
    }
}

TEST_CASE("A fresh jitter zooms; with all settings at 0 it rests") {
    JitterEffect filter;
    CHECK(filter.IsActive());
    SetNumber(filter, "Max Zoom", 0);
    CHECK_FALSE(filter.IsActive());
    SetNumber(filter, "Max Angle", 1);
    CHECK(filter.IsActive());
    CHECK(filter.MovesPixels());
    CHECK(filter.FiltersMask());
}

TEST_CASE("Jitter takes any setting") {
    const double infinity = std::numeric_limits<double>::infinity();
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 3);
    for (const double value : {-1e30, -100.0, 0.0, 1e30, infinity, -infinity, std::nan("")})
        for (const char* label : {"Max Angle", "Max Zoom", "Max Move X", "Max Move Y"}) {
            JitterEffect filter;
            SetNumber(filter, label, value);
            CHECK(Applied(filter, source));
        }
}
