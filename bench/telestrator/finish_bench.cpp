#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "chalkpane/base/multi_processor.h"
#include "telestrator/telestrator.h"
#include "tests/telestrator/stroke_shapes.h"
#include "tests/telestrator/telestrator_fixture.h"

// The slowest fields there are: strokes whose end takes longest to draw. Processor time of all threads, on one worker
// and on two.

namespace chalkpane {
namespace {

using testing::Points;

constexpr int room = canvasSize * canvasSize;

// Points a width apart on a scribble all over the canvas, until the buffer is full: what minutes of drawing leave.
Points Scribble(double width) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(10, 1010);
    Points points;
    points.reserve(room);
    double x = 500;
    double y = 500;
    while (points.size() < room) {
        const double toX = place(random);
        const double toY = place(random);
        const int steps = std::max(static_cast<int>(std::hypot(toX - x, toY - y) / width), 1);
        for (int i = 1; i <= steps && points.size() < room; ++i)
            points.emplace_back(x + (toX - x) * i / steps, y + (toY - y) * i / steps, 0.0);
        x = toX;
        y = toY;
    }
    return points;
}

// Nearly the same line to and fro, so that the same pixels are painted again and again.
Points ToAndFro(double width) {
    Points points;
    points.reserve(room);
    for (int i = 0; i < room; ++i) {
        const double way = std::fmod(i * width, 1960.0);
        points.emplace_back(20 + (way < 980 ? way : 1960 - way), 300 + 0.37 * std::fmod(i / 7.0, 30), 0.0);
    }
    return points;
}

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

enum class Line { Scribble, ToAndFro, Scattered, ScatteredAround, GreatEllipse, Ellipse };

Points PointsOf(Line line, std::int32_t width) {
    switch (line) {
        case Line::Scribble:
            return Scribble(width);
        case Line::ToAndFro:
            return ToAndFro(width);
        case Line::Scattered:
            return Scattered(20000, 0, 1023);
        case Line::ScatteredAround:
            return Scattered(20000, -2000, 3000);
        case Line::GreatEllipse:
            return testing::EllipsePoints(512, 512, 60000, 50000, 0.3, 300);
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
    for (auto _ : state) {
        state.PauseTiming();
        telestrator.shapeSurface->ClearPixels();
        testing::StoreStroke(telestrator, points);
        state.ResumeTiming();
        telestrator.FinishStroke(settings);
    }
    if (testing::IsBlank(*telestrator.shapeSurface) && line != Line::GreatEllipse)
        state.SkipWithError("nothing was painted");
    MultiProcessor::Restart(0);
}
#define FINISH_LINE(name, line, ...)           \
    BENCHMARK_CAPTURE(FinishLine, name, line)  \
        ->ArgsProduct({{__VA_ARGS__}, {1, 2}}) \
        ->MeasureProcessCPUTime()              \
        ->Unit(benchmark::kMillisecond)
FINISH_LINE(scribble, Line::Scribble, 1, 30);
FINISH_LINE(toAndFro, Line::ToAndFro, 1, 30);
FINISH_LINE(scattered, Line::Scattered, 1, 30);
FINISH_LINE(scatteredAround, Line::ScatteredAround, 1, 30);
FINISH_LINE(greatEllipse, Line::GreatEllipse, 1, 30);
FINISH_LINE(ellipse, Line::Ellipse, 1, 2, 5, 30);

}  // namespace
}  // namespace chalkpane
