#include <benchmark/benchmark.h>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "tests/reference/pasting.h"

// Dabs of a radius, as a stroke makes them, on a canvas of 1024 x 1024.
namespace chalkpane {

namespace {

constexpr std::uint32_t seed = 1;
constexpr Rect canvas{0, 0, 1023, 1023};

// A soft round dab around the middle of the canvas: the colour, and the coverage that falls off towards the rim.
struct Dab {
    Dab(std::int32_t radius, Depth depth)
        : area(500 - radius, 500 - radius, 500 + radius, 500 + radius),
          colour(Image::Colour(area, depth, AlphaForm::Straight)),
          mask(Image::Mask(area, depth)) {
        reference::FillWithNoise(colour, seed);
        colour.FillChannel(1.0);
        const int square = radius * radius + radius;
        for (std::int32_t y = area.y0; y <= area.y1; ++y)
            for (std::int32_t x = area.x0; x <= area.x1; ++x) {
                const int rest = square - (x - 500) * (x - 500) - (y - 500) * (y - 500);
                mask.SetAlpha8(x, y, static_cast<std::uint8_t>(std::clamp(rest * 255 / (square + 1), 0, 255)));
            }
    }
    Rect area;
    Image colour;
    Image mask;
};

Image NoiseCanvas(Depth depth) {
    Image image = Image::Colour(canvas, depth, AlphaForm::Premultiplied);
    reference::FillWithNoise(image, seed + 1);
    return image;
}

// Paints once on a fresh canvas and compares with the reference.
template <typename Paint, typename Reference>
void Check(benchmark::State& state, const Dab& dab, Depth depth, Paint paint, Reference reference,
           reference::Pasting job) {
    Image target = NoiseCanvas(depth);
    const reference::Picture source(dab.colour);
    const reference::Picture mask(dab.mask);
    reference::Picture picture(target);
    job.source = &source;
    job.mask = &mask;
    job.target = &picture;
    job.rect = dab.area;
    paint(target);
    reference(job);
    if (!reference::Same(reference::Picture(target), picture)) state.SkipWithError("differs from the plain reference");
}

// Arguments: radius, 0 for 8 bits or 1 for 14, blend mode, 1 for over.
void PasteDab(benchmark::State& state) {
    const Depth depth = DepthOf(static_cast<std::int32_t>(state.range(1)));
    const Dab dab(static_cast<std::int32_t>(state.range(0)), depth);
    BrushPaster paster;
    paster.SetOpacity(0.7);
    paster.SetMode(static_cast<std::uint8_t>(state.range(2)));
    const bool over = state.range(3) != 0;
    const auto paint = [&](Image& target) {
        paster.Paste(dab.colour, &dab.mask, target, over ? PasteBehaviour::Over : PasteBehaviour::Replace, dab.area, 0,
                     nullptr, Clip::Inverted);
    };
    Image target = NoiseCanvas(depth);
    for (auto _ : state) paint(target);
    state.SetItemsProcessed(state.iterations() * dab.area.Width() * dab.area.Height());
    reference::Pasting job;
    job.opacity = 0.7;
    job.mode = static_cast<int>(state.range(2));
    job.over = over;
    Check(state, dab, depth, paint, reference::BrushPaste, job);
}

// Arguments: radius, depth.
void EraseDab(benchmark::State& state) {
    const Depth depth = DepthOf(static_cast<std::int32_t>(state.range(1)));
    const Dab dab(static_cast<std::int32_t>(state.range(0)), depth);
    Eraser eraser;
    eraser.SetOpacity(0.7);
    const auto paint = [&](Image& target) {
        eraser.Paste(dab.colour, &dab.mask, target, dab.area, 0, nullptr, Clip::Inverted);
    };
    Image target = NoiseCanvas(depth);
    for (auto _ : state) paint(target);
    state.SetItemsProcessed(state.iterations() * dab.area.Width() * dab.area.Height());
    reference::Pasting job;
    job.opacity = 0.7;
    Check(state, dab, depth, paint, reference::Erase, job);
}

// The whole canvas at once. Arguments: depth, workers (0: one per processor).
void PasteCanvas(benchmark::State& state) {
    const Depth depth = DepthOf(static_cast<std::int32_t>(state.range(0)));
    MultiProcessor::Restart(static_cast<std::int32_t>(state.range(1)));
    const Image source = NoiseCanvas(depth);
    Image target = NoiseCanvas(depth);
    BrushPaster paster;
    paster.SetOpacity(0.7);
    for (auto _ : state)
        paster.Paste(source, nullptr, target, PasteBehaviour::Over, canvas, 0, nullptr, Clip::Inverted);
    state.SetItemsProcessed(state.iterations() * canvas.Width() * canvas.Height());
    MultiProcessor::Restart(0);
}

}  // namespace

BENCHMARK(PasteDab)->ArgsProduct({{1, 5, 20, 60}, {0, 1}, {0}, {1}});
BENCHMARK(PasteDab)->ArgsProduct({{20}, {0, 1}, {0}, {0}});
BENCHMARK(PasteDab)->ArgsProduct({{20}, {0, 1}, {4}, {0, 1}});
BENCHMARK(EraseDab)->ArgsProduct({{1, 5, 20, 60}, {0, 1}});
BENCHMARK(PasteCanvas)->ArgsProduct({{0, 1}, {1, 0}})->UseRealTime();

}  // namespace chalkpane
