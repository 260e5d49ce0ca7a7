#pragma once

struct SDL_Window;

namespace kel {

// How many times as large as usual texts are to be on the window's display, in whole quarters, as fonts look best, and
// never smaller: what the desktop says (on X the resource Xft.dpi), since the size that a monitor tells of itself is
// too often wrong.
[[nodiscard]] float DisplayScale(SDL_Window* window);

// The same for so many pixels an inch, of which 96 are usual; 1 for what says nothing.
[[nodiscard]] float ScaleForPixelsPerInch(double perInch);

}  // namespace kel
