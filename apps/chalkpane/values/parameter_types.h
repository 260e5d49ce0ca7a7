#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/parameters/parameter_def.h"
#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane::app {

// What a text is read against.
struct Reading {
    const ParameterDef& definition;
    const std::vector<std::string>& choices;  // of an enumeration; none: by its number alone
};

// How the values of one type are set from text and told as text; the forms stand at ParameterTexts. Setting throws
// cli::Error with the reason alone and then leaves the value as it was.
struct ParameterTypeText {
    ParameterType type;
    const char* word;  // what listings call the type
    void (*set)(ParameterValue& value, std::string_view text, const Reading& reading);
    std::string (*tell)(const ParameterValue& value, const Reading& reading);
};

// Null for what has no value, such as the begin and the end of a group.
[[nodiscard]] const ParameterTypeText* TextOfType(ParameterType type);

// A limit of a declared range, in the numbers of the type: a float's limit told as a float.
[[nodiscard]] std::string TextOfLimit(ParameterType type, double limit);

}  // namespace chalkpane::app
