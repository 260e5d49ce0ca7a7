#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "apps/chalkpane/filtering/filter_options.h"

namespace chalkpane::app {

// Called with how many rows of how many are done.
using RowProgress = std::function<void(std::int64_t done, std::int64_t all)>;

// A picture file through fresh filters: the bytes of the file to be named `out`. It goes band by band where the filters
// can, and otherwise once as a whole, for which every step counts as many rows as the picture has. Throws cli::Error
// naming the file, std::bad_alloc when there is no memory.
[[nodiscard]] std::vector<std::uint8_t> FilteredFile(const std::filesystem::path& in, const std::filesystem::path& out,
                                                     const FilterOptions& options, const RowProgress& progress = {});

}  // namespace chalkpane::app
