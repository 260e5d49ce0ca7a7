#pragma once

#include <optional>

#include "kel/workspace/workspace.h"

namespace kel {

// What the chosen plug-in's pen looks like on the screen, as far as its parameters are those of a brush.
struct BrushLook {
    bool isEraser = false;
    bool hasColour = false;  // one plain colour, and not a picture
    ColourBytes colour{};
    double radius = 0;  // scene pixels, where the container stands
};

// Nothing: there is no plug-in, or it shows no width of a brush.
[[nodiscard]] std::optional<BrushLook> BrushLookOf(const Workspace& workspace);

// True: the plug-in makes clean shapes of finished strokes. Nothing: it cannot.
[[nodiscard]] std::optional<bool> RecognisesShapes(const Workspace& workspace);

}  // namespace kel
