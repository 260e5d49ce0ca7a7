#include "kel/module_loading/registered_parameter.h"

#include <cstring>
#include <utility>

namespace kel {
namespace {

Parameter NewParameter(ParameterKind kind, const char* name, const char* label, ParameterValue defaultValue) {
    Parameter parameter;
    parameter.kind = kind;
    parameter.name = name;
    parameter.label = label != nullptr ? label : name;
    parameter.defaultValue = std::move(defaultValue);
    return parameter;
}

Parameter WithLimits(Parameter parameter, double minimum, double maximum) {
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    return parameter;
}

}  // namespace

Parameter BoolParameter(const char* name, const char* label, std::int32_t defaultValue) {
    return NewParameter(ParameterKind::Bool, name, label, defaultValue);
}

Parameter IntParameter(const char* name, const char* label, std::int32_t defaultValue, std::int32_t minimum,
                       std::int32_t maximum) {
    return WithLimits(NewParameter(ParameterKind::Int, name, label, defaultValue), minimum, maximum);
}

Parameter FloatParameter(const char* name, const char* label, float defaultValue, float minimum, float maximum) {
    return WithLimits(NewParameter(ParameterKind::Float, name, label, defaultValue), double{minimum}, double{maximum});
}

Parameter ColourParameter(const char* name, const char* label, std::uint32_t defaultValue) {
    ColourBytes bytes{};
    std::memcpy(bytes.data(), &defaultValue, sizeof defaultValue);  // a word is four bytes in memory order
    return NewParameter(ParameterKind::Colour, name, label, bytes);
}

Parameter ImageParameter(const char* name, const char* label, const char* defaultName) {
    return NewParameter(ParameterKind::Image, name, label, std::string(defaultName != nullptr ? defaultName : ""));
}

Parameter RadioParameter(const char* name, const char* label, std::int32_t defaultValue, const char* const* options) {
    Parameter parameter = NewParameter(ParameterKind::Radio, name, label, defaultValue);
    for (const auto* option = options; option != nullptr && *option != nullptr; ++option)
        parameter.options.emplace_back(*option);
    return parameter;
}

}  // namespace kel
