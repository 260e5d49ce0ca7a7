#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// Tells the operator, on standard output, what the telestrator could not allocate: the one failure the module reports.
// One line for each.
void ReportMemoryFailures(PluginInstance& instance) noexcept;

}  // namespace chalkpane
