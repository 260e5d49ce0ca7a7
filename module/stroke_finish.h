#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// Decides what becomes of a finished freehand line: a recognised shape, a smoothed line with an arrow head, nothing,
// or, for a dab of 3 or 4 points, an undo. Draws on `shapeSurface` and marks it to replace the canvas at the next
// render.
void FinishStroke(PluginInstance& instance) noexcept;

}  // namespace chalkpane
