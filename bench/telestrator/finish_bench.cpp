#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <random>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/brush/basic_brush.h"
#include "telestrator/telestrator.h"
#include "tests/telestrator/stroke_shapes.h"
#include "tests/telestrator/telestrator_fixture.h"

// The slowest fields there are: strokes whose end takes longest to draw, all of it in one field as if there were no
// draft, and long ones as they are drawn. Processor time of all threads.

namespace chalkpane {
namespace {

using testing::Points;

Points Scattered(int count, double from, double to) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(from, to);
    Points points;
    for (int i = 0; i < count; ++i) {
        const double x = place(random);
        points.emplace_back(x, place(random), 0.0);
    }
    return points;
}

// Of all threads.
std::chrono::duration<double, std::milli> ProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

enum class Line { Scribble, ToAndFro, Scattered, ScatteredAround, GreatEllipse, EllipseAcross, Ellipse };

Points PointsOf(Line line, std::int32_t width) {
    switch (line) {
        case Line::Scribble:
            return testing::ScribblePoints(width);
        case Line::ToAndFro:
            return testing::ToAndFroPoints(width);
        case Line::Scattered:
            return Scattered(20000, 0, 1023);
        case Line::ScatteredAround:
            return Scattered(20000, -2000, 3000);
        case Line::GreatEllipse:
            return testing::EllipsePoints(512, 512, 60000, 50000, 0, 300);
        case Line::EllipseAcross:
            return testing::EllipsePoints(512 - 900, 512, 1200, 1100, 0, 300);
        case Line::Ellipse:
            return testing::EllipsePoints(512, 512, 330, 160, 0.3, 300);
    }
    return {};
}

// Arguments: brush width, workers.
void FinishLine(benchmark::State& state, Line line) {
    const auto width = static_cast<std::int32_t>(state.range(0));
    MultiProcessor::Restart(static_cast<std::int32_t>(state.range(1)));
    TelestratorSettings settings;
    settings.recogniseShapes = settings.recogniseCircle = true;
    settings.recogniseCross = false;  // points at random have many
    settings.brushWidth = width;
    const Points points = PointsOf(line, width);
    Telestrator telestrator;
    telestrator.Field(settings);
    const std::uint64_t dabs = telestrator.shapeSurface->brush->PaintedDabs();
    for (auto _ : state) {
        state.PauseTiming();
        telestrator.shapeSurface->ClearPixels();
        testing::StoreStroke(telestrator, points);
        state.ResumeTiming();
        telestrator.FinishStroke(settings);
    }
    if (testing::IsBlank(*telestrator.shapeSurface) && line != Line::GreatEllipse)
        state.SkipWithError("nothing was painted");
    state.counters["dabs"] = benchmark::Counter(
        static_cast<double>(telestrator.shapeSurface->brush->PaintedDabs() - dabs), benchmark::Counter::kAvgIterations);
    MultiProcessor::Restart(0);
}
#define FINISH_LINE(name, line, mostWorkers, ...)                                      \
    BENCHMARK_CAPTURE(FinishLine, name, line)                                          \
        ->ArgsProduct({{__VA_ARGS__}, benchmark::CreateDenseRange(1, mostWorkers, 1)}) \
        ->MeasureProcessCPUTime()                                                      \
        ->Unit(benchmark::kMillisecond)
FINISH_LINE(scribble, Line::Scribble, 1, 1, 30, 500);
FINISH_LINE(toAndFro, Line::ToAndFro, 1, 1, 30);
FINISH_LINE(scattered, Line::Scattered, 1, 1, 30);
FINISH_LINE(scatteredAround, Line::ScatteredAround, 1, 1, 30);
FINISH_LINE(greatEllipse, Line::GreatEllipse, 1, 1, 5, 30);
FINISH_LINE(ellipseAcross, Line::EllipseAcross, 1, 1, 5, 30);
FINISH_LINE(ellipse, Line::Ellipse, 2, 1, 2, 5, 30);

// A scribble of so many movements from end to end of the canvas, each in a field of its own, which fills the buffer of
// stored points or not; what counts is the slowest of its fields and the one in which it is finished. Arguments: brush
// width, movements, 1 for a change of colour just before the end.
void LongStroke(benchmark::State& state) {
    TelestratorSettings settings;
    settings.recogniseShapes = settings.recogniseCircle = true;
    settings.shapeDelay = 1;
    settings.brushWidth = static_cast<std::int32_t>(state.range(0));
    std::chrono::duration<double, std::milli> slowest{};
    std::chrono::duration<double, std::milli> finish{};
    for (auto _ : state) {
        Telestrator telestrator;
        telestrator.Field(settings);
        std::mt19937 random(1);
        std::uniform_real_distribution<double> place(10, 1010);
        telestrator.Press(settings, {500, 500});
        for (std::int64_t i = 0; i < state.range(1); ++i) {
            const double x = place(random);
            const double y = place(random);
            const auto start = ProcessorTime();
            telestrator.Move(settings, {x, y});
            telestrator.Field(settings);
            slowest = std::max(slowest, ProcessorTime() - start);
        }
        telestrator.Release(settings, {500, 500});
        if (state.range(2) == 1) settings.brushColour ^= 0x00ff00U;
        const auto start = ProcessorTime();
        telestrator.Field(settings);
        finish = ProcessorTime() - start;
        if (telestrator.result != StrokeResult::Arrow && telestrator.result != StrokeResult::Cross)
            state.SkipWithError("the stroke was not finished");
    }
    state.counters["slowest_ms"] = slowest.count();
    state.counters["finish_ms"] = finish.count();
}
BENCHMARK(LongStroke)->ArgsProduct({{1, 30}, {2200}, {0, 1}})->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace chalkpane
