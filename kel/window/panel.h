#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kel/window/ink_panel.h"
#include "kel/window/value_control.h"
#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/panel_model.h"
#include "kel/workspace/workspace.h"

namespace kel {

// The operator's panel at the right of the window, made from what the chosen plug-in's module registered.
class Panel {
public:
    using KeyPress = std::function<void(const FittedKeys::Key&)>;
    struct Looks {
        InkPanel& ink;            // its part for the ink, which is the window's
        bool isChoosing = false;  // strokes
        bool isFolded = false;    // a narrow strip with what is needed at every stroke
        KeyPress press;           // called for a button that is what a key does
    };

    // Shows all of it and does to the workspace what the operator does. Returns what the workspace itself is asked for.
    std::vector<WorkspaceAction> Show(Workspace& workspace, const FittedKeys& keys, WindowSize window,
                                      const Looks& looks);

    // Why a value was not taken, once.
    [[nodiscard]] std::optional<std::string> TakeRefusal() { return m_controls.TakeRefusal(); }

private:
    void ShowWhole(Workspace& workspace, const FittedKeys& keys, const Looks& looks,
                   std::vector<WorkspaceAction>& asked);
    static void ShowStrip(Workspace& workspace, const FittedKeys& keys, const KeyPress& press,
                          std::vector<WorkspaceAction>& asked);
    void ShowPlugIns(Workspace& workspace);
    // showInk: called where what was drawn has its part, after the pen's.
    void ShowParameters(Workspace& workspace, const FittedKeys& keys, const KeyPress& press,
                        const std::function<void()>& showInk);
    void ShowGroup(Workspace& workspace, const FittedKeys& keys, const KeyPress& press, const PanelModel::Group& group);

    ValueControls m_controls;
    const Registration* m_modelled = nullptr;  // what m_model was made from
    PanelModel m_model;
};

}  // namespace kel
