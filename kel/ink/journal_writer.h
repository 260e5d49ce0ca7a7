#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "telestrator/journal/journal_file.h"

namespace kel {

// Writes the journal of one container. The drawing behind it may be made anew, and then has other numbers and other
// edits to undo than the file tells; what the file cannot say as what it was, it says as a drawing recalled in place.
class JournalWriter {
public:
    // Begins the file anew. Throws Error, also where a file is there that is no journal.
    explicit JournalWriter(const std::filesystem::path& file);

    // What has happened to the drawing, which shows it.
    void Write(const chalkpane::JournalRecord& record, const chalkpane::InkDrawing& drawing);
    // The drawing has been made anew.
    void WriteAnew(const chalkpane::InkDrawing& drawing, std::int64_t field);

    // Why no more is written; empty while all is well.
    [[nodiscard]] const std::string& Trouble() const { return m_file.Error(); }

private:
    bool Translate(chalkpane::JournalRecord& record, const chalkpane::InkDrawing& drawing);
    void NoteEdit();

    chalkpane::JournalFile m_file;
    std::map<std::uint32_t, std::uint32_t> m_numbers;  // of the drawing's strokes, in the file
    std::uint32_t m_next = 1;                          // in the file
    std::size_t m_undoable = 0;                        // edits that the file can undo as the drawing does
    std::size_t m_redoable = 0;
};

// Throws Error when a file is there that is no journal, or when the place cannot be written.
void CheckJournalPlace(const std::filesystem::path& file);

}  // namespace kel
