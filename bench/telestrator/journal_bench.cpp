#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "telestrator/journal/ink_drawing.h"
#include "telestrator/journal/ink_painter.h"
#include "telestrator/telestrator.h"

namespace chalkpane {
namespace {

constexpr int strokeCount = 1000;

Image BlankCanvas() { return Image::Colour(canvasSize, canvasSize, Depth::Eight, AlphaForm::Premultiplied); }

// Lines of a second or so, some 10 pixels a field, all over the canvas: each crosses hundreds of others.
SharedStroke HandDrawnStroke(std::mt19937& random) {
    const auto real = [&](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(random);
    };
    InkStroke stroke;
    stroke.brushes = {{false, 5, Colour::fromIndex(static_cast<int>(random() % 4))}};
    CanvasPosition at{real(0, 1023), real(0, 1023)};
    double direction = real(0, 6.28);
    const auto samples = static_cast<int>(real(25, 75));
    for (int i = 0; i < samples; ++i) {
        stroke.steps.push_back({i == 0             ? StrokeStage::Begin
                                : i + 1 == samples ? StrokeStage::End
                                                   : StrokeStage::Continue,
                                at, 1.0, 0});
        direction += real(-0.3, 0.3);
        at = {at.x + 10 * std::cos(direction), at.y + 10 * std::sin(direction)};
    }
    stroke.finishedFrom = stroke.steps.size();
    return std::make_shared<const InkStroke>(std::move(stroke));
}

std::vector<SharedStroke> HandDrawnStrokes() {
    std::mt19937 random(7);
    std::vector<SharedStroke> strokes;
    while (static_cast<int>(strokes.size()) < strokeCount) strokes.push_back(HandDrawnStroke(random));
    return strokes;
}

// One of the strokes from `first` on is taken away or brought back at a time. The median is what an operator waits.
void ChangeOfStroke(benchmark::State& state, int first) {
    Image canvas = BlankCanvas();
    InkDrawing drawing(canvas);
    for (const SharedStroke& stroke : HandDrawnStrokes()) drawing.Add(stroke, InkDrawing::OnCanvas::NotYet);
    std::mt19937 random(8);
    std::uniform_int_distribution<std::uint32_t> number(static_cast<std::uint32_t>(first), strokeCount);
    std::vector<double> milliseconds;
    bool isThere = true;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        isThere ? drawing.Remove(number(random)) : drawing.Undo();
        isThere = !isThere;
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
        milliseconds.push_back(taken.count());
    }
    const auto median = milliseconds.begin() + static_cast<std::ptrdiff_t>(milliseconds.size() / 2);
    std::nth_element(milliseconds.begin(), median, milliseconds.end());
    state.counters["median_ms"] = *median;
    state.counters["slowest_ms"] = *std::max_element(milliseconds.begin(), milliseconds.end());
    state.counters["checkpoint_MiB"] = static_cast<double>(drawing.Checkpoints().Tiles()) / 64;
    Image wanted = BlankCanvas();
    InkPainter painter;
    for (const InkDrawing::Stroke& stroke : drawing.Strokes()) painter.Paint(*stroke.ink, wanted, wanted);
    if (std::memcmp(canvas.origin, wanted.origin, wanted.ByteSize()) != 0)
        state.SkipWithError("the canvas is not what its strokes make");
}
BENCHMARK_CAPTURE(ChangeOfStroke, any_of_1000, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChangeOfStroke, last_ten_of_1000, strokeCount - 9)->Unit(benchmark::kMillisecond);

// All that was drawn in a minute without a pause: 3000 fields.
void ReplayOfMinute(benchmark::State& state) {
    std::mt19937 random(9);
    std::vector<SharedStroke> strokes;
    std::size_t fields = 0;
    while (fields < 3000) {
        strokes.push_back(HandDrawnStroke(random));
        fields += strokes.back()->steps.size();
    }
    Image canvas = BlankCanvas();
    for (auto _ : state) {
        canvas.Clear();
        InkDrawing drawing(canvas);
        for (const SharedStroke& stroke : strokes) drawing.Add(stroke, InkDrawing::OnCanvas::NotYet);
    }
    Image wanted = BlankCanvas();
    InkPainter painter;
    for (const SharedStroke& stroke : strokes) painter.Paint(*stroke, wanted, wanted);
    if (std::memcmp(canvas.origin, wanted.origin, wanted.ByteSize()) != 0)
        state.SkipWithError("the canvas is not what its strokes make");
}
BENCHMARK(ReplayOfMinute)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace chalkpane
