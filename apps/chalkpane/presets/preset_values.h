#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane::app {

// A value's own text in the form in which everything reads back, to exactly the same value: with six decimals where
// these are enough, otherwise with as many digits as the numbers have. Null: it holds what is not a number.
[[nodiscard]] std::optional<std::string> ExactText(const ParameterValue& value);

// False where a number that the value holds is infinite or none.
[[nodiscard]] bool IsFinite(const ParameterValue& value);

// What to write for a parameter in a message: "a number, as in: true 1.5", and the same for a key.
[[nodiscard]] std::string FormOfValue(ParameterType type);
[[nodiscard]] std::string FormOfKey(ParameterType type);

// The names of files that a value holds, turned from relative to absolute, or told from the folder in a copy; null
// where a value holds none. An empty folder leaves them as they are.
void MakeNamesAbsolute(ParameterValue& value, const std::filesystem::path& folder);
[[nodiscard]] ValuePointer WithNamesFrom(const ParameterValue& value, const std::filesystem::path& folder);

}  // namespace chalkpane::app
