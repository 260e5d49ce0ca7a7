#include "apps/chalkpane/filtering/rows_ahead.h"

#include <utility>

namespace chalkpane::app {

RowsAhead::RowsAhead(picture_io::RowReader& reader, std::int32_t count)
    : m_reader(reader), m_count(count), m_thread([this] { Decode(); }) {}

RowsAhead::~RowsAhead() {
    {
        const std::lock_guard lock(m_lock);
        m_isOver = true;
    }
    m_changed.notify_all();
}

void RowsAhead::Decode() {
    try {
        for (std::int32_t left = m_reader.Height(); left > 0; left -= m_count) {
            auto rows = m_reader.Read(m_count);
            std::unique_lock lock(m_lock);
            m_changed.wait(lock, [this] { return m_isOver || m_ready.size() < mostReady; });
            if (m_isOver) return;
            m_ready.push_back(std::move(rows));
            m_changed.notify_all();
        }
    } catch (...) {
        const std::lock_guard lock(m_lock);
        m_failure = std::current_exception();
        m_changed.notify_all();
    }
}

picture_io::AnyPicture RowsAhead::Take() {
    std::unique_lock lock(m_lock);
    m_changed.wait(lock, [this] { return m_failure || !m_ready.empty(); });
    if (m_ready.empty()) std::rethrow_exception(m_failure);
    auto rows = std::move(m_ready.front());
    m_ready.pop_front();
    m_changed.notify_all();
    return rows;
}

}  // namespace chalkpane::app
