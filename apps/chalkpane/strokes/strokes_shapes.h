#pragma once

#include <string>
#include <vector>

namespace chalkpane::app {

// The keys that the parser takes, object by object, in the order of its tables. The schema beside the documentation is
// held to this list.
struct StrokesShape {
    std::string name;  // "file", "canvas" or "stroke"
    std::vector<std::string> keys;
    std::vector<std::string> required;
};

[[nodiscard]] std::vector<StrokesShape> StrokesShapes();

}  // namespace chalkpane::app
