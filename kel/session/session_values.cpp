#include "kel/session/session_values.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "cli/error.h"
#include "cli/hex_colour.h"
#include "cli/nearest_name.h"

namespace kel {
namespace {

// Reads one value; the reasons to refuse it are strings, which the caller throws with file and place.
class ValueReader {
public:
    ValueReader(const SessionValue& value, const Parameter& parameter) : m_value(value), m_parameter(parameter) {}

    [[nodiscard]] ParameterValue Read() const {
        switch (m_parameter.kind) {
            case ParameterKind::Bool:
                return std::int32_t{Get<bool>("must be true or false")};
            case ParameterKind::Int:
                return Whole();
            case ParameterKind::Float:
                return Real();
            case ParameterKind::Colour:
                return Colour();
            case ParameterKind::Image:
                return Get<std::string>("must be the path of a picture, or \"\" for none");
            case ParameterKind::Radio:
                return Option();
        }
        throw std::string("is of a kind that sessions cannot write");
    }

private:
    template <typename T>
    [[nodiscard]] const T& Get(const char* otherwise) const {
        const T* value = std::get_if<T>(&m_value.value);
        if (!value) throw std::string(otherwise);
        return *value;
    }

    // Any number of the file as a double; NaN for what is no number.
    [[nodiscard]] double Number() const {
        if (const auto* whole = std::get_if<std::int64_t>(&m_value.value)) return static_cast<double>(*whole);
        if (const auto* real = std::get_if<double>(&m_value.value)) return *real;
        return std::numeric_limits<double>::quiet_NaN();
    }

    [[nodiscard]] ParameterValue Whole() const {
        const double number = Number();
        if (number != std::floor(number)) throw std::string("must be a whole number");
        const double clamped = std::clamp<double>(number, std::numeric_limits<std::int32_t>::min(),
                                                  std::numeric_limits<std::int32_t>::max());
        CheckLimits(number);
        return static_cast<std::int32_t>(clamped);
    }

    [[nodiscard]] ParameterValue Real() const {
        const double number = Number();
        if (std::isnan(number)) throw std::string("must be a number");
        CheckLimits(number);
        return static_cast<float>(number);
    }

    // On the number of the file, before it is narrowed to the field's type.
    void CheckLimits(double number) const {
        if (number >= m_parameter.minimum && number <= m_parameter.maximum) return;
        throw "must be from " + Shown(m_parameter.minimum) + " to " + Shown(m_parameter.maximum) + ", not " +
            Shown(number);
    }

    static std::string Shown(double number) {
        std::array<char, 32> text{};
        const int length = std::snprintf(text.data(), text.size(), "%.10g", number);
        return {text.data(), static_cast<std::size_t>(length)};
    }

    [[nodiscard]] ParameterValue Colour() const {
        constexpr const char* form = "must be a color, \"#rrggbb\" or \"#rrggbbaa\"";
        const auto colour = cli::ParseHexColour(Get<std::string>(form));
        if (!colour) throw std::string(form);
        return colour->rgba;
    }

    [[nodiscard]] ParameterValue Option() const {
        const auto& options = m_parameter.options;
        const auto& text = Get<std::string>("must be the text of an option");
        const auto found = std::find(options.begin(), options.end(), text);
        if (found == options.end()) throw "has no option " + cli::Quoted(text) + cli::NearestHint(text, options);
        return static_cast<std::int32_t>(found - options.begin());
    }

    const SessionValue& m_value;
    const Parameter& m_parameter;
};

}  // namespace

ParameterValue ToParameterValue(const Session& session, const SessionValue& value, const Parameter& parameter) {
    try {
        ParameterValue converted = ValueReader(value, parameter).Read();
        const std::string refusal = parameter.Refusal(converted);
        if (!refusal.empty()) throw refusal;
        return converted;
    } catch (const std::string& reason) {
        throw cli::Error(session.file.string(), value.place, reason);
    }
}

const Parameter& ParameterOf(const Session& session, const SessionValue& value,
                             const std::vector<Parameter>& parameters) {
    std::vector<std::string> names;
    for (const Parameter& parameter : parameters) {
        if (parameter.name == value.name) return parameter;
        names.push_back(parameter.name);
    }
    throw cli::Error(session.file.string(), value.place, "unknown parameter" + cli::NearestHint(value.name, names));
}

std::string SessionText(const Parameter& parameter, const ParameterValue& value) {
    std::array<char, 32> text{};
    if (const auto* name = std::get_if<std::string>(&value)) return *name;
    if (const auto* colour = std::get_if<ColourBytes>(&value)) {
        const auto& [red, green, blue, alpha] = *colour;
        std::snprintf(text.data(), text.size(), "#%02x%02x%02x%02x", red, green, blue, alpha);
    } else if (const auto* real = std::get_if<float>(&value)) {
        std::snprintf(text.data(), text.size(), "%g", static_cast<double>(*real));
    } else {
        const std::int32_t number = std::get<std::int32_t>(value);
        if (parameter.kind == ParameterKind::Bool) return number != 0 ? "true" : "false";
        if (parameter.kind == ParameterKind::Radio && number >= 0 &&
            static_cast<std::size_t>(number) < parameter.options.size())
            return parameter.options[static_cast<std::size_t>(number)];
        std::snprintf(text.data(), text.size(), "%d", number);
    }
    return text.data();
}

}  // namespace kel
