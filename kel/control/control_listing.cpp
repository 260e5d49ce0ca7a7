#include "kel/control/control_listing.h"

#include <nlohmann/json.hpp>

#include "kel/control/control_json.h"

namespace kel {
namespace {

using nlohmann::ordered_json;

ordered_json ParameterJson(const Workspace& workspace, std::size_t index) {
    const Parameter& parameter = workspace.Chosen()->registration->parameters[index];
    ordered_json json = {{"name", parameter.name},
                         {"label", parameter.label},
                         {"kind", KindName(parameter.kind)},
                         {"value", ControlValueJson(parameter, workspace.Value(index))}};
    if (parameter.kind == ParameterKind::Int || parameter.kind == ParameterKind::Float) {
        json["minimum"] = parameter.minimum;
        json["maximum"] = parameter.maximum;
    }
    if (parameter.kind == ParameterKind::Radio) json["options"] = parameter.options;
    json["shown"] = !parameter.hidden && workspace.IsShown(index);
    return json;
}

void AddModule(const Workspace& workspace, ordered_json& answer) {
    ordered_json parameters = ordered_json::array();
    ordered_json buttons = ordered_json::array();
    if (const Workspace::PlugIn* chosen = workspace.Chosen()) {
        for (std::size_t i = 0; i < chosen->registration->parameters.size(); ++i)
            parameters.push_back(ParameterJson(workspace, i));
        for (const Button& button : chosen->registration->buttons)
            buttons.push_back({{"name", button.name}, {"label", button.label}});
    }
    answer["parameters"] = std::move(parameters);
    answer["buttons"] = std::move(buttons);
}

ordered_json KeysJson(const FittedKeys& keys) {
    ordered_json json = ordered_json::array();
    for (const FittedKeys::Key& key : keys.keys)
        if (key.action || key.module) json.push_back({{"key", ChordText(key.chord)}, {"about", key.about}});
    return json;
}

}  // namespace

std::string ListAnswer(ControlTarget& target) {
    const Workspace& workspace = target.TheWorkspace();
    ordered_json answer = {{"ok", true}};
    answer["container"] = workspace.Chosen() == nullptr ? ordered_json() : ordered_json(workspace.Chosen()->name);
    ordered_json containers = ordered_json::array();
    for (const Workspace::PlugIn& plugIn : workspace.PlugIns()) containers.push_back(plugIn.name);
    answer["containers"] = std::move(containers);
    AddModule(workspace, answer);
    answer["actions"] = workspaceActionNames;
    answer["commands"] = ControlForms();
    answer["keys"] = KeysJson(target.Keys());
    answer["film"] = ControlVideoJson(workspace);
    answer["fade"] = ControlFadeJson(workspace);
    return ControlJsonText(answer);
}

std::string ValueAnswer(const Parameter& parameter, const ParameterValue& value) {
    return ControlJsonText({{"ok", true}, {"value", ControlValueJson(parameter, value)}});
}

ControlAnswer RefusedAnswer(std::string_view reason) {
    return {false, ControlJsonText({{"ok", false}, {"error", reason}})};
}

}  // namespace kel
