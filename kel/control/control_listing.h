#pragma once

#include <string>

#include "kel/control/control_runner.h"

namespace kel {

// Answers on one line of JSON.

// Everything that commands can name: containers, parameters with kind, limits and value, buttons, keys, the names of
// actions, the forms of all other commands; and how film and ink stand.
[[nodiscard]] std::string ListAnswer(ControlTarget& target);

// {"ok":true,"value":...}
[[nodiscard]] std::string ValueAnswer(const Parameter& parameter, const ParameterValue& value);

}  // namespace kel
