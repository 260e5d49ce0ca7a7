#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/source_types.h"
#include "tests/reference/picture.h"
#include "tests/reference/stroke_engine.h"

using namespace chalkpane;

namespace {

constexpr Colour paint{16383, 8192, 1024};

// A canvas as the plug-in has it, at either depth.
struct Easel {
    Easel(Depth depth, std::int32_t radius, SourceType sourceType = SourceType::Colour)
        : canvas(Image::Colour(1024, 1024, depth, AlphaForm::Premultiplied)) {
        brush.SetTarget(&canvas);
        brush.SetSourceType(sourceType);
        brush.SetSize(radius);
        brush.SetColour(paint);
    }
    Image canvas;
    BasicBrush brush{"Telestrator"};
};

// True when the same samples leave the pixels of a brush that evaluates every step.
bool AsTheReferenceDoes(Depth depth, std::int32_t radius, SourceType sourceType) {
    Easel easel(depth, radius, sourceType);
    const auto referenceCanvas = easel.canvas.Clone();
    const auto source = MakeBrushSource(sourceType, FileName(), depth);
    for (const auto& value : easel.brush.SourceValues()) source->setParameter(value.get());
    source->SetColour(paint);
    source->Prepare(0, dynamic_cast<GraphValue*>(easel.brush.Value(BrushParameter::ProfileGraph)), Matrix3());
    reference::StrokeSettings settings;
    settings.sourceType = sourceType;
    reference::StrokeEngine reference(settings, *source, *referenceCanvas);
    easel.brush.BeginStroke(300, 300, 1);
    reference.Begin(300, 300, 1);
    for (int i = 1; i < 12; ++i) {
        easel.brush.ContinueStroke(300 + i * 7.3, 300 + std::sin(i) * 9, 1);
        reference.Continue(300 + i * 7.3, 300 + std::sin(i) * 9, 1);
    }
    return reference::Same(reference::Picture(easel.canvas), reference::Picture(*referenceCanvas));
}

// Arguments: radius, depth, source type. A dab all included but for the path: from its place to its pixels.
void Dab(benchmark::State& state) {
    const auto radius = static_cast<std::int32_t>(state.range(0));
    const Depth depth = DepthOf(static_cast<std::int32_t>(state.range(1)));
    const auto sourceType = static_cast<SourceType>(state.range(2));
    Easel easel(depth, radius, sourceType);
    double x = 300;
    for (auto _ : state) {
        x = x > 600 ? 300.1 : x + 1.3;
        benchmark::DoNotOptimize(easel.brush.BeginStroke(x, 400.7, 1));
    }
    state.SetItemsProcessed(state.iterations());
    if (!AsTheReferenceDoes(depth, radius, sourceType)) state.SkipWithError("differs from the plain reference");
}
BENCHMARK(Dab)
    ->ArgsProduct({{0, 2, 5, 10, 20, 30, 60}, {0, 1}, {0}})
    ->Args({5, 0, 5})
    ->Args({20, 0, 5})
    ->Args({20, 1, 5});

// A pointer that does not move: the evaluation of the curve and nothing else.
void RestingSample(benchmark::State& state) {
    Easel easel(Depth::Eight, 5);
    easel.brush.BeginStroke(300, 300, 1);
    for (auto _ : state) benchmark::DoNotOptimize(easel.brush.ContinueStroke(300, 300, 1));
}
BENCHMARK(RestingSample);

// Short of the spacing of a large brush, back and forth.
void SampleWithoutDab(benchmark::State& state) {
    Easel easel(Depth::Eight, 60);
    easel.brush.SetSpacing(0.15, SpacingType::Keep);
    easel.brush.Update();
    easel.brush.SetColour(paint);
    easel.brush.BeginStroke(300, 300, 1);
    double x = 300;
    for (auto _ : state) {
        x = x > 300 ? 300 : 310;
        benchmark::DoNotOptimize(easel.brush.ContinueStroke(x, 300, 1));
    }
}
BENCHMARK(SampleWithoutDab);

// One field of a moving pointer on both surfaces. Argument: pixels from sample to sample.
void Field(benchmark::State& state) {
    Easel easels[2] = {{Depth::Eight, 5}, {Depth::Eight, 5}};
    const double stride = static_cast<double>(state.range(0));
    double angle = 0;
    for (auto& easel : easels) easel.brush.BeginStroke(500, 500, 1);
    for (auto _ : state) {
        angle += 0.1;
        const double x = 500 + 10 * stride * std::cos(angle);
        const double y = 500 + 10 * stride * std::sin(angle);
        for (auto& easel : easels) benchmark::DoNotOptimize(easel.brush.ContinueStroke(x, y, 1));
    }
}
BENCHMARK(Field)->Arg(2)->Arg(10)->Arg(40)->Unit(benchmark::kMicrosecond);

// A change of width and back. Argument: radius.
void ChangeOfSize(benchmark::State& state) {
    Easel easel(Depth::Eight, 5);
    const auto radius = static_cast<std::int32_t>(state.range(0));
    std::int32_t step = 0;
    for (auto _ : state) {
        step = (step + 1) % 16;  // more sizes than are kept ready
        easel.brush.SetSize(radius + step);
        benchmark::DoNotOptimize(easel.brush.Source());
    }
}
BENCHMARK(ChangeOfSize)->Arg(5)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);

}  // namespace
