#pragma once

#include <string>
#include <vector>

#include "kel/window/value_control.h"
#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/panel_model.h"
#include "kel/workspace/workspace.h"

namespace kel {

// The operator's panel at the right of the window, made from what the chosen plug-in's module registered.
class Panel {
public:
    // Shows all of it and does to the workspace what the operator does. Returns what the workspace itself is asked for.
    // isFolded: a narrow strip with what is needed at every stroke
    std::vector<WorkspaceAction> Show(Workspace& workspace, const FittedKeys& keys, WindowSize window, bool isFolded);

    // Why a value was not taken, once.
    [[nodiscard]] std::optional<std::string> TakeRefusal() { return m_controls.TakeRefusal(); }

private:
    void ShowWhole(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked);
    static void ShowStrip(Workspace& workspace, const FittedKeys& keys, std::vector<WorkspaceAction>& asked);
    void ShowPlugIns(Workspace& workspace);
    void ShowParameters(Workspace& workspace, const FittedKeys& keys);

    ValueControls m_controls;
    const Registration* m_modelled = nullptr;  // what m_model was made from
    PanelModel m_model;
};

}  // namespace kel
