#pragma once

#include <cstdint>

#include "chalkpane/parameters/colour.h"

namespace chalkpane {

// What a stroke does to the canvas. The values are stored ones; with any other the brushes stay as they are.
enum class BrushType : std::int32_t { Colour = 0, Eraser = 1 };

// What the operator sets. It is handed over with each operation, since it may change between any two of them; the
// telestrator keeps none of it but what it compares with. Any value is survived.
struct TelestratorSettings {
    BrushType brushType = BrushType::Colour;
    std::int32_t brushWidth = 5;    // the radius of a dab in canvas pixels; also the spacing of the stored points
    std::int32_t eraserWidth = 10;  // the radius of a dab in canvas pixels
    std::uint32_t brushColour = 0xF0000000U;  // four bytes in memory order red, green, blue, alpha
    bool recogniseShapes = false;             // a finished line becomes a shape or a smoothed line
    bool recogniseEllipse = true;
    bool recogniseCircle = false;
    bool recogniseCross = true;
    std::int32_t shapeDelay = 50;    // fields from the release to the recognition
    bool arrow = true;               // smoothed lines end in an arrow head
    std::int32_t arrowLength = 30;   // canvas pixels
    std::int32_t arrowWidth = 20;    // canvas pixels
    std::int32_t crossDiameter = 0;  // above 0: fixed size of the cross, canvas pixels
    std::int32_t maxUndos = 10;      // 0 .. 10, clamped

    friend bool operator==(const TelestratorSettings&, const TelestratorSettings&) = default;
};

// The brush's colour for a colour of the settings. The canvas is blue first in memory and is shown as red first: hence
// the bytes in reverse.
[[nodiscard]] constexpr Colour CanvasColour(std::uint32_t brushColour) {
    const auto expandedByte = [&](int index) {
        const std::uint32_t value = (brushColour >> (8 * index)) & 0xFFU;
        return static_cast<std::uint16_t>(value * 64 + (value >> 2));
    };
    return {expandedByte(2), expandedByte(1), expandedByte(0)};
}

}  // namespace chalkpane
