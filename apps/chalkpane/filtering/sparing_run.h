#pragma once

#include <memory>

#include "apps/chalkpane/filtering/filter_run.h"
#include "chalkpane/filters/filter.h"
#include "chalkpane/image/image.h"

namespace chalkpane::app {

// What `RunFilter` makes, with the memory of little more than two pictures: filters that make pictures of their own for
// what lies between source and result, and need no more than the rows around a row, run over bands of a large picture,
// each of which is put in the place of its source where the picture does not grow.
[[nodiscard]] std::unique_ptr<Image> RunSparingly(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run);

}  // namespace chalkpane::app
