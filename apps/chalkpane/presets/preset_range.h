#pragma once

#include <optional>
#include <string>

#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane::app {

// "12 lies outside 0 .. 10": what is wrong with a number that a value was set to, or that one of its keys has. Null
// where all lie in the declared range, as colors do from 0 to 16383; the default always may. A value that is not set
// has no number of its own.
[[nodiscard]] std::optional<std::string> RangeFault(const ParameterValue& value);

}  // namespace chalkpane::app
