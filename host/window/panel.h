#pragma once

#include <string>
#include <vector>

#include "host/window/desk.h"
#include "host/window/fitted_keys.h"
#include "host/window/panel_model.h"
#include "host/window/value_control.h"

namespace kel {

// The operator's panel at the right of the window, made from what the chosen plug-in's module registered.
class Panel {
public:
    // Shows all of it and does to the desk what the operator does. Returns what the desk itself is asked for.
    std::vector<DeskAction> Show(Desk& desk, const FittedKeys& keys, WindowSize window);

    // Why a value was not taken, once.
    [[nodiscard]] std::optional<std::string> TakeRefusal() { return m_controls.TakeRefusal(); }

private:
    void ShowPlugIns(Desk& desk);
    void ShowParameters(Desk& desk, const FittedKeys& keys);

    ValueControls m_controls;
    const Registration* m_modelled = nullptr;  // what m_model was made from
    PanelModel m_model;
};

}  // namespace kel
