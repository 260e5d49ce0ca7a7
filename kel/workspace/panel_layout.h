#pragma once

#include <map>
#include <string>
#include <vector>

#include "kel/module_loading/module.h"
#include "kel/session/session.h"

namespace kel {

// What the workspace knows beyond what a module registers, from workspace.json: it names parameters, and those that a
// module does not have are passed over.
struct PanelLayout {
    struct Group {
        std::string title;
        std::vector<std::string> parameters;
    };
    std::vector<SessionValue> pen;            // the values with which the pen lies over a picture or a video
    std::vector<Group> groups;                // in the order of the panel
    std::map<std::string, std::string> tips;  // by parameter
};

// The one that the program carries.
[[nodiscard]] const PanelLayout& ThePanelLayout();

// Throws Error with the place and the reason.
[[nodiscard]] PanelLayout ParsePanelLayout(const std::string& text);

}  // namespace kel
