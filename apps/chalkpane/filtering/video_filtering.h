#pragma once

#include <filesystem>

#include "apps/chalkpane/filtering/filter_options.h"

namespace chalkpane::app {

// A video through filters, frame by frame, the video's frame 0 as the options' frame: the video `out`, with as many
// frames to the second. Sound is left out. Throws cli::Error, also when the two are one file.
void FilterVideoFile(const std::filesystem::path& in, const std::filesystem::path& out, const FilterOptions& options);

}  // namespace chalkpane::app
