#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace chalkpane::soak {

// What a soak has come to; kept in a file of a few lines, from which it goes on.
struct Figures {
    std::uint32_t seed = 1;
    std::int64_t episodes = 0;
    std::int64_t events = 0;
    double seconds = 0.0;            // of processor time, of the episodes of all runs together
    double slowest = 0.0;            // seconds of processor time, of one event
    std::string slowestEvent = "-";  // its kind
    std::int64_t slowestEpisode = -1;
    std::int64_t firstMemory = -1;  // bytes in use after the first episode of all
    std::int64_t mostMemory = 0;    // bytes in use after an episode
    std::int64_t objectsLeft = 0;   // of the host, over all episodes
};

// Throws std::runtime_error for a file that is no checkpoint. Without a file: the figures of a soak with that seed that
// is about to begin. A checkpoint of another seed is refused too.
[[nodiscard]] Figures ReadFigures(const std::filesystem::path& file, std::uint32_t seed);

// Whole or not at all: a soak may be killed at any time.
void WriteFigures(const Figures& figures, const std::filesystem::path& file);

[[nodiscard]] std::string LineOf(const Figures& figures);

}  // namespace chalkpane::soak
