#pragma once

#include <array>
#include <optional>

#include "kel/workspace/picture_area.h"
#include "kel/workspace/workspace.h"

namespace kel {

// A round dab of the canvas as it is seen where its container leans: an ellipse around its middle, from which these
// lead to its edge, along the canvas's rows and columns. x to the right, y down.
struct SeenDab {
    std::array<double, 2> across{};
    std::array<double, 2> down{};

    // Half of what it measures to the right and left, and up and down.
    [[nodiscard]] std::array<double, 2> HalfSize() const;
    [[nodiscard]] SeenDab Scaled(double by) const;
};

// What the chosen plug-in's pen looks like on the screen, as far as its parameters are those of a brush.
struct BrushLook {
    bool isEraser = false;
    bool hasColour = false;  // one plain colour, and not a picture
    ColourBytes colour{};
    SeenDab dab;  // in scene pixels, where it was asked for
};

// At this place of the picture. Nothing: there is no plug-in, it shows no width of a brush, or its container is not to
// be seen there from the side that one draws on.
[[nodiscard]] std::optional<BrushLook> BrushLookOf(Workspace& workspace, const ScenePixel& at);

// True: the plug-in makes clean shapes of finished strokes. Nothing: it cannot.
[[nodiscard]] std::optional<bool> RecognisesShapes(const Workspace& workspace);

}  // namespace kel
