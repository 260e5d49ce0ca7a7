#pragma once

#include <cstdint>

#include "telestrator/recognition/ellipse_fit.h"
#include "telestrator/surface_pen.h"

namespace chalkpane {

// Draws the fitted ellipse clean, as one stroke of the pen.
//
//   centroid    of the points that it was fitted to, in their space
//   brushWidth  the vertices of the second half lie further apart than that, in canvas pixels, those of the first
//               further than its half; any value
void DrawEllipse(const ShapePen& pen, const EllipseFit& fit, const Vector3& centroid, std::int32_t brushWidth);

}  // namespace chalkpane
