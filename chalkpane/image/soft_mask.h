#pragma once

#include <cstdint>

#include "chalkpane/image/image.h"

namespace chalkpane {

// Fades an image towards the edge of a rectangle or circle. The caller sets rectangle, softness and kind, and asks
// `IsActive` first.
class SoftMask {
public:
    enum Kind : std::uint8_t { none = 0, rectangle = 1, circle = 2 };

    [[nodiscard]] bool IsActive() const { return kind != none && softness >= 0.001; }
    // Multiplies the pixels by the fade, in place.
    //
    //   zoom  the zoom of `image`: rectangle and softness are in pixels of zoom 1
    void ApplySoftMask(Image& image, double zoom);

    Rect rect;
    float inverseWidth = 0.0F;   // 1 / (zoom * softness) of the last call
    std::uint8_t alphaOnly = 0;  // set: four-channel images keep their colour, alpha alone fades
    double softness = 0.0;       // width of the fade in pixels
    std::uint8_t kind = none;
};

}  // namespace chalkpane
