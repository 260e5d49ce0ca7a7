#pragma once

#include "chalkpane/parameters/colour.h"

namespace chalkpane {

// The colour that is being painted with: the brush that was last given one keeps it here, and filters that are told to
// "use paint color" take it at the start of a run. The plug-in's thread alone reads and writes it.
inline Colour currentPaintColour{};

}  // namespace chalkpane
