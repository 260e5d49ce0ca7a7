#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "telestrator/journal/journal_file.h"
#include "telestrator/journal/journal_replay.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/small_journal.h"

namespace {

using namespace chalkpane;

std::string TextOf(const std::vector<JournalRecord>& records) {
    std::string text(journalHeader);
    text += '\n';
    for (const JournalRecord& record : records) text += RecordText(record) + '\n';
    return text;
}

bool AreAlike(const Image& a, const Image& b) {
    const auto bytes = static_cast<std::size_t>(a.Width()) * 4;
    for (std::int32_t y = a.y0; y <= a.y1; ++y)
        if (std::memcmp(a.Address(a.x0, y), b.Address(b.x0, y), bytes) != 0) return false;
    return true;
}

bool IsSmall(const std::vector<JournalRecord>& records) {
    constexpr std::size_t mostRecords = 40;
    std::vector<SharedStroke> strokes;
    for (const JournalRecord& record : records)
        strokes.insert(strokes.end(), record.strokes.begin(), record.strokes.end());
    return records.size() <= mostRecords && fuzz::IsSmall(strokes);
}

void Require(bool holds) {
    if (!holds) std::abort();
}

// Drawn again, taken back and brought back, the canvas is what following the journal leaves.
void CheckDrawing(const std::vector<JournalRecord>& records) {
    Image canvas = NewInkCanvas();
    InkDrawing drawing(canvas);
    if (!Follow(drawing, records).empty()) return;
    JournalReplay replay(records);
    replay.PlayTo(std::numeric_limits<std::int64_t>::max());
    Require(AreAlike(replay.Canvas(), canvas));
    JournalReplay even(records, JournalReplay::Pace::Even);
    even.PlayTo(even.LastField());
    Require(AreAlike(even.Canvas(), canvas));
    std::size_t undone = 0;
    while (drawing.Undo().done) ++undone;
    Require(AreAlike(NewInkCanvas(), canvas));
    for (; undone > 0; --undone) Require(drawing.Redo().done);
    Require(AreAlike(replay.Canvas(), canvas));
}

}  // namespace

// A journal is read, written as the same text again, and drawn where that is small.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const ReadJournal read = ParseJournal(fuzz::TextOf(bytes, size));
    Require(read.wholeBytes <= size);
    if (!read.error.empty()) return 0;
    const std::string text = TextOf(read.records);
    const ReadJournal again = ParseJournal(text);
    Require(again.error.empty() && again.wholeBytes == text.size() && TextOf(again.records) == text);
    if (IsSmall(read.records)) CheckDrawing(read.records);
    return 0;
}
