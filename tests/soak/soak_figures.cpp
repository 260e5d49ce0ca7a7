#include "tests/soak/soak_figures.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace chalkpane::soak {
namespace {

template <typename Value>
void ReadLine(std::istream& stream, const std::string& wanted, Value& value) {
    std::string name;
    if (!(stream >> name >> value) || name != wanted) throw std::runtime_error("the checkpoint has no line " + wanted);
}

// One list of the lines, for both ways.
template <typename Figures, typename Each>
void ForEachLine(Figures& figures, Each each) {
    each("seed", figures.seed);
    each("episodes", figures.episodes);
    each("events", figures.events);
    each("seconds", figures.seconds);
    each("slowest", figures.slowest);
    each("slowestEvent", figures.slowestEvent);
    each("slowestEpisode", figures.slowestEpisode);
    each("firstMemory", figures.firstMemory);
    each("mostMemory", figures.mostMemory);
    each("objectsLeft", figures.objectsLeft);
}

}  // namespace

Figures ReadFigures(const std::filesystem::path& file, std::uint32_t seed) {
    Figures figures;
    figures.seed = seed;
    std::ifstream stream(file);
    if (file.empty() || !stream) return figures;
    ForEachLine(figures, [&](const char* name, auto& value) { ReadLine(stream, name, value); });
    if (figures.seed != seed)
        throw std::runtime_error("the checkpoint is of seed " + std::to_string(figures.seed) + ", not " +
                                 std::to_string(seed));
    return figures;
}

void WriteFigures(const Figures& figures, const std::filesystem::path& file) {
    const std::filesystem::path unfinished = file.string() + ".unfinished";
    {
        std::ofstream stream(unfinished);
        ForEachLine(figures, [&](const char* name, const auto& value) { stream << name << ' ' << value << '\n'; });
        if (!stream.flush()) throw std::runtime_error(unfinished.string() + " cannot be written");
    }
    std::filesystem::rename(unfinished, file);
}

std::string LineOf(const Figures& figures) {
    constexpr std::size_t longest = 400;
    std::string line(longest, '\0');
    const int length = std::snprintf(
        line.data(), line.size(),
        "%lld events in %.1f s of processor time (%.0f a second); slowest %.1f ms (%s, episode %lld); memory %.1f MiB "
        "after the first "
        "episode, %.1f at most; host objects left %lld",
        static_cast<long long>(figures.events), figures.seconds,
        figures.seconds > 0.0 ? static_cast<double>(figures.events) / figures.seconds : 0.0, figures.slowest * 1e3,
        figures.slowestEvent.c_str(), static_cast<long long>(figures.slowestEpisode),
        static_cast<double>(figures.firstMemory) / (1 << 20), static_cast<double>(figures.mostMemory) / (1 << 20),
        static_cast<long long>(figures.objectsLeft));
    line.resize(static_cast<std::size_t>(length));
    return line;
}

}  // namespace chalkpane::soak
