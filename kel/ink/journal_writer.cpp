#include "kel/ink/journal_writer.h"

#include <fstream>
#include <system_error>
#include <utility>

#include "cli/error.h"

namespace kel {
namespace {

namespace fs = std::filesystem;
using chalkpane::InkDrawing;
using chalkpane::JournalRecord;
using chalkpane::RecordKind;

const fs::path& Emptied(const fs::path& file) {
    CheckJournalPlace(file);
    std::error_code failure;
    fs::remove(file, failure);
    if (failure) throw cli::Error(file.string(), {}, "cannot be written: " + failure.message());
    return file;
}

}  // namespace

void CheckJournalPlace(const fs::path& file) {
    std::error_code failure;
    if (!fs::exists(file, failure) || fs::is_empty(file, failure)) return;
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    if (line != chalkpane::journalHeader)
        throw cli::Error(file.string(), {}, "is there and is no journal, so it is not replaced");
}

JournalWriter::JournalWriter(const fs::path& file) : m_file(Emptied(file)) {
    if (!m_file.Error().empty()) throw cli::Error(m_file.Error());
}

void JournalWriter::NoteEdit() {
    ++m_undoable;
    m_redoable = 0;
}

// True: the record says in the file what it says of the drawing.
bool JournalWriter::Translate(JournalRecord& record, const InkDrawing& drawing) {
    switch (record.kind) {
        case RecordKind::Undo:
            if (m_undoable == 0) return false;
            --m_undoable;
            ++m_redoable;
            return true;
        case RecordKind::Redo:
            if (m_redoable == 0) return false;
            ++m_undoable;
            --m_redoable;
            return true;
        case RecordKind::Stroke:
            m_numbers[record.number] = m_next;
            record.number = m_next++;
            break;
        case RecordKind::Recall: {
            const auto count = static_cast<std::uint32_t>(record.strokes.size());
            for (std::uint32_t i = 0; i < count; ++i) m_numbers[drawing.NextNumber() - count + i] = m_next++;
            break;
        }
        case RecordKind::Clear:
            break;
        case RecordKind::Remove:
        case RecordKind::Move:
        case RecordKind::Recolour: {
            const auto number = m_numbers.find(record.number);
            if (number == m_numbers.end()) return false;
            record.number = number->second;
            break;
        }
    }
    NoteEdit();
    return true;
}

void JournalWriter::Write(const JournalRecord& record, const InkDrawing& drawing) {
    JournalRecord translated = record;
    if (Translate(translated, drawing))
        m_file.Write(translated);
    else
        WriteAnew(drawing, record.field);
}

void JournalWriter::WriteAnew(const InkDrawing& drawing, std::int64_t field) {
    JournalRecord record{RecordKind::Recall, 0, {}, InkDrawing::Recall::InPlace, field};
    m_numbers.clear();
    for (const InkDrawing::Stroke& stroke : drawing.Strokes()) {
        m_numbers[stroke.number] = m_next++;
        record.strokes.push_back(stroke.ink);
    }
    if (record.strokes.empty()) record.kind = RecordKind::Clear;
    m_undoable = m_redoable = 0;
    m_file.Write(record);
}

}  // namespace kel
