#pragma once

namespace kel {

// Colours, spacing and font of the panel, for the current ImGui context.
//   scale  1: for 96 pixels an inch; all sizes are so many times as large
void StylePanel(float scale);

// The scale of the style that was made last.
[[nodiscard]] float PanelScale();

// Pixels that the panel takes at the right, also folded to a strip, and the status line at the bottom.
[[nodiscard]] int PanelWidth();
[[nodiscard]] int StripWidth();
[[nodiscard]] int StatusHeight();

}  // namespace kel
