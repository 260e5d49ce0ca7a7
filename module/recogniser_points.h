#pragma once

#include <span>

#include "module/plugin_instance.h"

namespace chalkpane {

// The stored stroke, as a recogniser wants it: empty when there are no buffers, `wanted` is 0, or the stroke has more
// points than the searches are made for.
[[nodiscard]] std::span<const Vector3> PointsToRecognise(const PluginInstance& instance, std::int32_t wanted);

// True: seen from `centre` there are points in each of the four quadrants. A point on an axis counts for none.
[[nodiscard]] bool SurroundsOnAllSides(std::span<const Vector3> points, const Vector3& centre);

}  // namespace chalkpane
