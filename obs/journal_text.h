#pragma once

#include <cstddef>
#include <string>

#include "telestrator/journal/journal_file.h"

namespace chalkpane::obs {

// A journal in memory, as text: what a scene collection keeps of a drawing.
class JournalText final : public JournalSink {
public:
    // Beyond this a journal is no more kept whole: what is on the canvas is saved, and what was undone is not.
    static constexpr std::size_t mostBytes = std::size_t{16} << 20;

    void Write(const JournalRecord& record) noexcept override;
    // Goes on after what this text tells.
    void GoOn(std::string text);

    // Empty: it became too long, or memory ran out; the drawing tells the rest.
    [[nodiscard]] const std::string& Text() const { return m_text; }
    // How many records were written here.
    [[nodiscard]] std::size_t Records() const { return m_records; }

private:
    std::string m_text = std::string(journalHeader) + '\n';
    std::size_t m_records = 0;
};

}  // namespace chalkpane::obs
