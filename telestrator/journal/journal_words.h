#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "telestrator/journal/journal_record.h"

namespace chalkpane::journal_text {

// The words of a record's text, for whoever writes and whoever reads it.

// In the order of RecordKind.
inline constexpr std::array<std::string_view, 8> recordWords{"stroke", "move", "recolour", "remove",
                                                             "clear",  "undo", "redo",     "recall"};
// In the order of InkDrawing::Recall.
inline constexpr std::array<std::string_view, 2> recallWords{"over", "in-place"};
// In the order of HandEvent and of StrokeStage.
inline constexpr std::array<std::string_view, 4> handWords{"p", "m", "r", "l"};
inline constexpr std::array<std::string_view, 3> stepWords{"b", "c", "e"};
inline constexpr std::array<std::string_view, 2> brushWords{"paint", "erase"};

inline constexpr std::string_view settingsWord = "set";
inline constexpr std::string_view insteadWord = "instead";
inline constexpr std::string_view becameWord = "became";
inline constexpr std::string_view endWord = "end";

[[nodiscard]] constexpr bool HasStroke(RecordKind kind) {
    return kind == RecordKind::Stroke || kind == RecordKind::Move || kind == RecordKind::Recolour;
}
[[nodiscard]] constexpr bool HasNumber(RecordKind kind) { return HasStroke(kind) || kind == RecordKind::Remove; }

// Calls `visit` with each number of the settings that the text has, in its order.
template <typename Settings, typename Visit>
void VisitSettings(Settings& settings, const Visit& visit) {
    visit(settings.brushType);
    visit(settings.brushWidth);
    visit(settings.eraserWidth);
    visit(settings.brushColour);
    visit(settings.recogniseShapes);
    visit(settings.recogniseEllipse);
    visit(settings.recogniseCircle);
    visit(settings.recogniseCross);
    visit(settings.shapeDelay);
    visit(settings.arrow);
    visit(settings.arrowLength);
    visit(settings.arrowWidth);
    visit(settings.crossDiameter);
}

}  // namespace chalkpane::journal_text
