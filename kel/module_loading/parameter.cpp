#include "kel/module_loading/parameter.h"

#include <array>
#include <charconv>
#include <cmath>

#include "cli/nearest_name.h"

namespace kel {
namespace {

// How a kind is called, and which alternative of ParameterValue it takes.
struct KindRow {
    std::string_view name;
    std::size_t alternative;
    std::string_view wanted;
};

constexpr std::array kinds{
    // in the order of ParameterKind
    KindRow{"bool", 0, "true or false"}, KindRow{"int", 0, "a whole number"},         KindRow{"float", 1, "a number"},
    KindRow{"color", 2, "a color"},      KindRow{"image", 3, "the name of an image"}, KindRow{"radio", 0, "an option"},
};

const KindRow& Row(ParameterKind kind) { return kinds[static_cast<std::size_t>(kind)]; }

std::string NumberText(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), static_cast<float>(number)).ptr;
    return {text.data(), end};
}

std::string OutsideLimits(double value, double minimum, double maximum, const std::string& text) {
    if (std::isnan(value)) return "is not a number";
    if (value < minimum) return text + " is below the minimum " + NumberText(minimum);
    if (value > maximum) return text + " is above the maximum " + NumberText(maximum);
    return {};
}

std::string UnknownOption(std::int32_t option, const std::vector<std::string>& options) {
    if (option >= 0 && static_cast<std::size_t>(option) < options.size()) return {};
    std::string text = "there is no option " + std::to_string(option) + "; there are:";
    for (const std::string& name : options) text.append(" ").append(cli::Quoted(name));
    return text;
}

}  // namespace

std::string_view KindName(ParameterKind kind) { return Row(kind).name; }

std::string Parameter::Refusal(const ParameterValue& value) const {
    if (value.index() != Row(kind).alternative) return "wants " + std::string(Row(kind).wanted);
    switch (kind) {
        case ParameterKind::Bool: {
            const auto number = std::get<std::int32_t>(value);
            return number == 0 || number == 1 ? "" : std::to_string(number) + " is neither 0 nor 1";
        }
        case ParameterKind::Int: {
            const auto number = std::get<std::int32_t>(value);
            return OutsideLimits(number, minimum, maximum, std::to_string(number));
        }
        case ParameterKind::Float: {
            const auto number = std::get<float>(value);
            return OutsideLimits(double{number}, minimum, maximum, NumberText(double{number}));
        }
        case ParameterKind::Radio:
            return UnknownOption(std::get<std::int32_t>(value), options);
        default:
            return {};
    }
}

}  // namespace kel
