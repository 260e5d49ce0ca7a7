#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kel/workspace/keys_table.h"
#include "obs/registered_panel.h"

namespace chalkpane::obs {

// What OBS offers to be bound to a key, for each source and filter.
struct PanelHotkey {
    std::string id;     // under which OBS saves what it is bound to, such as "chalkpane.set.Yellow"
    std::string label;  // what the operator reads
    kel::ModuleKey does;
};

// Every button; a toggle for every switch and for every choice between two that the window has a key for; the window's
// colours; wider and narrower. Their order is that of the panel.
[[nodiscard]] std::vector<PanelHotkey> MakeHotkeys(const RegisteredPanel& panel);

// The values when what the hotkey does has been done to them; those of a button are as they were.
[[nodiscard]] PanelValues AfterHotkey(const RegisteredPanel& panel, const PanelHotkey& hotkey,
                                      const PanelValues& values);

}  // namespace chalkpane::obs
