#include "obs/journal_text.h"

#include <new>
#include <utility>

namespace chalkpane::obs {

void JournalText::Write(const JournalRecord& record) noexcept {
    ++m_records;
    if (m_text.empty()) return;
    try {
        m_text += RecordText(record) + '\n';
        if (m_text.size() > mostBytes) m_text = {};
    } catch (const std::bad_alloc&) {
        m_text = {};
    }
}

void JournalText::GoOn(std::string text) { m_text = std::move(text); }

}  // namespace chalkpane::obs
