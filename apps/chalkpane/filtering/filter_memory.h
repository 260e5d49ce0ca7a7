#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include "apps/chalkpane/filtering/filter_options.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane::app {

// Count what filters take in memory, before any of it is taken. All throw cli::Error when that is more than is allowed.

struct FilePair {
    std::filesystem::path in;
    std::filesystem::path out;
};

// Over pictures, so many at a time, of which the largest may come together; or over one film. Standard input is counted
// when it is there.
void CheckFilterMemory(const std::vector<FilePair>& files, std::size_t atATime, const FilterOptions& options);
void CheckStreamMemory(std::span<const std::uint8_t> bytes, const std::filesystem::path& out,
                       const FilterOptions& options);

// Over one picture or video again and again, each time with other values.
void CheckAnimationMemory(const std::filesystem::path& input, std::optional<Depth> depth, std::uint64_t allowed);

}  // namespace chalkpane::app
