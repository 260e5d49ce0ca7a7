#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "apps/chalkpane/strokes/strokes_file.h"

namespace chalkpane::app {

// Counts what the canvas and the pictures of a file of strokes take in memory all together, before any of it is taken.
// Throws cli::Error that names `shownName` when that is more than `allowed` bytes.
//   picture  painted on instead of the file's own canvas; empty: none
//   depth    0: 8 bits; 1: 14 bits; none: that of the file
void CheckMemory(const StrokesFile& file, const std::filesystem::path& picture, std::optional<std::int32_t> depth,
                 std::uint64_t allowed, const std::filesystem::path& shownName);

}  // namespace chalkpane::app
