#include "chalkpane/transform/transformer.h"

#include <benchmark/benchmark.h>

#include "chalkpane/base/multi_processor.h"
#include "tests/reference/resampling.h"

namespace chalkpane {

namespace {

constexpr std::uint32_t seed = 1;

// A square of `state.range(0)` pixels, `range(1)` the type (1 colour, 2 mask), `range(2)` the depth, `range(3)` the
// workers (0: one per processor); the result is checked against the plain reference.
void ApplyTransform(benchmark::State& state, const Matrix3& matrix) {
    MultiProcessor::Restart(static_cast<std::int32_t>(state.range(3)));
    const auto size = static_cast<std::int32_t>(state.range(0));
    Image source(size, size, static_cast<PixelType>(state.range(1)), DepthOf(static_cast<std::int32_t>(state.range(2))),
                 AlphaForm::Straight);
    reference::FillWithNoise(source, seed);
    const double centre = size * 0.5;
    Transformer transformer;
    transformer.SetMatrix(Matrix3::Translation(-centre, -centre) * matrix * Matrix3::Translation(centre, centre));
    Rect rect;
    for (auto _ : state) benchmark::DoNotOptimize(transformer.Apply(source, rect));
    state.SetItemsProcessed(state.iterations() * rect.Width() * rect.Height());
    const auto result = transformer.Apply(source, rect);
    reference::Picture wanted(rect.x0, rect.y0, rect.Width(), rect.Height(), source.IsMask() ? 1 : 4,
                              source.GetDepth() == Depth::Fourteen);
    reference::ResampleInto(reference::Picture(source), source, transformer.Inverse(), rect, wanted);
    if (!reference::Same(reference::Picture(*result), wanted)) state.SkipWithError("differs from the plain reference");
    MultiProcessor::Restart(0);
}

void ShiftImage(benchmark::State& state) { ApplyTransform(state, Matrix3::Translation(0.125, 0.375)); }
void TurnImage(benchmark::State& state) { ApplyTransform(state, Matrix3::Rotation(0.6)); }

// The 63 shifted copies of one mask, as a brush makes them when its width changes. Argument: the mask's side.
void ShiftedMasks(benchmark::State& state) {
    const auto size = static_cast<std::int32_t>(state.range(0));
    Image source = Image::Mask(size, size, Depth::Eight);
    reference::FillWithNoise(source, seed);
    Transformer transformer;
    Rect rect;
    for (auto _ : state) {
        for (int i = 1; i < 64; ++i) {
            const int column = i % 8;
            const int row = i / 8;
            transformer.SetTransform(0.0, 0.0, column / 8.0, row / 8.0, 1.0, 1.0, 0.0);
            benchmark::DoNotOptimize(transformer.Apply(source, rect));
        }
    }
    state.SetItemsProcessed(state.iterations() * 63 * size * size);
}

}  // namespace

BENCHMARK(ShiftImage)->ArgsProduct({{61}, {1, 2}, {0, 1}, {1}});
BENCHMARK(TurnImage)->ArgsProduct({{61}, {1, 2}, {0, 1}, {1}});
BENCHMARK(ShiftImage)->ArgsProduct({{1024}, {1, 2}, {0, 1}, {1, 0}})->UseRealTime();
BENCHMARK(TurnImage)->ArgsProduct({{1024}, {1, 2}, {0, 1}, {1, 0}})->UseRealTime();
BENCHMARK(ShiftedMasks)->Arg(11)->Arg(61);

}  // namespace chalkpane
