#pragma once

#include <array>
#include <string_view>

namespace chalkpane {

// Labels of the edge modes by number. Both 3, as an enumeration counts, and 4, as it is stored, are the last one.
inline constexpr std::array<std::string_view, 5> edgeLabels{"Transparent", "Reflect", "Wrap", "Clamp", "Clamp"};

}  // namespace chalkpane
