#include "chalkpane/base/multi_processor.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <numeric>
#include <vector>

using namespace chalkpane;

namespace {

void Count(std::int32_t row, void* userData, std::int32_t /*worker*/) {
    ++(*static_cast<std::vector<std::int64_t>*>(userData))[static_cast<std::size_t>(row)];
}

// What it costs to hand out rows that do nothing. Arguments: rows, workers.
void HandOutRows(benchmark::State& state) {
    std::vector<std::int64_t> rows(static_cast<std::size_t>(state.range(0)));
    MultiProcessor::Restart(static_cast<std::int32_t>(state.range(1)));
    for (auto _ : state) MultiProcessor::Instance().Run(0, static_cast<std::int32_t>(rows.size()) - 1, Count, &rows);
    MultiProcessor::Restart(0);
    if (std::accumulate(rows.begin(), rows.end(), std::int64_t{0}) != state.iterations() * state.range(0))
        state.SkipWithError("rows were missed");
}
BENCHMARK(HandOutRows)->ArgsProduct({{5, 1024}, {1, 2}})->UseRealTime();

// The same for the rows of a dab, which stay on the caller's thread. Argument: side of the dab in pixels.
void HandOutDab(benchmark::State& state) {
    std::vector<std::int64_t> rows(static_cast<std::size_t>(state.range(0)));
    const auto side = static_cast<std::int32_t>(state.range(0));
    MultiProcessor::Restart(2);
    for (auto _ : state) RunInBands(0, side - 1, side, Count, &rows);
    MultiProcessor::Restart(0);
    if (std::accumulate(rows.begin(), rows.end(), std::int64_t{0}) != state.iterations() * state.range(0))
        state.SkipWithError("rows were missed");
}
BENCHMARK(HandOutDab)->Arg(11)->Arg(41)->Arg(200)->UseRealTime();

}  // namespace
