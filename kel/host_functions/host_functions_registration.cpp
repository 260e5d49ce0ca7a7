// Exported to the modules, which are the only ones to call these.
#pragma GCC visibility push(default)
#include "module/abi/host_api.h"
#pragma GCC visibility pop

#include "cli/nearest_name.h"
#include "kel/host_functions/host_call.h"
#include "kel/module_loading/registered_parameter.h"

namespace {

using kel::HostCall;
using kel::Parameter;
using kel::WrongUse;

// Appends the parameter that `make` makes of name, label and what else the function was given.
template <typename Make, typename... Given>
void RegisterParameter(const char* function, Make make, const char* name, Given... given) {
    const HostCall call(function, kel::inRegistration);
    if (!call || !call.HasPlace(name)) return;
    auto& parameters = call.State().registering->parameters;
    if (call.State().registering->FindParameter(name) != nullptr) {
        call.Report(WrongUse::UnknownName, "there already is a parameter " + cli::Quoted(name));
        return;
    }
    parameters.push_back(make(name, given...));
}

void RegisterText(const char* function, const char* text, std::string kel::Registration::*place) {
    const HostCall call(function, kel::inRegistration);
    if (call && call.HasPlace(text)) call.State().registering->*place = text;
}

void RegisterNumber(const char* function, std::int32_t number, std::int32_t kel::Registration::*place) {
    const HostCall call(function, kel::inRegistration);
    if (call) call.State().registering->*place = number;
}

}  // namespace

void qoRegisterPlugin(const char* name) { RegisterText(__func__, name, &kel::Registration::name); }

void qoRegisterPluginType(std::int32_t type) { RegisterNumber(__func__, type, &kel::Registration::type); }

void qoRegisterPluginFolder(const char* folder) { RegisterText(__func__, folder, &kel::Registration::folder); }

void qoRegisterTotalSize(std::int32_t bytes) { RegisterNumber(__func__, bytes, &kel::Registration::blockSize); }

void qoRegisterParameterBool(const char* name, const char* label, std::int32_t defaultValue) {
    RegisterParameter(__func__, kel::BoolParameter, name, label, defaultValue);
}

void qoRegisterParameterInt(const char* name, const char* label, std::int32_t defaultValue, std::int32_t minimum,
                            std::int32_t maximum) {
    RegisterParameter(__func__, kel::IntParameter, name, label, defaultValue, minimum, maximum);
}

void qoRegisterParameterFloat(const char* name, const char* label, float defaultValue, float minimum, float maximum) {
    RegisterParameter(__func__, kel::FloatParameter, name, label, defaultValue, minimum, maximum);
}

void qoRegisterParameterColor(const char* name, const char* label, std::uint32_t defaultValue) {
    RegisterParameter(__func__, kel::ColourParameter, name, label, defaultValue);
}

void qoRegisterParameterImage(const char* name, const char* label, const char* defaultName) {
    RegisterParameter(__func__, kel::ImageParameter, name, label, defaultName);
}

void qoRegisterParameterRadio(const char* name, const char* label, std::int32_t defaultValue,
                              const char* const* options) {
    RegisterParameter(__func__, kel::RadioParameter, name, label, defaultValue, options);
}

void qoRegisterPushButton(const char* name, const char* label, std::int32_t action) {
    const HostCall call(__func__, kel::inRegistration);
    if (!call || !call.HasPlace(name)) return;
    kel::Registration& registration = *call.State().registering;
    if (registration.FindButton(name) != nullptr)
        return call.Report(WrongUse::UnknownName, "there already is a button " + cli::Quoted(name));
    registration.buttons.push_back({name, label != nullptr ? label : name, action});
}

void qoHideParameter(const char* name) {
    const HostCall call(__func__, kel::inRegistration);
    if (!call || !call.HasPlace(name)) return;
    for (Parameter& parameter : call.State().registering->parameters)
        if (parameter.name == name) {
            parameter.hidden = true;
            return;
        }
    call.Report(WrongUse::UnknownName, "there is no parameter " + cli::Quoted(name));
}

// Answers 1 when the parameter exists, else 0. A parameter that was hidden in the registration stays hidden.
std::int32_t qoSendGuiParameterShow(const char* name, std::int32_t visible) {
    const HostCall call(__func__, kel::Bit(kel::Callback::GuiStatus));
    if (!call || !call.HasPlace(name)) return 0;
    kel::Instance& instance = *call.State().calling;
    const std::ptrdiff_t index = instance.IndexOf(name);
    if (index < 0) {
        call.Report(WrongUse::UnknownName, "there is no parameter " + cli::Quoted(name));
        return 0;
    }
    const auto place = static_cast<std::size_t>(index);
    instance.Show(place, visible != 0 && !instance.TheModule().registration.parameters[place].hidden);
    return 1;
}
