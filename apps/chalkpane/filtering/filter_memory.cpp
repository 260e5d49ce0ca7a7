#include "apps/chalkpane/filtering/filter_memory.h"

#include <algorithm>
#include <string>
#include <utility>

#include "apps/chalkpane/filtering/picture_filtering.h"
#include "apps/chalkpane/filtering/video_output.h"
#include "cli/memory_budget.h"
#include "cli/nearest_name.h"
#include "kel/video/video_size.h"
#include "picture_io/picture_size.h"

namespace chalkpane::app {
namespace {

constexpr double copiesOfPicture = 4;  // before and behind a filter, what it needs in between, and as it is written
constexpr double channels = 4;

bool HasWords(std::optional<std::int32_t> depth) { return depth.value_or(0) != 0; }

// With the pictures of a film that are read ahead, and those that its writer keeps.
double MemoryOfInput(const std::filesystem::path& input, double copies, std::optional<std::int32_t> depth) {
    if (!IsVideoName(input)) return picture_io::MemoryOfPicture(input, copies, HasWords(depth));
    const double bytesOfPixel = 2 * kel::bytesOfVideoPixel + copies * channels * (HasWords(depth) ? 2 : 1);
    return kel::ReadVideoPixels(input).value_or(0.0) * bytesOfPixel;
}

std::string Shown(const std::filesystem::path& input) {
    return (IsVideoName(input) ? "the film " : "the picture ") + cli::Quoted(input.string());
}

// What lies under the mask, the mask as it is read, and the mix.
double CopiesOf(const FilterOptions& options) { return copiesOfPicture + (options.mask.empty() ? 0 : 3); }

}  // namespace

void CheckFilterMemory(std::span<const std::filesystem::path> inputs, std::size_t atATime,
                       const FilterOptions& options) {
    std::vector<std::pair<double, const std::filesystem::path*>> counted;
    for (const auto& input : inputs)
        if (input != "-") counted.emplace_back(MemoryOfInput(input, CopiesOf(options), DepthOf(options)), &input);
    std::ranges::sort(counted, std::ranges::greater());
    cli::MemoryBudget budget;
    for (const auto& [bytes, input] : std::span(counted).first(std::min(atATime, counted.size())))
        budget.Count(bytes, Shown(*input));
    budget.Check(options.memory, counted.size() == 1 ? inputs.front().string() : "--out-dir");
}

void CheckStreamMemory(std::span<const std::uint8_t> bytes, const FilterOptions& options) {
    cli::MemoryBudget budget;
    budget.Count(picture_io::MemoryOfPicture(bytes, CopiesOf(options), HasWords(DepthOf(options))), "the picture");
    budget.Check(options.memory, "standard input");
}

void CheckAnimationMemory(const std::filesystem::path& input, std::optional<std::int32_t> depth,
                          std::uint64_t allowed) {
    cli::MemoryBudget budget;
    budget.Count(MemoryOfInput(input, copiesOfPicture + 1, depth), Shown(input));
    budget.Check(allowed, input.string());
}

}  // namespace chalkpane::app
