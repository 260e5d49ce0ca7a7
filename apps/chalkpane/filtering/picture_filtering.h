#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "apps/chalkpane/filtering/filter_options.h"
#include "apps/chalkpane/filtering/filter_run.h"
#include "chalkpane/filters/filter.h"
#include "chalkpane/image/image.h"

namespace chalkpane::app {

// Those of the preset and behind them those that are applied, fresh, with their values as they are where the clock
// stands. Values with keys refer to it as long as they live. Throws cli::Error, also where there are no filters.
[[nodiscard]] std::vector<std::unique_ptr<Filter>> FiltersOf(const FilterOptions& options, const FrameRateClock& clock);

// The depth that the options ask for; none: the picture's own.
[[nodiscard]] std::optional<Depth> DepthAskedFor(const FilterOptions& options);

// The rows around a row that the filters need where the picture goes through them by bands; none: it goes as a whole.
[[nodiscard]] std::optional<std::int32_t> RowsAroundFor(std::span<const std::unique_ptr<Filter>> filters,
                                                        const FilterOptions& options);

// Those that change anything, as they stand for the first frame.
[[nodiscard]] std::vector<std::unique_ptr<Filter>> ActiveFiltersOf(const FilterOptions& options, FrameRateClock& clock);

// The mask that the options name, one channel of that depth; null: they name none. Throws cli::Error for one of another
// size than the picture.
[[nodiscard]] std::unique_ptr<Image> ReadMask(const FilterOptions& options, const Rect& picture, Depth depth);

// Throws cli::Error for a region that does not lie within the picture.
[[nodiscard]] FilterRun RunOf(const FilterOptions& options, const Rect& picture, std::int32_t frame);

// The picture that the active ones among the filters make of `source`, with region and mask, as the given frame. Throws
// cli::Error for a region or a mask that does not fit, std::bad_alloc when there is no memory.
[[nodiscard]] std::unique_ptr<Image> Filtered(std::unique_ptr<Image> source,
                                              std::span<const std::unique_ptr<Filter>> filters,
                                              const FilterOptions& options, std::int32_t frame);

}  // namespace chalkpane::app
