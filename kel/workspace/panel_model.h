#pragma once

#include <string>
#include <vector>

#include "kel/workspace/panel_layout.h"

namespace kel {

// The panel of a module: all that it registered but for what it hides for good, in groups.
struct PanelModel {
    struct Control {
        std::size_t parameter = 0;  // index in the order of registration
        std::string tip;            // may be empty
    };
    struct Group {
        std::string title;
        std::vector<Control> controls;  // at least one
    };
    std::vector<Group> groups;
};

// Parameters that the layout does not know come last, in a group under the module's name, in the order of registration.
[[nodiscard]] PanelModel MakePanelModel(const Registration& registration, const PanelLayout& layout);

// A value as the operator types it: a number, a color "#rrggbb", the text of an option, the path of an image. Throws
// Error with the reason when the parameter does not take it.
[[nodiscard]] ParameterValue TypedValue(const Parameter& parameter, const std::string& text);

// `value` with `by` added, as far as the limits go. The parameter is a number.
[[nodiscard]] ParameterValue SteppedValue(const Parameter& parameter, const ParameterValue& value, double by);

}  // namespace kel
