#include "obs/registered_panel.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "cli/error.h"
#include "kel/session/session_values.h"
#include "module/registration.h"
#include "obs/registration_host.h"

namespace chalkpane::obs {
namespace {

// TexUnit and Transparent are about the container's own look; the drawing takes back to any depth, knows no pictures
// as brushes, and nothing reads CircleRadius.
constexpr std::array<std::string_view, 5> notOffered{"TexUnit", "Transparent", "MaxUndos", "BrushImage",
                                                     "CircleRadius"};

// The window's groups without what is not offered, which then also comes in no group of its own.
kel::PanelModel OfferedModel(const kel::Registration& registration) {
    kel::PanelModel model = kel::MakePanelModel(registration, kel::ThePanelLayout());
    for (auto& group : model.groups)
        std::erase_if(group.controls, [&](const kel::PanelModel::Control& control) {
            return std::ranges::count(notOffered, registration.parameters[control.parameter].name) > 0;
        });
    std::erase_if(model.groups, [](const kel::PanelModel::Group& group) { return group.controls.empty(); });
    return model;
}

PanelValues ValuesOverPicture(const kel::Registration& registration) {
    PanelValues values;
    for (const kel::Parameter& parameter : registration.parameters) values.push_back(parameter.defaultValue);
    for (const kel::SessionValue& pen : kel::ThePanelLayout().pen) {
        const kel::Parameter* parameter = registration.FindParameter(pen.name);
        if (parameter == nullptr) continue;
        const auto place = static_cast<std::size_t>(parameter - registration.parameters.data());
        values[place] = kel::ToParameterValue(kel::Session{}, pen, *parameter);
    }
    return values;
}

// As a host writes them into the block of an instance. The name of the brush's image is left out.
PluginParameters Block(const kel::Registration& registration, const PanelValues& values) {
    std::array<std::byte, sizeof(PluginParameters)> bytes{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::byte* place = bytes.data() + registration.parameters[i].offset;
        if (const auto* number = std::get_if<std::int32_t>(&values[i])) std::memcpy(place, number, sizeof *number);
        if (const auto* real = std::get_if<float>(&values[i])) std::memcpy(place, real, sizeof *real);
        if (const auto* colour = std::get_if<kel::ColourBytes>(&values[i]))
            std::memcpy(place, colour->data(), colour->size());
    }
    PluginParameters block;
    std::memcpy(&block, bytes.data(), sizeof block);
    return block;
}

}  // namespace

RegisteredPanel::RegisteredPanel() {
    m_module.file = "the telestrator";
    m_module.registration = Register(RegisterPlugin);
    kel::LayOutBlock(m_module);
    m_telestrator = kel::TelestratorModule::Find(Registration());
    if (!m_telestrator) throw cli::Error("the telestrator registers other parameters than it knows");
    m_model = OfferedModel(Registration());
    m_defaults = ValuesOverPicture(Registration());
}

bool RegisteredPanel::IsOffered(std::size_t parameter) const {
    return std::ranges::any_of(m_model.groups, [&](const kel::PanelModel::Group& group) {
        return std::ranges::count(group.controls, parameter, &kel::PanelModel::Control::parameter) > 0;
    });
}

std::vector<bool> RegisteredPanel::Shown(const PanelValues& values) const {
    const PluginParameters block = Block(Registration(), values);
    std::vector<bool> shown = ShownAfter(Registration(), [&] { ShowParameters(block); });
    for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = shown[i] && IsOffered(i);
    return shown;
}

}  // namespace chalkpane::obs
