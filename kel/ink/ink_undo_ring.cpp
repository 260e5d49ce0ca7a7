#include "kel/ink/ink_undo_ring.h"

#include <algorithm>
#include <cstddef>

#include "telestrator/telestrator.h"

namespace kel {
namespace {

std::int32_t Clamped(std::int32_t size) { return std::clamp(size, 0, chalkpane::undoLimit); }

}  // namespace

InkUndoRing::State InkUndoRing::StateOf(const chalkpane::InkDrawing& drawing) {
    State state;
    for (const chalkpane::InkDrawing::Stroke& stroke : drawing.Strokes()) state.push_back(stroke.ink);
    return state;
}

void InkUndoRing::Begin(std::int32_t size) {
    m_entries.assign(static_cast<std::size_t>(Clamped(size)), State());
    m_newest = 0;
    m_current.clear();
}

bool InkUndoRing::HasSize(std::int32_t size) const { return Size() == Clamped(size); }

void InkUndoRing::Resize(std::int32_t size, const State& state) {
    const std::int32_t wanted = Clamped(size);
    while (Size() > wanted) {
        std::int32_t victim = Size() == 1 ? 0 : m_newest + 1;
        if (victim >= Size()) {
            victim = 0;
            --m_newest;
        }
        m_entries.erase(m_entries.begin() + victim);
    }
    while (Size() < wanted) m_entries.insert(m_entries.begin() + std::min(m_newest + 1, Size()), state);
}

void InkUndoRing::SaveIntoNext() {
    if (++m_newest >= Size()) m_newest = 0;
    if (Size() > 0) m_entries[static_cast<std::size_t>(m_newest)] = m_current;
}

void InkUndoRing::Push(const State& state) {
    if (Size() > 0) SaveIntoNext();
    m_current = state;
}

void InkUndoRing::PushClearing() {
    SaveIntoNext();
    m_current.clear();
}

const InkUndoRing::State* InkUndoRing::Restore() {
    if (Size() == 0) return nullptr;
    m_current = m_entries[static_cast<std::size_t>(m_newest)];
    if (--m_newest < 0) m_newest = Size() - 1;
    return &m_current;
}

}  // namespace kel
