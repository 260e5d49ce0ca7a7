#pragma once

#include <obs-module.h>

#include <array>

#include "obs/registered_panel.h"

namespace chalkpane::obs {

// The panel as OBS keeps and shows it: settings under the parameters' names, and properties. OBS's colors are four
// bytes with red lowest, as the module's.

// The panel that all sources share. Made when the plug-in is loaded; throws cli::Error as its constructor.
[[nodiscard]] const RegisteredPanel& ThePanel();

void SetDefaults(obs_data_t* settings);
// What is missing, or beyond its limits, has its default.
[[nodiscard]] PanelValues ValuesOf(obs_data_t* settings);
void PutValues(const PanelValues& values, obs_data_t* settings);

// Buttons that the module does not have: Redo takes back what Undo did, and Draw opens a window to draw in.
struct OwnButton {
    const char* name;
    const char* label;
};
inline constexpr OwnButton drawButton{"Draw", "Draw..."};
inline constexpr OwnButton redoButton{"Redo", "Redo"};
inline constexpr std::array ownButtons{drawButton, redoButton};

// Adds the buttons, the module's and its own, and the groups of the panel.
//   push  as obs_properties_add_button takes it; the property's name is the button's
void AddPanel(obs_properties_t* properties, obs_property_clicked_t push);

}  // namespace chalkpane::obs
