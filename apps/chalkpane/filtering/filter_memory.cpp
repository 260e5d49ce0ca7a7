#include "apps/chalkpane/filtering/filter_memory.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string>
#include <system_error>

#include "apps/chalkpane/filtering/filter_work.h"
#include "apps/chalkpane/filtering/picture_filtering.h"
#include "apps/chalkpane/filtering/picture_look.h"
#include "apps/chalkpane/filtering/video_output.h"
#include "cli/memory_budget.h"
#include "cli/nearest_name.h"
#include "kel/video/video_size.h"
#include "picture_io/picture_size.h"

namespace chalkpane::app {
namespace {

constexpr double copiesOfFrame = 4;  // before and behind a filter, what it needs in between, and as it is written
constexpr double channels = 4;

using Parts = std::vector<MemoryPart>;

bool HasWords(std::optional<Depth> depth) { return depth == Depth::Fourteen; }

std::string Shown(const std::filesystem::path& input) {
    return (IsVideoName(input) ? "the film " : "the picture ") + cli::Quoted(input.string());
}

// With the pictures of a film that are read ahead, and those that its writer keeps.
double MemoryOfVideo(const std::filesystem::path& input, double copies, std::optional<Depth> depth) {
    const double bytesOfPixel = 2 * kel::bytesOfVideoPixel + copies * channels * (HasWords(depth) ? 2 : 1);
    return kel::ReadVideoPixels(input).value_or(0.0) * bytesOfPixel;
}

double MemoryOfInput(const std::filesystem::path& input, double copies, std::optional<Depth> depth) {
    return IsVideoName(input) ? MemoryOfVideo(input, copies, depth)
                              : picture_io::MemoryOfPicture(input, copies, HasWords(depth));
}

double SizeOfFile(const std::filesystem::path& file) {
    std::error_code failure;
    const auto bytes = std::filesystem::file_size(file, failure);
    return failure ? 0.0 : static_cast<double>(bytes);
}

double Sum(const Parts& parts) {
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [](double sum, const MemoryPart& part) { return sum + part.bytes; });
}

void Count(const Parts& parts, cli::MemoryBudget& budget) {
    for (const MemoryPart& part : parts) budget.Count(part.bytes, part.what);
}

// What runs over one input after the other.
class CountedFilters {
public:
    explicit CountedFilters(const FilterOptions& options)
        : m_options(options), m_clock(options.rate), m_filters(ActiveFiltersOf(options, m_clock)) {}

    [[nodiscard]] Parts Of(const FilePair& files) const {
        if (IsVideoName(files.in))
            return {
                {MemoryOfVideo(files.in, copiesOfFrame + (m_options.mask.empty() ? 0 : 3), DepthAskedFor(m_options)),
                 Shown(files.in)}};
        const auto size = picture_io::ReadPictureSize(files.in);
        if (!size) return {};  // its reader tells
        return MemoryOf({Shown(files.in), SizeOfFile(files.in), *size, &FormatFor(files.out)}, m_filters, m_options);
    }
    [[nodiscard]] Parts Of(std::span<const std::uint8_t> bytes, const std::filesystem::path& out) const {
        const auto size = picture_io::PictureSizeIn(bytes);
        if (!size) return {};
        return MemoryOf({"the picture", static_cast<double>(bytes.size()), *size, &FormatFor(out)}, m_filters,
                        m_options);
    }

private:
    const FilterOptions& m_options;
    FrameRateClock m_clock;
    std::vector<std::unique_ptr<Filter>> m_filters;
};

}  // namespace

void CheckFilterMemory(const std::vector<FilePair>& files, std::size_t atATime, const FilterOptions& options) {
    const CountedFilters filters(options);
    std::vector<Parts> counted;
    for (const FilePair& pair : files)
        if (pair.in != "-") counted.push_back(filters.Of(pair));
    std::ranges::sort(counted, std::ranges::greater(), Sum);
    cli::MemoryBudget budget;
    for (const Parts& parts : std::span(counted).first(std::min(atATime, counted.size()))) Count(parts, budget);
    budget.Check(options.memory, files.size() == 1 ? files.front().in.string() : "--out-dir");
}

void CheckStreamMemory(std::span<const std::uint8_t> bytes, const std::filesystem::path& out,
                       const FilterOptions& options) {
    cli::MemoryBudget budget;
    Count(CountedFilters(options).Of(bytes, out), budget);
    budget.Check(options.memory, "standard input");
}

void CheckAnimationMemory(const std::filesystem::path& input, std::optional<Depth> depth, std::uint64_t allowed) {
    cli::MemoryBudget budget;
    budget.Count(MemoryOfInput(input, copiesOfFrame + 1, depth), Shown(input));
    budget.Check(allowed, input.string());
}

}  // namespace chalkpane::app
