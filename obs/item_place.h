#pragma once

#include <cmath>
#include <optional>

namespace chalkpane::obs {

// A place among pixels, from their left and their top.
struct PixelPosition {
    double x = 0;
    double y = 0;
};

// How an item lies in its scene: `origin` is where the corner of what is seen of it lies, `right` and `down` are where
// one of its own pixels leads. What is cropped lies in front of that corner.
struct ItemPlace {
    PixelPosition right{1, 0};
    PixelPosition down{0, 1};
    PixelPosition origin;
    double croppedLeft = 0;  // item pixels
    double croppedTop = 0;

    // The item's pixel that is seen at a place of the scene. Nothing: the item has no area there.
    [[nodiscard]] std::optional<PixelPosition> FromScene(const PixelPosition& at) const {
        const double area = right.x * down.y - right.y * down.x;
        const double x = at.x - origin.x;
        const double y = at.y - origin.y;
        const PixelPosition found{(x * down.y - y * down.x) / area + croppedLeft,
                                  (y * right.x - x * right.y) / area + croppedTop};
        if (!std::isfinite(found.x) || !std::isfinite(found.y)) return std::nullopt;
        return found;
    }
};

}  // namespace chalkpane::obs
