#pragma once

#include <cstdint>
#include <vector>

#include "telestrator/journal/ink_drawing.h"

namespace kel {

// The module's ring of snapshots, with the strokes that each shows in place of its pixels: what the module's own undo
// brings back, however often it is asked. It has the module's rules, of which telestrator/undo_history.cpp tells.
class InkUndoRing {
public:
    // What is on the canvas: the strokes, first to last.
    using State = std::vector<chalkpane::SharedStroke>;

    static State StateOf(const chalkpane::InkDrawing& drawing);

    // The canvas has been made, and is blank.
    void Begin(std::int32_t size);
    // A field comes with another size. state: what the canvas shows.
    [[nodiscard]] bool HasSize(std::int32_t size) const;
    void Resize(std::int32_t size, const State& state);
    // The canvas has come to show this, and what it showed before can be taken back.
    void Push(const State& state);
    void PushClearing();
    // What the canvas is to show instead; null: nothing is taken back.
    const State* Restore();

    [[nodiscard]] std::int32_t Size() const { return static_cast<std::int32_t>(m_entries.size()); }

private:
    void SaveIntoNext();

    std::vector<State> m_entries;
    std::int32_t m_newest = 0;
    State m_current;
};

}  // namespace kel
