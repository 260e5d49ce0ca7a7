#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "kel/ink/container_ink.h"
#include "kel/scene/host.h"

namespace kel {
namespace {

constexpr WindowSize window{1280, 720};
constexpr double fieldMilliseconds = 20;

// The real module on a pane that fills the window from bottom to top, and a hand that draws on it.
class DrawnPane {
public:
    DrawnPane() : host(window) {
        Camera camera;
        camera.position = {0, 0, 137.4};
        host.SetCamera(camera);
        container = host.AddContainer({});
        const Module& module = host.LoadModule(CHALKPANE_MODULE);
        host.Attach(container, module, {{"BrushWidth", 5}});
        ink = std::make_unique<ContainerInk>(host, container, module);
        host.SetDrawing(false);
        host.RunField();
    }

    // Lines of half a second, of a length as a hand draws them, all over the pane.
    void Draw(std::mt19937& random) {
        const auto real = [&](double least, double most) {
            return std::uniform_real_distribution<double>(least, most)(random);
        };
        double x = real(300, 980);
        double y = real(20, 700);
        double direction = real(0, 6.28);
        constexpr int fields = 24;
        for (int i = 0; i <= fields; ++i) {
            const PointerKind kind = i == 0        ? PointerKind::Press
                                     : i == fields ? PointerKind::Release
                                                   : PointerKind::Move;
            host.QueuePointer(kind, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
            host.RunField();
            direction += real(-0.3, 0.3);
            x = std::clamp(x + 8 * std::cos(direction), 285.0, 995.0);
            y = std::clamp(y + 8 * std::sin(direction), 5.0, 715.0);
        }
    }

    Host host;
    ObjectId container = noObject;
    std::unique_ptr<ContainerInk> ink;
};

InkEdit EditOf(InkEditKind kind, std::size_t number) {
    InkEdit edit;
    edit.kind = kind;
    edit.number = number;
    return edit;
}

// One of the strokes from `first` on is taken away, or brought back, and the picture of the field that shows it drawn.
void ChangeOfStrokeInKel(benchmark::State& state) {
    const auto strokes = static_cast<std::size_t>(state.range(0));
    const auto last = static_cast<std::size_t>(state.range(1));
    std::mt19937 random(7);
    DrawnPane pane;
    InkEdits edits;  // the same once more, to be lived through
    for (std::size_t i = 0; i < strokes; ++i) pane.Draw(random);
    pane.ink->Keep();
    pane.ink->Follow();
    pane.host.SetDrawing(true);
    pane.host.RunField();
    std::vector<double> milliseconds;
    bool isThere = true;
    for (auto _ : state) {
        const std::size_t number = strokes - random() % last;
        const InkEdit edit = EditOf(isThere ? InkEditKind::Remove : InkEditKind::Undo, isThere ? number : 1);
        isThere = !isThere;
        const auto begin = std::chrono::steady_clock::now();
        pane.ink->Edit(edit);
        pane.host.RunField();
        benchmark::DoNotOptimize(pane.host.PictureNumber());
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
        milliseconds.push_back(taken.count());
        edits.Do(pane.host.History(pane.container), edit);
    }
    if (!pane.ink->IsSubstituted()) state.SkipWithError("the edit was not made on the strokes");
    const auto median = milliseconds.begin() + static_cast<std::ptrdiff_t>(milliseconds.size() / 2);
    std::nth_element(milliseconds.begin(), median, milliseconds.end());
    state.counters["median_ms"] = *median;
    state.counters["slowest_ms"] = *std::max_element(milliseconds.begin(), milliseconds.end());
    state.counters["within_a_field"] = static_cast<double>(std::ranges::count_if(
                                           milliseconds, [](double each) { return each <= fieldMilliseconds; })) /
                                       static_cast<double>(milliseconds.size());
    const picture_io::Picture shown = pane.host.ReadPremultipliedCanvas(pane.container);
    pane.ink.reset();
    pane.host.Rebuild(pane.container, edits.Apply(pane.host.History(pane.container)));
    if (!(shown == pane.host.ReadPremultipliedCanvas(pane.container)))
        state.SkipWithError("the canvas is not that of the history lived through");
}
// How many strokes, and among how many of the last.
BENCHMARK(ChangeOfStrokeInKel)
    ->Args({60, 60})
    ->Args({1000, 1000})
    ->Args({1000, 10})
    ->Iterations(200)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kel
