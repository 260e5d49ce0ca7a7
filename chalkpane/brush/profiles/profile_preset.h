#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chalkpane/brush/brush_choices.h"
#include "chalkpane/parameters/file_name.h"

namespace chalkpane {

class GraphValue;

// A brush profile that a brush can name: a shape with all that belongs to it.
struct ProfilePreset {
    std::string name;
    ProfileType type = ProfileType::Graph;
    FileName mask;                // for `Image`: its file
    GraphValue* graph = nullptr;  // for `Graph`: the curve that a brush's own graph inherits from; not owned
};

// The presets of the process, which stand before the names built in. None come with it: a front end brings its own, and
// keeps their graphs alive. Not to be changed while anyone paints.
std::vector<ProfilePreset>& ProfilePresets();

}  // namespace chalkpane
