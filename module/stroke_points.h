#pragma once

#include <cstdint>
#include <span>

#include "module/plugin_instance.h"

namespace chalkpane {

// Appends to the stored stroke, resampled to a spacing of about BrushWidth whatever the pointer's speed.
//
//   canvasX, canvasY  canvas pixels; a position that an int cannot hold is dropped
//   force             the point itself and no resampling: the ends of a stroke
//
// Makes the recognition buffers when they are missing. Nothing happens while RecoShapes is 0. Points beyond the room of
// the buffer are dropped.
void AddStrokePoint(PluginInstance& instance, double canvasX, double canvasY, bool force) noexcept;

// What is stored, borrowed until the buffers go; empty without them.
[[nodiscard]] std::span<Vector3> StoredStroke(const PluginInstance& instance);

}  // namespace chalkpane
