#pragma once

#include <string>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/presets/preset_places.h"
#include "chalkpane/parameters/parameter_value.h"
#include "picture_io/picture.h"

namespace chalkpane::app {

// The course of a value over frames as a picture: the curve of each of its numbers drawn in chalk, its keys as dots
// and their handles as pins, on a board with a scale. The value must have numbers (SeriesNames). Moves the clock.
[[nodiscard]] picture_io::Picture PlotCurve(const ParameterValue& value, const std::string& title,
                                            const FrameRange& frames, FrameRateClock& clock);

}  // namespace chalkpane::app
