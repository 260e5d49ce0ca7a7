#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "telestrator/telestrator.h"

namespace chalkpane {

// What a stroke is in the end. The names are those of the text form, in the order of the values.
enum class StrokeForm : std::uint8_t { Raw, Line, Arrow, Ellipse, Circle, Cross };
inline constexpr std::array<std::string_view, 6> StrokeFormNames{"raw", "line", "arrow", "ellipse", "circle", "cross"};

// Raw for a stroke of which nothing came.
[[nodiscard]] constexpr StrokeForm FormOf(StrokeResult result) {
    switch (result) {
        case StrokeResult::Line:
            return StrokeForm::Line;
        case StrokeResult::Arrow:
            return StrokeForm::Arrow;
        case StrokeResult::Ellipse:
            return StrokeForm::Ellipse;
        case StrokeResult::Circle:
            return StrokeForm::Circle;
        case StrokeResult::Cross:
            return StrokeForm::Cross;
        case StrokeResult::None:
        case StrokeResult::UndoGesture:
        case StrokeResult::Vanished:
            break;
    }
    return StrokeForm::Raw;
}

}  // namespace chalkpane
