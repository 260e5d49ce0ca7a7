#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chalkpane/parameters/file_name.h"

namespace chalkpane {

class GraphValue;

// A brush profile that a brush can name: a shape with all that belongs to it.
struct ProfilePreset {
    std::string name;
    std::uint8_t type = 0;        // as in `BrushSource`: 0 graph, 1 image, 2 one pixel, 3 texture, 4 feather
    FileName mask;                // for type 1: the image
    GraphValue* graph = nullptr;  // for type 0: the curve that a brush's own graph inherits from; not owned
};

// The presets of the module, which stand before the names built in. None come with it: a front end brings its own, and
// keeps their graphs alive. For the plug-in's thread.
std::vector<ProfilePreset>& ProfilePresets();

}  // namespace chalkpane
