#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "chalkpane/base/random.h"
#include "chalkpane/composite/blend_formulas.h"
#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/image/unpremultiply_row.h"
#include "tests/reference/blending.h"

using namespace chalkpane;

namespace {

template <typename F>
using Row = std::vector<typename F::Channel>;

template <typename F>
Row<F> NoiseRow(std::size_t pixels, std::uint32_t seed) {
    std::mt19937 random(seed);
    Row<F> row(4 * pixels);
    for (auto& channel : row) channel = static_cast<typename F::Channel>(random() & F::fullScale);
    return row;
}

template <typename F>
void Blend(std::int32_t mode, const Row<F>& source, const Row<F>& destination, Row<F>& output) {
    const auto count = static_cast<std::int32_t>(source.size() / 4);
    if constexpr (F::bits == 14)
        BlendRow14(count, mode, source, destination, output);
    else
        BlendRow8(count, mode, source, destination, output);
}

template <typename F>
bool AsTheReferenceDoes(std::int32_t mode, const Row<F>& source, const Row<F>& destination) {
    SeedRandom(1);
    reference::Generator random{1};
    Row<F> output(source.size());
    Blend<F>(mode, source, destination, output);
    for (std::size_t i = 0; i < source.size(); i += 4) {
        const auto pixel = [i](const Row<F>& row) {
            return reference::Channels{row[i], row[i + 1], row[i + 2], row[i + 3]};
        };
        const auto wanted = reference::BlendPixel(mode, pixel(source), pixel(destination), F::bits == 14, random);
        if (pixel(output) != wanted) return false;
    }
    return true;
}

// Arguments: mode, pixels of the row.
template <typename F>
void BlendRow(benchmark::State& state) {
    const auto mode = static_cast<std::int32_t>(state.range(0));
    const auto pixels = static_cast<std::size_t>(state.range(1));
    const auto source = NoiseRow<F>(pixels, 1);
    const auto destination = NoiseRow<F>(pixels, 2);
    Row<F> output(4 * pixels);
    for (auto _ : state) {
        Blend<F>(mode, source, destination, output);
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
    const std::string_view name = BlendModeNames[static_cast<std::size_t>(mode)];
    state.SetLabel(name.empty() ? "unnamed" : std::string(name));
    if (!AsTheReferenceDoes<F>(mode, source, destination)) state.SkipWithError("differs from the plain reference");
}
BENCHMARK(BlendRow<PixelFormat8>)->ArgsProduct({benchmark::CreateDenseRange(0, blendModeCount - 1, 1), {64, 1024}});
BENCHMARK(BlendRow<PixelFormat14>)->ArgsProduct({benchmark::CreateDenseRange(0, blendModeCount - 1, 1), {64, 1024}});

// The three rows that a paste with a mode prepares: mask merged, colour unpremultiplied, blended.
template <typename F>
void PrepareRows(benchmark::State& state) {
    const auto pixels = static_cast<std::size_t>(state.range(0));
    const auto count = static_cast<std::int32_t>(pixels);
    const auto colours = NoiseRow<F>(pixels, 3);
    const auto mask = NoiseRow<F>(pixels, 4);
    const auto target = NoiseRow<F>(pixels, 5);
    Row<F> merged(4 * pixels);
    Row<F> plain(4 * pixels);
    for (auto _ : state) {
        if constexpr (F::bits == 14) {
            MergeMaskRow14(merged, count, colours, mask, 1);
            UnpremultiplyRow14(count, target, plain);
        } else {
            MergeMaskRow8(merged, count, colours, mask, 1);
            UnpremultiplyRow8(count, target, plain);
        }
        benchmark::DoNotOptimize(merged.data());
        benchmark::DoNotOptimize(plain.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    for (std::size_t i = 0; i < pixels; ++i)
        if (merged[4 * i + 3] != mask[i] || merged[4 * i] != colours[4 * i]) state.SkipWithError("a mask went astray");
}
BENCHMARK(PrepareRows<PixelFormat8>)->Arg(64)->Arg(1024);
BENCHMARK(PrepareRows<PixelFormat14>)->Arg(64)->Arg(1024);

}  // namespace
