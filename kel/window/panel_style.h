#pragma once

namespace kel {

// Colours, spacing and font of the panel, for the current ImGui context.
void StylePanel();

// Pixels that the panel takes at the right and the status line at the bottom.
constexpr int panelWidth = 360;
constexpr int statusHeight = 32;

}  // namespace kel
