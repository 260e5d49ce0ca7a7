#pragma once

#include <memory>
#include <vector>

#include "chalkpane/filters/filter.h"

namespace chalkpane {

// A fresh object of every filter class, in the order of the family.
[[nodiscard]] std::vector<std::unique_ptr<Filter>> MakeFilterPrototypes();

}  // namespace chalkpane
