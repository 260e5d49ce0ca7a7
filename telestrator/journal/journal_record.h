#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "telestrator/journal/ink_drawing.h"
#include "telestrator/journal/ink_stroke.h"

namespace chalkpane {

enum class RecordKind : std::uint8_t { Stroke, Move, Recolour, Remove, Clear, Undo, Redo, Recall };

// One thing that happened to a drawing, with all that it takes to do it again.
struct JournalRecord {
    RecordKind kind = RecordKind::Stroke;
    std::uint32_t number = 0;           // of the stroke; a stroke's own, which follows the one before
    std::vector<SharedStroke> strokes;  // one: drawn, moved or recoloured; any number: recalled
    InkDrawing::Recall recall = InkDrawing::Recall::Over;
    std::int64_t field = 0;  // whose picture shows it; a stroke: as what it became
};

// Does to the drawing what the record says. Throws std::bad_alloc.
[[nodiscard]] InkDrawing::Outcome Apply(const JournalRecord& record, InkDrawing& drawing);

// The record as one line of text, without its end (docs/journal.md). Throws std::bad_alloc.
[[nodiscard]] std::string RecordText(const JournalRecord& record);

// A record from a line, or what is wrong with it. Whatever the line holds, a record that comes of it can be painted.
struct ParsedRecord {
    std::optional<JournalRecord> record;
    std::string error;  // with the word at fault; empty when there is a record
};
[[nodiscard]] ParsedRecord ParseRecord(std::string_view line);

}  // namespace chalkpane
