#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kel {

enum class ParameterKind { Bool, Int, Float, Colour, Image, Radio };

// "bool", "int", "float", "color", "image", "radio".
[[nodiscard]] std::string_view KindName(ParameterKind kind);

using ColourBytes = std::array<std::uint8_t, 4>;  // red, green, blue, alpha

// std::int32_t for Bool (0 or 1), Int and Radio (number of the option); float; std::string for an image's name.
using ParameterValue = std::variant<std::int32_t, float, ColourBytes, std::string>;

// A parameter as the module registered it.
struct Parameter {
    ParameterKind kind = ParameterKind::Int;
    std::string name;   // what the host and sessions call it
    std::string label;  // what the operator reads
    ParameterValue defaultValue;
    double minimum = 0;  // of Int and Float; both limits are allowed values
    double maximum = 0;
    std::vector<std::string> options;  // of Radio
    bool hidden = false;               // never offered to the operator
    std::size_t offset = 0;            // of its field in the instance block, in bytes

    // Why the value cannot be taken, such as "31 is above the maximum 30"; empty when it can.
    [[nodiscard]] std::string Refusal(const ParameterValue& value) const;
};

// A button of the operator; pushing it calls the module with the action's number.
struct Button {
    std::string name;
    std::string label;
    std::int32_t action = 0;
};

}  // namespace kel
