#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <random>

#include "tests/module/module_fixture.h"
#include "tests/telestrator/stroke_shapes.h"

namespace chalkpane {
namespace {

using testing::DefaultParameters;
using testing::ModuleFixture;
using testing::Points;

class QuietFixture : public ModuleFixture {
public:
    explicit QuietFixture(const PluginParameters& values) : ModuleFixture(values) {
        host.recording = false;
        Field();
        PreRender();
    }
};

// The texture is what the uploads made of it: it has to be the canvas.
bool TextureIsCanvas(const QuietFixture& fixture) {
    const CanvasPixels pixels = fixture.plugin.telestrator.canvasSurface->GetPixels();
    return std::memcmp(fixture.host.texture.data(), pixels.bytes, pixels.byteSize) == 0;
}

// One field and its pre render while the pointer moves about 10 pixels a field on a wide curve.
void FieldWhileDrawing(benchmark::State& state, std::int32_t brushType) {
    PluginParameters values = DefaultParameters();
    values.BrushType = brushType;
    values.BrushWidth = static_cast<std::int32_t>(state.range(0));
    values.EraserWidth = static_cast<std::int32_t>(state.range(0));
    QuietFixture fixture(values);
    if (brushType == 1) fixture.plugin.telestrator.canvasSurface->canvas->FillChannel(1.0);
    fixture.plugin.telestrator.fullUploadPending = true;
    PLUGIN_CHANGED_CALLBACK(&fixture.plugin, 5);
    fixture.Press(512 + 300, 512);
    fixture.PreRender();
    int step = 0;
    for (auto _ : state) {
        const double t = ++step / 30.0;
        fixture.Move(static_cast<int>(512 + 300 * std::cos(t)), static_cast<int>(512 + 280 * std::sin(1.1 * t)));
        fixture.PreRender();
    }
    if (!TextureIsCanvas(fixture)) state.SkipWithError("the texture is not the canvas");
}
BENCHMARK_CAPTURE(FieldWhileDrawing, brush, 0)->Arg(1)->Arg(5)->Arg(30)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FieldWhileDrawing, eraser, 1)->Arg(60)->Unit(benchmark::kMicrosecond);

void ChangeOfWidth(benchmark::State& state) {
    QuietFixture fixture(DefaultParameters());
    std::int32_t width = 5;
    for (auto _ : state) {
        width = width == 30 ? 1 : width + 1;
        fixture.plugin.BrushWidth = width;
        fixture.Field();
    }
    if (fixture.plugin.telestrator.shapeSurface->width != width)
        state.SkipWithError("the width did not reach the brush");
}
BENCHMARK(ChangeOfWidth)->Unit(benchmark::kMicrosecond);

void Undo(benchmark::State& state) {
    QuietFixture fixture(DefaultParameters());
    fixture.plugin.telestrator.canvasSurface->BeginStroke(500, 500, 1);
    for (auto _ : state) PLUGIN_EXEC_ACTION(&fixture.plugin, 1);
    if (!testing::IsBlank(*fixture.plugin.telestrator.canvasSurface)) state.SkipWithError("the stroke is still there");
}
BENCHMARK(Undo)->Unit(benchmark::kMicrosecond);

void Clear(benchmark::State& state) {
    QuietFixture fixture(DefaultParameters());
    fixture.plugin.telestrator.canvasSurface->BeginStroke(500, 500, 1);
    for (auto _ : state) PLUGIN_EXEC_ACTION(&fixture.plugin, 0);
    if (!testing::IsBlank(*fixture.plugin.telestrator.canvasSurface)) state.SkipWithError("the canvas is not blank");
}
BENCHMARK(Clear)->Unit(benchmark::kMicrosecond);

void Commit(benchmark::State& state) {
    QuietFixture fixture(DefaultParameters());
    fixture.plugin.telestrator.shapeSurface->BeginStroke(500, 500, 1);
    for (auto _ : state) {
        fixture.plugin.telestrator.shapeCommitPending = true;
        fixture.PreRender();
    }
    if (!TextureIsCanvas(fixture)) state.SkipWithError("the texture is not the canvas");
}
BENCHMARK(Commit)->Unit(benchmark::kMicrosecond);

enum class Taker { Ellipse, Circle, Cross, Nobody };

// Strokes that the one recogniser takes after those before it declined.
Points StrokeFor(Taker taker, int count) {
    switch (taker) {
        case Taker::Ellipse:
            return testing::EllipsePoints(512, 512, 330, 160, 0.3, count);
        case Taker::Circle:
            return testing::EllipsePoints(512, 512, 230, 230, 0, count);
        case Taker::Cross:
            return testing::CrossPoints(512, 512, 300, count);
        case Taker::Nobody:
            return testing::SpiralPoints(512, 512, 400, count);
    }
    return {};
}

bool TookAsWanted(PluginInstance& plugin, Taker taker) {
    if (RecognizeEllipse(testing::Input(plugin))) return taker == Taker::Ellipse;
    if (RecognizeCircle(testing::Input(plugin))) return taker == Taker::Circle;
    if (RecognizeCross(testing::Input(plugin))) return taker == Taker::Cross;
    return taker == Taker::Nobody;
}

// All three recognisers on, but for the circle's stroke the ellipse's, which would take it.
void Finish(benchmark::State& state, Taker taker) {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.RecoEllipse = taker == Taker::Circle ? 0 : 1;
    values.RecoCircle = 1;
    QuietFixture fixture(values);
    const Points points = StrokeFor(taker, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        testing::StoreStroke(fixture.plugin.telestrator, points);
        const auto start = std::chrono::steady_clock::now();
        testing::FinishStroke(fixture.plugin);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    testing::StoreStroke(fixture.plugin.telestrator, points);
    if (!TookAsWanted(fixture.plugin, taker)) state.SkipWithError("another recogniser took the stroke");
}
#define FINISH_BENCHMARK(name, taker) \
    BENCHMARK_CAPTURE(Finish, name, taker)->Arg(50)->Arg(300)->Arg(1000)->UseManualTime()->Unit(benchmark::kMillisecond)
FINISH_BENCHMARK(ellipse, Taker::Ellipse);
FINISH_BENCHMARK(circle, Taker::Circle);
FINISH_BENCHMARK(cross, Taker::Cross);
FINISH_BENCHMARK(nobody, Taker::Nobody);

// The finest pen: its iteration round the ellipse has a vertex at every hundredth of a pixel.
void FinishEllipseAtWidth(benchmark::State& state) {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    values.BrushWidth = static_cast<std::int32_t>(state.range(0));
    QuietFixture fixture(values);
    const Points points = StrokeFor(Taker::Ellipse, 300);
    for (auto _ : state) {
        testing::StoreStroke(fixture.plugin.telestrator, points);
        testing::FinishStroke(fixture.plugin);
    }
    testing::StoreStroke(fixture.plugin.telestrator, points);
    if (!TookAsWanted(fixture.plugin, Taker::Ellipse)) state.SkipWithError("the ellipse was declined");
}
BENCHMARK(FinishEllipseAtWidth)->Arg(1)->Arg(2)->Arg(30)->Unit(benchmark::kMillisecond);

// The slowest fields: a stroke whose stored points fill the buffer, nearly all of them far from the canvas.
enum class FarStroke { Straight, ThereAndBack, AtEndOfRange, Jumps, Scattered };

Points FarPoints(FarStroke kind) {
    constexpr int room = canvasSize * canvasSize;
    Points points;
    points.reserve(room);
    std::mt19937 random(1);
    std::uniform_real_distribution<float> anywhere(-1e9F, 1e9F);
    for (int i = 0; i < room; ++i) {
        switch (kind) {
            case FarStroke::Scattered:
                points.emplace_back(anywhere(random), anywhere(random), 0);
                break;
            case FarStroke::Straight:
                points.emplace_back(500 + 5.0 * i, 500, 0);
                break;
            case FarStroke::ThereAndBack:
                points.emplace_back(500 + 5.0 * std::min(i, room - i), 500, 0);
                break;
            case FarStroke::AtEndOfRange:
                points.emplace_back(1e9, 1e9 + 64.0 * i, 0);
                break;
            case FarStroke::Jumps:
                points.emplace_back(i / 4 % 2 == 0 ? 1e9 : -1e9, -1e6 - i, 0);
                break;
        }
    }
    return points;
}

void FinishFar(benchmark::State& state, FarStroke kind) {
    PluginParameters values = DefaultParameters();
    values.RecoShapes = 1;
    QuietFixture fixture(values);
    const Points points = FarPoints(kind);
    for (auto _ : state) {
        testing::StoreStroke(fixture.plugin.telestrator, points);
        const auto start = std::chrono::steady_clock::now();
        testing::FinishStroke(fixture.plugin);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    if (fixture.plugin.telestrator.strokePointCount != canvasSize * canvasSize / 4 + 2) {
        state.SkipWithError("the stroke was not smoothed");
    }
}
BENCHMARK_CAPTURE(FinishFar, straight, FarStroke::Straight)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FinishFar, thereAndBack, FarStroke::ThereAndBack)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FinishFar, atEndOfRange, FarStroke::AtEndOfRange)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FinishFar, jumps, FarStroke::Jumps)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FinishFar, scattered, FarStroke::Scattered)->UseManualTime()->Unit(benchmark::kMillisecond);

// The dearest motion within the limits of the settings: the widest brush on a long curve whose newest stretch is next
// to nothing, so that nearly each of its 1001 steps has a dab. The eraser works on both surfaces.
void HeaviestMove(benchmark::State& state, BrushType type) {
    TelestratorSettings settings;
    settings.brushWidth = 30;
    settings.eraserWidth = 60;
    Telestrator telestrator;
    telestrator.Field(settings);
    settings.brushType = type;
    telestrator.ApplyBrushMode(settings);
    for (auto _ : state) {
        state.PauseTiming();
        telestrator.Press(settings, {20, 20});
        telestrator.Move(settings, {1000, 1000});
        telestrator.Move(settings, {1010, 20});
        state.ResumeTiming();
        telestrator.Move(settings, {1010.003, 20});
    }
    if (!telestrator.dirtyRect.IsValid()) state.SkipWithError("nothing was painted");
}
BENCHMARK_CAPTURE(HeaviestMove, colour, BrushType::Colour)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(HeaviestMove, eraser, BrushType::Eraser)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace chalkpane
