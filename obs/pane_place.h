#pragma once

#include <algorithm>
#include <cstdint>

#include "telestrator/telestrator.h"

namespace chalkpane::obs {

// Where the canvas lies over a source: a square as wide as the source's longer side, around its middle, so that dabs
// are round. What of the square lies beyond the source is not seen. All sizes are source pixels.
struct PanePlace {
    std::int32_t width = 0;  // at least 1
    std::int32_t height = 0;

    [[nodiscard]] double Side() const { return std::max({width, height, 1}); }
    [[nodiscard]] CanvasPosition ToCanvas(double x, double y) const {
        return {(x - Left()) * canvasSize / Side(), (y - Top()) * canvasSize / Side()};
    }

    // The part of the canvas that lies over the source, in fractions of the canvas.
    struct Part {
        double left = 0;
        double top = 0;
        double right = 1;
        double bottom = 1;
    };
    [[nodiscard]] Part SeenPart() const {
        return {-Left() / Side(), -Top() / Side(), (width - Left()) / Side(), (height - Top()) / Side()};
    }

    friend bool operator==(const PanePlace&, const PanePlace&) = default;

private:
    [[nodiscard]] double Left() const { return (width - Side()) / 2; }
    [[nodiscard]] double Top() const { return (height - Side()) / 2; }
};

}  // namespace chalkpane::obs
