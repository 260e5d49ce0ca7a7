#pragma once

#include "telestrator/journal/ink_stroke.h"

namespace chalkpane {

// How far the position is from the nearest ink of the stroke, in canvas pixels: 0 on it, infinity where it has none.
// What erases is no ink; what another stroke erased still counts.
[[nodiscard]] double InkDistance(const InkStroke& stroke, const CanvasPosition& at);

}  // namespace chalkpane
