#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// The body of the main loop, which is the host's: makes the canvas, notices changed parameters by comparison with the
// values last applied, follows the pointer, counts down to the recognition, and asks for a redraw.
void StepField(PluginInstance& instance) noexcept;

}  // namespace chalkpane
