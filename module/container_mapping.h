#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// From window pixels to the container's plane and from there to canvas pixels.

// Reads the container's box and `aspect`. False: the box is too narrow or too flat to map anything.
bool ReadBoundingBox(PluginInstance& instance, ObjectHandle container);

// Where the camera ray through window pixel (x, y), y from the top, meets the container's plane, in the container's own
// coordinates, z 0. (0, 0, -1000) where the plane is seen nearly edge-on.
[[nodiscard]] Vector3 MapPointerToContainer(const PluginInstance& instance, ObjectHandle container, std::int32_t x,
                                            std::int32_t y);

// Not clamped: a position beyond the box lies beyond the canvas, and not finite where the mapping has no answer.
[[nodiscard]] CanvasPosition MapPointerToCanvas(const PluginInstance& instance, ObjectHandle container, std::int32_t x,
                                                std::int32_t y);

}  // namespace chalkpane
