#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// Turns pointer events into strokes. A press or a release arrives by callback; motion does not: it is polled once per
// field, so a stroke gets at most one new position per rendered field. Positions are window pixels, y from the top.
//
// The mapping follows the host's window as it is, fields of interlaced pictures alike.

enum class PointerEvent { Release, Press };

// Returns the host's answer to the redraw, or -1 while inactive.
std::int32_t HandlePointerEvent(PluginInstance& instance, PointerEvent event, std::int32_t x, std::int32_t y) noexcept;

// Continues a running stroke to where the pointer is now.
void PollPointer(PluginInstance& instance) noexcept;

}  // namespace chalkpane
