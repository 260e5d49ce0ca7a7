#pragma once

#include "chalkpane/parameters/colour.h"

namespace chalkpane {

// The colour that is being painted with: the brush that was last given one keeps it here, and filters that are told to
// "use paint color" take it at the start of a run. Each thread that paints has its own.
inline thread_local Colour currentPaintColour{};

}  // namespace chalkpane
