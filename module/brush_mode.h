#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// Sets the brushes of both surfaces from BrushType, the widths and the brush image. Without a canvas nothing happens.
void ConfigureBrushes(PluginInstance& instance);  // throws std::bad_alloc
void ApplyBrushMode(PluginInstance& instance) noexcept;

}  // namespace chalkpane
