#pragma once

#include <string>
#include <vector>

#include "chalkpane/filters/filter.h"

namespace chalkpane::app {

// The words of an enumeration parameter in the order of its numbers; empty for any other. filter: whose parameter it
// is; null: a brush's.
[[nodiscard]] std::vector<std::string> ChoicesOf(const ParameterDef& definition, const Filter* filter);

}  // namespace chalkpane::app
