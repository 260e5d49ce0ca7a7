#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "apps/chalkpane/filtering/filter_run.h"
#include "chalkpane/filters/filter.h"
#include "chalkpane/image/image.h"
#include "picture_io/row_reader.h"

namespace chalkpane::app {

// A chain of filters over a picture band by band: only a few rows of it are in memory, and they stay in the processor's
// cache from one filter to the next. The result is that of `RunFilters` over the whole picture, byte for byte, for
// filters that make each row from the rows around it alone.

// How many rows above and below a row the chain needs to make it. Nothing where one of the filters needs the whole
// picture: because it measures it, draws random numbers in its order, or moves pixels over any distance.
[[nodiscard]] std::optional<std::int32_t> RowsAround(std::span<const std::unique_ptr<Filter>> filters);
// The same for one filter, however many they are.
[[nodiscard]] std::optional<std::int32_t> RowsAround(const Filter& filter);

// Rows of a band for a picture of that width: as much as stays close to the processor, and more than what is around it.
[[nodiscard]] std::int32_t BandRows(std::int32_t width, std::int32_t rowsAround);

// Takes a finished band, straight, with the bounds that its rows have in the whole picture; bands come from the top
// row down. False ends the run.
using TakeBand = std::function<bool(const Image& band)>;

// What is read is decoded on a thread of its own, ahead of the filters. False: `take` ended the run. Throws cli::Error
// with the reason alone for what is wrong with the file, and std::bad_alloc.
[[nodiscard]] bool RunByBands(picture_io::RowReader& reader, std::span<const std::unique_ptr<Filter>> filters,
                              const FilterRun& run, Depth depth, std::int32_t rowsAround, const TakeBand& take);

}  // namespace chalkpane::app
