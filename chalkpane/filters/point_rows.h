#pragma once

#include <span>

#include "chalkpane/filters/point_filter.h"
#include "chalkpane/image/image.h"

namespace chalkpane {

// Runs begun filters over all rows of `result`, whose pixels are those of `source` at the same place: the source
// itself, or an image of the same format within its bounds. On the workers where every filter can.
void RunPointRows(std::span<PointFilter* const> filters, const Image& source, Image& result);

}  // namespace chalkpane
