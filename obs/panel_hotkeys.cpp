#include "obs/panel_hotkeys.h"

#include "kel/workspace/embedded_text.h"
#include "kel/workspace/fitted_keys.h"

namespace chalkpane::obs {
namespace {

using kel::ModuleKey;

void AddButtons(const kel::Registration& registration, std::vector<PanelHotkey>& hotkeys) {
    for (const kel::Button& button : registration.buttons)
        hotkeys.push_back(
            {"chalkpane.button." + button.name, button.label, {ModuleKey::Kind::Button, button.name, {}, 0}});
}

void AddSwitches(const RegisteredPanel& panel, std::vector<PanelHotkey>& hotkeys) {
    for (const kel::PanelModel::Group& group : panel.Model().groups)
        for (const kel::PanelModel::Control& control : group.controls) {
            const kel::Parameter& parameter = panel.Registration().parameters[control.parameter];
            if (parameter.kind != kel::ParameterKind::Bool) continue;
            hotkeys.push_back({"chalkpane.toggle." + parameter.name,
                               parameter.label + " on and off",
                               {ModuleKey::Kind::Toggle, {}, {{control.parameter, 0}, {control.parameter, 1}}, 0}});
        }
}

// What the window's own keys do to the panel, but for the buttons and switches, which all have a hotkey by now.
void AddWindowKeys(const RegisteredPanel& panel, std::vector<PanelHotkey>& hotkeys) {
    const kel::KeysTable table = kel::ParseKeys(std::string(kel::DefaultKeysText()), "keys.json");
    const kel::FittedKeys fitted = kel::FitKeys(table, &panel.Registration(), kel::KeyFit::WhatFits);
    for (const kel::FittedKeys::Key& key : fitted.keys) {
        if (!key.module || key.module->settings.empty()) continue;
        const kel::Parameter& parameter = panel.Registration().parameters[key.module->settings[0].parameter];
        if (parameter.kind == kel::ParameterKind::Bool) continue;
        hotkeys.push_back({"chalkpane.set." + key.about, key.about, *key.module});
    }
}

}  // namespace

std::vector<PanelHotkey> MakeHotkeys(const RegisteredPanel& panel) {
    std::vector<PanelHotkey> hotkeys;
    AddButtons(panel.Registration(), hotkeys);
    AddSwitches(panel, hotkeys);
    AddWindowKeys(panel, hotkeys);
    return hotkeys;
}

PanelValues AfterHotkey(const RegisteredPanel& panel, const PanelHotkey& hotkey, const PanelValues& values) {
    PanelValues after = values;
    const auto& settings = hotkey.does.settings;
    switch (hotkey.does.kind) {
        case ModuleKey::Kind::Button:
            break;
        case ModuleKey::Kind::Toggle:
            after[settings[0].parameter] =
                values[settings[0].parameter] == settings[1].value ? settings[0].value : settings[1].value;
            break;
        case ModuleKey::Kind::Step: {
            const std::vector<bool> shown = panel.Shown(values);
            for (const ModuleKey::Setting& setting : settings) {
                if (!shown[setting.parameter]) continue;
                const kel::Parameter& parameter = panel.Registration().parameters[setting.parameter];
                after[setting.parameter] = kel::SteppedValue(parameter, values[setting.parameter], hotkey.does.by);
                break;
            }
            break;
        }
        case ModuleKey::Kind::Set:
            for (const ModuleKey::Setting& setting : settings) after[setting.parameter] = setting.value;
            break;
    }
    return after;
}

}  // namespace chalkpane::obs
