#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "kel/ink/telestrator_module.h"
#include "kel/workspace/panel_model.h"

namespace chalkpane::obs {

// The values of all parameters, in the order of registration.
using PanelValues = std::vector<kel::ParameterValue>;

// The telestrator's panel for OBS Studio, made from what the telestrator's module registers: its own registration is
// part of the plug-in and calls the same functions as it calls in any other host.
//
// Groups and tips are those of the renderer's window. Parameters that mean something only where a module lies on a
// container, and those of which a drawing that is kept as strokes knows nothing, are left out.
class RegisteredPanel {
public:
    // Throws cli::Error when what is registered is not the telestrator that this plug-in was built with.
    RegisteredPanel();

    [[nodiscard]] const kel::Registration& Registration() const { return m_module.registration; }
    [[nodiscard]] const kel::PanelModel& Model() const { return m_model; }
    [[nodiscard]] bool IsOffered(std::size_t parameter) const;

    // With those that the window sets over a picture: shapes are recognised, and the pen is yellow.
    [[nodiscard]] const PanelValues& Defaults() const { return m_defaults; }
    // What the module shows with these values, in the order of registration; what is not offered is not shown.
    [[nodiscard]] std::vector<bool> Shown(const PanelValues& values) const;

    [[nodiscard]] TelestratorSettings Settings(const PanelValues& values) const {
        return m_telestrator->Settings(values);
    }
    [[nodiscard]] bool IsActive(const PanelValues& values) const { return m_telestrator->IsActive(values); }

private:
    kel::Module m_module;
    std::optional<kel::TelestratorModule> m_telestrator;  // never empty after construction
    kel::PanelModel m_model;
    PanelValues m_defaults;
};

}  // namespace chalkpane::obs
