// Random events against the module, on a host that answers what it likes: soak EVENTS [SEED [CHECKPOINT]]. Runs until
// so many events have happened in all, says the figures, and keeps them in the checkpoint, where the next run goes on;
// it may be stopped at any time. Ends with 1 when host objects were left or memory has grown.

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <stdexcept>
#include <string>

#include "chalkpane/base/multi_processor.h"
#include "tests/soak/soak_episode.h"
#include "tests/soak/soak_figures.h"

namespace chalkpane::soak {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t mostWorkers = 16;
constexpr std::int64_t toleratedGrowth = 8 << 20;  // bytes: tables that the engine makes once, and what threads keep
constexpr auto checkpointInterval = std::chrono::seconds(10);

// Of all threads: what an event costs, however busy the machine is.
double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::int64_t BytesInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<std::int64_t>(info.uordblks + info.hblkhd);
}

void RunEpisode(Figures& figures) {
    MultiProcessor::Restart(1 + static_cast<std::int32_t>(figures.episodes % mostWorkers));
    const double start = ProcessorSeconds();
    {
        Episode episode(figures.seed, figures.episodes);
        for (std::int64_t i = 0; i < Episode::events; ++i) {
            const double eventStart = ProcessorSeconds();
            const char* const kind = episode.Step();
            const double seconds = ProcessorSeconds() - eventStart;
            if (seconds <= figures.slowest) continue;
            figures.slowest = seconds;
            figures.slowestEvent = kind;
            figures.slowestEpisode = figures.episodes;
        }
        figures.objectsLeft += episode.End();
    }
    figures.seconds += ProcessorSeconds() - start;
    figures.events += Episode::events;
    ++figures.episodes;
    const std::int64_t memory = BytesInUse();
    if (figures.firstMemory < 0) figures.firstMemory = memory;
    figures.mostMemory = std::max(figures.mostMemory, memory);
}

int Soak(std::int64_t events, std::uint32_t seed, const std::string& checkpoint) {
    Figures figures = ReadFigures(checkpoint, seed);
    auto nextCheckpoint = Clock::now() + checkpointInterval;
    const auto keep = [&] {
        if (!checkpoint.empty()) WriteFigures(figures, checkpoint);
    };
    while (figures.events < events) {
        RunEpisode(figures);
        if (Clock::now() < nextCheckpoint) continue;
        nextCheckpoint = Clock::now() + checkpointInterval;
        keep();
    }
    keep();
    std::printf("soak: seed %u: %s\n", seed, LineOf(figures).c_str());
    return figures.objectsLeft == 0 && figures.mostMemory <= figures.firstMemory + toleratedGrowth ? EXIT_SUCCESS
                                                                                                   : EXIT_FAILURE;
}

}  // namespace
}  // namespace chalkpane::soak

int main(int argc, char** argv) {
    try {
        if (argc < 2 || argc > 4) throw std::runtime_error("how it is run: soak EVENTS [SEED [CHECKPOINT]]");
        const auto seed = static_cast<std::uint32_t>(argc > 2 ? std::stoul(argv[2]) : 1);
        return chalkpane::soak::Soak(std::stoll(argv[1]), seed, argc > 3 ? argv[3] : "");
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "soak: %s\n", failure.what());
        return 2;
    }
}
