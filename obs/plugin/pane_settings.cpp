#include "obs/plugin/pane_settings.h"

#include <algorithm>
#include <cstdint>

namespace chalkpane::obs {
namespace {

using kel::Parameter;
using kel::ParameterKind;
using kel::ParameterValue;

std::int32_t Clamped(long long number) {
    return static_cast<std::int32_t>(std::clamp<long long>(number, INT32_MIN, INT32_MAX));
}

kel::ColourBytes Unpacked(long long packed) {
    kel::ColourBytes colour{};
    for (std::size_t i = 0; i < colour.size(); ++i) colour[i] = static_cast<std::uint8_t>((packed >> (8 * i)) & 0xFF);
    return colour;
}

ParameterValue SavedValue(const Parameter& parameter, obs_data_t* settings) {
    const char* name = parameter.name.c_str();
    switch (parameter.kind) {
        case ParameterKind::Bool:
            return obs_data_get_bool(settings, name) ? 1 : 0;
        case ParameterKind::Float:
            return static_cast<float>(obs_data_get_double(settings, name));
        case ParameterKind::Colour:
            return Unpacked(obs_data_get_int(settings, name));
        case ParameterKind::Image:
            return std::string(obs_data_get_string(settings, name));
        case ParameterKind::Int:
        case ParameterKind::Radio:
            break;
    }
    return Clamped(obs_data_get_int(settings, name));
}

// How a value is put into settings: as it is, or as the default of what is not set.
struct Putter {
    void (*putBool)(obs_data_t*, const char*, bool);
    void (*putInt)(obs_data_t*, const char*, long long);
    void (*putDouble)(obs_data_t*, const char*, double);
    void (*putText)(obs_data_t*, const char*, const char*);
};
constexpr Putter asValue{obs_data_set_bool, obs_data_set_int, obs_data_set_double, obs_data_set_string};
constexpr Putter asDefault{obs_data_set_default_bool, obs_data_set_default_int, obs_data_set_default_double,
                           obs_data_set_default_string};

void Put(const Putter& putter, const PanelValues& values, obs_data_t* settings) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!ThePanel().IsOffered(i)) continue;
        const Parameter& parameter = ThePanel().Registration().parameters[i];
        const char* name = parameter.name.c_str();
        if (const auto* real = std::get_if<float>(&values[i])) putter.putDouble(settings, name, double{*real});
        if (const auto* text = std::get_if<std::string>(&values[i])) putter.putText(settings, name, text->c_str());
        if (const auto* colour = std::get_if<kel::ColourBytes>(&values[i]))
            putter.putInt(settings, name, kel::TelestratorModule::Packed(*colour));
        const auto* number = std::get_if<std::int32_t>(&values[i]);
        if (number != nullptr && parameter.kind == ParameterKind::Bool) putter.putBool(settings, name, *number != 0);
        if (number != nullptr && parameter.kind != ParameterKind::Bool) putter.putInt(settings, name, *number);
    }
}

// Shows what the module shows with the values that the properties have now. True: the properties are to be shown anew.
bool FollowModule(obs_properties_t* properties, obs_property_t* /*changed*/, obs_data_t* settings) {
    const std::vector<bool> shown = ThePanel().Shown(ValuesOf(settings));
    bool isOther = false;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const char* name = ThePanel().Registration().parameters[i].name.c_str();
        obs_property_t* property = obs_properties_get(properties, name);
        if (property == nullptr || obs_property_visible(property) == shown[i]) continue;
        obs_property_set_visible(property, shown[i]);
        isOther = true;
    }
    return isOther;
}

obs_property_t* AddProperty(obs_properties_t* properties, const Parameter& parameter) {
    const char* name = parameter.name.c_str();
    const char* label = parameter.label.c_str();
    switch (parameter.kind) {
        case ParameterKind::Bool:
            return obs_properties_add_bool(properties, name, label);
        case ParameterKind::Int:
            return obs_properties_add_int_slider(properties, name, label, static_cast<int>(parameter.minimum),
                                                 static_cast<int>(parameter.maximum), 1);
        case ParameterKind::Float:
            return obs_properties_add_float_slider(properties, name, label, parameter.minimum, parameter.maximum, 0.01);
        case ParameterKind::Colour:
            return obs_properties_add_color(properties, name, label);
        case ParameterKind::Image:
            return obs_properties_add_path(properties, name, label, OBS_PATH_FILE, nullptr, nullptr);
        case ParameterKind::Radio:
            break;
    }
    obs_property_t* list = obs_properties_add_list(properties, name, label, OBS_COMBO_TYPE_LIST, OBS_COMBO_FORMAT_INT);
    for (std::size_t i = 0; i < parameter.options.size(); ++i)
        obs_property_list_add_int(list, parameter.options[i].c_str(), static_cast<long long>(i));
    return list;
}

}  // namespace

const RegisteredPanel& ThePanel() {
    static const RegisteredPanel panel;
    return panel;
}

void SetDefaults(obs_data_t* settings) { Put(asDefault, ThePanel().Defaults(), settings); }

PanelValues ValuesOf(obs_data_t* settings) {
    PanelValues values = ThePanel().Defaults();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Parameter& parameter = ThePanel().Registration().parameters[i];
        if (!ThePanel().IsOffered(i)) continue;
        const ParameterValue saved = SavedValue(parameter, settings);
        if (parameter.Refusal(saved).empty()) values[i] = saved;
    }
    return values;
}

void PutValues(const PanelValues& values, obs_data_t* settings) { Put(asValue, values, settings); }

void AddPanel(obs_properties_t* properties, obs_property_clicked_t push) {
    obs_properties_add_button(properties, drawButton.name, drawButton.label, push);
    for (const kel::Button& button : ThePanel().Registration().buttons)
        obs_properties_add_button(properties, button.name.c_str(), button.label.c_str(), push);
    obs_properties_add_button(properties, redoButton.name, redoButton.label, push);
    for (const kel::PanelModel::Group& group : ThePanel().Model().groups) {
        obs_properties_t* inside = obs_properties_create();
        for (const kel::PanelModel::Control& control : group.controls) {
            const Parameter& parameter = ThePanel().Registration().parameters[control.parameter];
            obs_property_t* property = AddProperty(inside, parameter);
            if (!control.tip.empty()) obs_property_set_long_description(property, control.tip.c_str());
            obs_property_set_modified_callback(property, FollowModule);
        }
        obs_properties_add_group(properties, ("Group " + group.title).c_str(), group.title.c_str(), OBS_GROUP_NORMAL,
                                 inside);
    }
}

}  // namespace chalkpane::obs
