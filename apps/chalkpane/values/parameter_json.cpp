#include "apps/chalkpane/values/parameter_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "apps/chalkpane/values/value_parsing.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using nlohmann::ordered_json;

// Texts of numbers are JSON as they stand.
ordered_json JsonOfText(const ParameterDescription& parameter, const std::string& text) {
    const std::string& type = parameter.type;
    if (type == "boolean") return text == "true";
    if (type == "integer" || type == "number" || type == "angle") return ordered_json::parse(text);
    return text;
}

template <typename Json>
std::string TextOfScalar(const Json& value) {
    if (value.is_string()) return value.template get<std::string>();
    if (value.is_boolean()) return value.template get<bool>() ? "true" : "false";
    if (value.is_number_float()) {
        const auto number = value.template get<double>();
        // 3.0 and 2e6 are whole numbers too.
        if (number == std::floor(number) && std::abs(number) < 1e15)
            return std::to_string(static_cast<std::int64_t>(number));
        return TextOfNumber(number);
    }
    if (value.is_number()) return value.dump();
    throw Error(std::string("a value cannot be ") + value.type_name());
}

template <typename Json>
std::string TextOfArray(const Json& array, char separator, std::string (*textOf)(const Json&)) {
    std::string text;
    for (const Json& element : array) {
        if (&element != &array.front()) text += separator;
        text += textOf(element);
    }
    return text;
}

template <typename Json>
std::string TextOfNumbers(const Json& value) {
    return value.is_array() ? TextOfArray<Json>(value, ',', TextOfScalar<Json>) : TextOfScalar(value);
}

template <typename Json>
std::string TextOfAny(const Json& value) {
    const bool isNested = value.is_array() && !value.empty() && value.front().is_array();
    return isNested ? TextOfArray<Json>(value, ';', TextOfNumbers<Json>) : TextOfNumbers(value);
}

}  // namespace

ordered_json JsonOf(const ParameterDescription& parameter) {
    ordered_json json = {{"label", parameter.label},
                         {"key", parameter.key},
                         {"type", parameter.type},
                         {"default", JsonOfText(parameter, parameter.defaultText)}};
    if (!parameter.minimum.empty()) {
        json["minimum"] = ordered_json::parse(parameter.minimum);
        json["maximum"] = ordered_json::parse(parameter.maximum);
    }
    if (!parameter.choices.empty()) json["choices"] = parameter.choices;
    return json;
}

std::string TextOfJson(const nlohmann::json& value) { return TextOfAny(value); }
std::string TextOfJson(const ordered_json& value) { return TextOfAny(value); }

}  // namespace chalkpane::app
