#include <benchmark/benchmark.h>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/presets/preset.h"
#include "chalkpane/parameters/animation/animated_numbers.h"

using namespace chalkpane;
using namespace chalkpane::app;

namespace {

constexpr std::int32_t keyCount = 1000;

// A brush whose opacity has a thousand keys.
std::string TextWithKeys() {
    std::string text = "brush \"Bench\" {\n    \"Brush Opacity\" keys {\n";
    for (std::int32_t i = 0; i < keyCount; ++i)
        text += "        " + std::to_string(i) + ".5 -0.3 0.25 0." + std::to_string(100000 + i * 7919 % 800000) + "\n";
    return text + "    }\n}\n";
}

const ParameterValue& KeyedIn(const Preset& preset) {
    for (const ValuePointer& value : preset.brush->brush)
        if (value->isAnimated()) return *value;
    return **preset.brush->brush.begin();
}

void ReadPreset(benchmark::State& state) {
    const std::string text = TextWithKeys();
    const FrameRateClock clock;
    std::int32_t keys = 0;
    for (auto _ : state) keys = KeyedIn(ReadPresetText(text, "bench", {}, clock)).keyCount();
    state.SetItemsProcessed(state.iterations() * keyCount);
    if (keys != keyCount) state.SkipWithError("lost keys");
}
BENCHMARK(ReadPreset)->Unit(benchmark::kMicrosecond);

void WritePreset(benchmark::State& state) {
    const FrameRateClock clock;
    const Preset preset = ReadPresetText(TextWithKeys(), "bench", {}, clock);
    std::string text;
    for (auto _ : state) text = TextOfPreset(ViewOf(preset), {});
    state.SetItemsProcessed(state.iterations() * keyCount);
    if (TextOfPreset(ViewOf(ReadPresetText(text, "bench", {}, clock)), {}) != text)
        state.SkipWithError("does not read back");
}
BENCHMARK(WritePreset)->Unit(benchmark::kMicrosecond);

}  // namespace
