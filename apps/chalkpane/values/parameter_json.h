#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "apps/chalkpane/values/parameter_text.h"

namespace chalkpane::app {

// {"label", "key", "type", "default", "minimum", "maximum", "choices"}; the last three where the parameter has them.
// Numbers and booleans are told as such, everything else as the text that ParameterTexts takes.
[[nodiscard]] nlohmann::ordered_json JsonOf(const ParameterDescription& parameter);

// The text of a value that a JSON file gives, for ParameterTexts: a string as it stands, a number or a boolean in its
// own form, an array of numbers with commas ([0.5, 12] for a pair), an array of arrays with semicolons ([[0, 0], [1,
// 1]] for a graph). Throws cli::Error with the reason alone for null, for an object and for deeper arrays.
[[nodiscard]] std::string TextOfJson(const nlohmann::json& value);
[[nodiscard]] std::string TextOfJson(const nlohmann::ordered_json& value);

}  // namespace chalkpane::app
