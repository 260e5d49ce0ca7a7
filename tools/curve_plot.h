#pragma once

#include <string>

#include "parameters/parameter_value.h"
#include "shared/picture.h"
#include "tools/frame_rate_clock.h"
#include "tools/preset_places.h"

namespace chalkpane::tools {

// The course of a value over frames as a picture: the curve of each of its numbers drawn in chalk, its keys as dots
// and their handles as pins, on a board with a scale. The value must have numbers (SeriesNames). Moves the clock.
[[nodiscard]] shared::Picture PlotCurve(const ParameterValue& value, const std::string& title, const FrameRange& frames,
                                        FrameRateClock& clock);

}  // namespace chalkpane::tools
