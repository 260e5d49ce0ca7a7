#include "kel/workspace/panel_model.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

#include "cli/error.h"
#include "kel/session/session_values.h"

namespace kel {
namespace {

std::string TipOf(const Parameter& parameter, const PanelLayout& layout) {
    const auto found = layout.tips.find(parameter.name);
    return found == layout.tips.end() ? std::string() : found->second;
}

std::string WithoutSpaces(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t");
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

// A whole number stays one where it fits, so that an Int can tell 3 from 3.5.
SessionValue AsWritten(const Parameter& parameter, const std::string& text) {
    SessionValue written{parameter.name, text, {}};
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
    if (isNumber && (parameter.kind == ParameterKind::Int || parameter.kind == ParameterKind::Float))
        written.value = number;
    if (parameter.kind == ParameterKind::Bool && (text == "true" || text == "false")) written.value = text == "true";
    return written;
}

}  // namespace

PanelModel MakePanelModel(const Registration& registration, const PanelLayout& layout) {
    PanelModel model;
    std::set<std::string> placed;
    const auto addGroup = [&](const std::string& title, const std::vector<std::string>& names) {
        PanelModel::Group group{title, {}};
        for (const std::string& name : names) {
            const Parameter* parameter = registration.FindParameter(name);
            if (parameter == nullptr || parameter->hidden || !placed.insert(name).second) continue;
            group.controls.push_back(
                {static_cast<std::size_t>(parameter - registration.parameters.data()), TipOf(*parameter, layout)});
        }
        if (!group.controls.empty()) model.groups.push_back(std::move(group));
    };
    for (const PanelLayout::Group& group : layout.groups) addGroup(group.title, group.parameters);
    std::vector<std::string> names;
    for (const Parameter& parameter : registration.parameters) names.push_back(parameter.name);
    addGroup(registration.name.empty() ? "Settings" : registration.name, names);
    return model;
}

ParameterValue TypedValue(const Parameter& parameter, const std::string& text) {
    const std::string trimmed = WithoutSpaces(text);
    try {
        return ToParameterValue(Session{}, AsWritten(parameter, trimmed), parameter);
    } catch (const cli::Error& error) {
        // There is no file to name; what is left of "file: place: reason" is the reason.
        const std::string reason = error.what();
        throw cli::Error(parameter.label + " " +
                         reason.substr(std::min(reason.find_first_not_of(": "), reason.size())));
    }
}

ParameterValue SteppedValue(const Parameter& parameter, const ParameterValue& value, double by) {
    if (const auto* number = std::get_if<float>(&value))
        return static_cast<float>(std::clamp(double{*number} + by, parameter.minimum, parameter.maximum));
    const double stepped = std::clamp(std::get<std::int32_t>(value) + by, parameter.minimum, parameter.maximum);
    return static_cast<std::int32_t>(stepped);
}

}  // namespace kel
