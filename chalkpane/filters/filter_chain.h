#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/filters/filter.h"
#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"

namespace chalkpane {

using FilterChain = std::span<const std::unique_ptr<Filter>>;

// Which filters of a chain run: all that are active, or only those that move pixels, which run even while inactive.
enum class ChainScope : std::uint8_t { EveryFilter, SpatialOnly };

// Runs a chain over the images of one dab, first filter to last; both keep their depth.
//
//   colour, mask   replaced by what the filters make of them; null: there is no such image. An image that a filter
//                  makes nothing of stays as it was.
//
// Throws std::bad_alloc when there is no memory for a conversion.
void RunFilterChain(FilterChain chain, std::unique_ptr<Image>& colour, std::unique_ptr<Image>& mask, ChainScope scope);

// The area that a chain can change when a dab of this area runs through it.
[[nodiscard]] Rect FilteredArea(FilterChain chain, const Rect& area);

// Tells every active filter that a stroke begins.
void AdvanceFilters(FilterChain chain, const Image* target);

}  // namespace chalkpane
