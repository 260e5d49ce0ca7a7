#pragma once

#include <string>
#include <vector>

#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane::app {

// The words of an enumeration parameter of BasicBrush or BrushSource, in the order of its numbers; what is reached by
// number alone has its number for a word. None for a parameter of another class.
[[nodiscard]] std::vector<std::string> BrushChoices(const ParameterDef& definition);

// The names that "Profile Name" takes.
[[nodiscard]] std::vector<std::string> ProfileNames();

}  // namespace chalkpane::app
