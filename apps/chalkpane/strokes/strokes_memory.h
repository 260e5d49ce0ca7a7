#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>

#include "apps/chalkpane/strokes/strokes_file.h"
#include "chalkpane/image/pixel_format.h"
#include "cli/memory_budget.h"

namespace chalkpane::app {

// What the canvas and the pictures of a file of strokes take in memory all together, counted before any of it is taken.
// Both calls throw cli::Error that names `shownName` when that is more than `allowed` bytes.
class StrokesMemory {
public:
    StrokesMemory(std::uint64_t allowed, std::filesystem::path shownName);

    // All that the file names.
    //   picture  painted on instead of the file's own canvas; empty: none
    //   depth    none: that of the file
    void Count(const StrokesFile& file, const std::filesystem::path& picture, std::optional<Depth> depth);
    // Another picture for the brush, such as a preset's; one that has been counted is passed over.
    void CountPicture(const std::filesystem::path& picture);

private:
    void CountOnce(const std::filesystem::path& picture);

    std::uint64_t m_allowed;
    std::filesystem::path m_shownName;
    bool m_hasWords = false;  // the brushes' pictures become such
    std::set<std::filesystem::path> m_pictures;
    cli::MemoryBudget m_budget;
};

}  // namespace chalkpane::app
