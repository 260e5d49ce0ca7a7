#pragma once

#include <nlohmann/json_fwd.hpp>

#include "kel/module_loading/parameter.h"

namespace kel {

// A value in the JSON type in which a session writes it.
[[nodiscard]] nlohmann::ordered_json JsonValue(const Parameter& parameter, const ParameterValue& value);

}  // namespace kel
