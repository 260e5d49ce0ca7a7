#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "kel/module_loading/parameter.h"
#include "kel/workspace/workspace.h"

namespace kel {

// On one line. Names may come from any module: what is no UTF-8 is replaced.
[[nodiscard]] std::string ControlJsonText(const nlohmann::ordered_json& json);

// A value in the JSON type in which a session writes it; a float with as many digits as it needs.
[[nodiscard]] nlohmann::ordered_json ControlValueJson(const Parameter& parameter, const ParameterValue& value);

// How the video stands; null when there is none.
[[nodiscard]] nlohmann::ordered_json ControlVideoJson(const Workspace& workspace);

[[nodiscard]] nlohmann::ordered_json ControlFadeJson(const Workspace& workspace);

}  // namespace kel
