#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chalkpane/parameters/animation/animation_clock.h"
#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane::app {

// A value over time as numbers: what `chalkpane curve` prints and plots.

// The names of the numbers: "value"; "x" and "y"; "red", "green" and "blue"; of a file's name the "weight" of the left
// key's. Empty for a value that is no numbers, such as a text or a graph.
[[nodiscard]] std::vector<std::string> SeriesNames(const ParameterValue& value);
// At the current frame of `clock`, which is the value's own, one for each name.
[[nodiscard]] std::vector<double> SeriesAt(const ParameterValue& value, const AnimationClock& clock);
// What stands behind the weight of a file's name: the names of the left and of the right key. Empty for other values.
[[nodiscard]] std::vector<std::string> TextsAt(const ParameterValue& value, const AnimationClock& clock);

// A number of one key; for a value that has keys, with an index and a component that it has.
[[nodiscard]] double KeyNumber(const ParameterValue& value, std::int32_t index, std::size_t component);

struct CurvePoint {
    double frame = 0.0;
    double value = 0.0;
};
// Where the handle of a key ends: towards the next key, or the one before. Null where the segment is straight, at the
// ends, and for values that do not run on handles of this kind (flags, paths, mapped pairs).
struct HandleEnd {
    CurvePoint key;
    CurvePoint end;
};
// Of all keys, for one component.
[[nodiscard]] std::vector<HandleEnd> HandleEnds(const ParameterValue& value, std::size_t component,
                                                const AnimationClock& clock);

}  // namespace chalkpane::app
