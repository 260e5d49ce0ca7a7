#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "telestrator/journal/journal_record.h"
#include "telestrator/journal/journaled_telestrator.h"

namespace chalkpane {

// Journals as files: one line that says what the file is, then a record a line, in the order in which things happened
// (docs/journal.md). They may come from anybody, so sizes, counts and numbers are held to limits, and no file is named
// in them.

inline constexpr std::string_view journalHeader = "chalkpane-journal 1";

struct ReadJournal {
    std::vector<JournalRecord> records;
    std::size_t wholeBytes = 0;  // up to the end of the last whole record; what follows was torn off and is left out
    std::string error;           // one line, with the line's number; empty: all is well
};
// A last line without an end was being written when its writer was stopped. Throws std::bad_alloc.
[[nodiscard]] ReadJournal ParseJournal(std::string_view text);
[[nodiscard]] ReadJournal ReadJournalFile(const std::filesystem::path& file);

// Does what the records say. Returns what is wrong with one that cannot be done; empty when all were done. The canvas
// has been made. Throws std::bad_alloc.
[[nodiscard]] std::string Follow(JournaledTelestrator& telestrator, const std::vector<JournalRecord>& records);
[[nodiscard]] std::string Follow(InkDrawing& drawing, const std::vector<JournalRecord>& records);

// The strokes that are on the canvas, as a journal of its own: what is kept in a slot. Throws std::bad_alloc.
[[nodiscard]] std::string DrawingText(const InkDrawing& drawing);
// The strokes of such a text, or of any journal: those that it leaves on the canvas.
struct KeptDrawing {
    std::vector<SharedStroke> strokes;
    std::string error;
};
[[nodiscard]] KeptDrawing ParseDrawing(std::string_view text);

// A journal that grows record by record. Each is written and handed to the system before `Write` returns, and nothing
// that was written is touched again.
class JournalFile final : public JournalSink {
public:
    // Makes the file, or goes on at the end of its last whole record: a torn one is cut off. On failure `Error` says
    // what is wrong, and nothing is written.
    explicit JournalFile(const std::filesystem::path& file);

    void Write(const JournalRecord& record) noexcept override;
    // What the file held when it was opened.
    [[nodiscard]] const std::vector<JournalRecord>& Former() const { return former_; }
    // One line, or empty; also when a record could not be written, after which no other is.
    [[nodiscard]] const std::string& Error() const { return error_; }

private:
    void WriteLine(const std::string& line);

    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::string name_;
    std::vector<JournalRecord> former_;
    std::string error_;
    std::unique_ptr<std::FILE, Closer> file_;
};

}  // namespace chalkpane
