#pragma once

#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane::app {

// What the declaration of a brush's parameter does not say and the engine would meet in silence, painting nothing or
// something else: a size that it cannot paint, a profile that there is not. Of keys, every single one counts. Throws
// cli::Error with the reason alone. Values of other parameters are fine.
void CheckBrushValue(const ParameterValue& value);

}  // namespace chalkpane::app
