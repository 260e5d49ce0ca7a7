#include "obs/registration_host.h"

#include <algorithm>
#include <utility>

#include "kel/module_loading/registered_parameter.h"
#include "module/abi/host_api.h"

namespace chalkpane::obs {
namespace {

thread_local kel::Registration* registering = nullptr;
struct Showing {
    const kel::Registration* registration = nullptr;
    std::vector<bool> shown;
};
thread_local Showing* showing = nullptr;

// Sets the place for as long as it lives.
template <typename Place>
class Set {
public:
    Set(Place*& place, Place& value) : m_place(place) { m_place = &value; }
    ~Set() { m_place = nullptr; }
    Set(const Set&) = delete;
    Set& operator=(const Set&) = delete;
    Set(Set&&) = delete;
    Set& operator=(Set&&) = delete;

private:
    Place*& m_place;
};

template <typename Make, typename... Given>
void Add(Make make, const char* name, Given... given) {
    if (registering == nullptr || name == nullptr || registering->FindParameter(name) != nullptr) return;
    registering->parameters.push_back(make(name, given...));
}

}  // namespace

kel::Registration Register(const std::function<void()>& doRegister) {
    kel::Registration registration;
    const Set set(registering, registration);
    doRegister();
    return registration;
}

std::vector<bool> ShownAfter(const kel::Registration& registration, const std::function<void()>& show) {
    Showing now{&registration, {}};
    for (const kel::Parameter& parameter : registration.parameters) now.shown.push_back(!parameter.hidden);
    const Set set(showing, now);
    show();
    return std::move(now.shown);
}

}  // namespace chalkpane::obs

using chalkpane::obs::Add;
using chalkpane::obs::registering;
using chalkpane::obs::showing;

void qoRegisterPlugin(const char* name) {
    if (registering != nullptr && name != nullptr) registering->name = name;
}

void qoRegisterPluginType(std::int32_t type) {
    if (registering != nullptr) registering->type = type;
}

void qoRegisterPluginFolder(const char* folder) {
    if (registering != nullptr && folder != nullptr) registering->folder = folder;
}

void qoRegisterTotalSize(std::int32_t bytes) {
    if (registering != nullptr) registering->blockSize = bytes;
}

void qoRegisterParameterBool(const char* name, const char* label, std::int32_t defaultValue) {
    Add(kel::BoolParameter, name, label, defaultValue);
}

void qoRegisterParameterInt(const char* name, const char* label, std::int32_t defaultValue, std::int32_t minimum,
                            std::int32_t maximum) {
    Add(kel::IntParameter, name, label, defaultValue, minimum, maximum);
}

void qoRegisterParameterFloat(const char* name, const char* label, float defaultValue, float minimum, float maximum) {
    Add(kel::FloatParameter, name, label, defaultValue, minimum, maximum);
}

void qoRegisterParameterColor(const char* name, const char* label, std::uint32_t defaultValue) {
    Add(kel::ColourParameter, name, label, defaultValue);
}

void qoRegisterParameterImage(const char* name, const char* label, const char* defaultName) {
    Add(kel::ImageParameter, name, label, defaultName);
}

void qoRegisterParameterRadio(const char* name, const char* label, std::int32_t defaultValue,
                              const char* const* options) {
    Add(kel::RadioParameter, name, label, defaultValue, options);
}

void qoRegisterPushButton(const char* name, const char* label, std::int32_t action) {
    if (registering == nullptr || name == nullptr || registering->FindButton(name) != nullptr) return;
    registering->buttons.push_back({name, label != nullptr ? label : name, action});
}

void qoHideParameter(const char* name) {
    if (registering == nullptr || name == nullptr) return;
    const auto found = std::ranges::find(registering->parameters, name, &kel::Parameter::name);
    if (found != registering->parameters.end()) found->hidden = true;
}

std::int32_t qoSendGuiParameterShow(const char* name, std::int32_t visible) {
    if (showing == nullptr || name == nullptr) return 0;
    const kel::Parameter* parameter = showing->registration->FindParameter(name);
    if (parameter == nullptr) return 0;
    const auto place = static_cast<std::size_t>(parameter - showing->registration->parameters.data());
    showing->shown[place] = visible != 0 && !parameter->hidden;
    return 1;
}
