#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "apps/chalkpane/filtering/filter_options.h"
#include "chalkpane/filters/filter.h"
#include "picture_io/picture_format.h"
#include "picture_io/picture_size.h"

namespace chalkpane::app {

// A picture on its way through filters, as far as it is known before it is read.
struct PictureWork {
    std::string name;      // as a message calls it, `the picture "a.png"`
    double fileBytes = 0;  // of the input
    picture_io::PictureSize size;
    const picture_io::FormatRow* format = nullptr;  // of the output
};

struct MemoryPart {
    double bytes = 0;
    std::string what;
};

// What it takes in memory where it takes most - decoded, in the filters, or packed - as the parts that are there
// together, the picture itself first. It depends on the way that the filters run: by bands, or over the whole picture.
// The program itself is not counted. `filters` are the active ones, with their values.
[[nodiscard]] std::vector<MemoryPart> MemoryOf(const PictureWork& work,
                                               std::span<const std::unique_ptr<Filter>> filters,
                                               const FilterOptions& options);

}  // namespace chalkpane::app
