#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "obs/journal_text.h"
#include "obs/pane_place.h"
#include "obs/registered_panel.h"
#include "telestrator/journal/journaled_telestrator.h"

namespace chalkpane::obs {

enum class PaneAction : std::uint8_t { Clear, Undo, Redo };

// What is drawn on one source: the telestrator behind it, what the operator does to it, and its canvas.
//
// All may be called from any thread. What the operator does is queued and happens in the next field, in its order;
// fields are passed on the thread that draws. Where memory runs out, the operation does nothing.
class InkPane {
public:
    // Borrows the panel.
    explicit InkPane(const RegisteredPanel& panel);
    ~InkPane() = default;
    InkPane(const InkPane&) = delete;
    InkPane& operator=(const InkPane&) = delete;
    InkPane(InkPane&&) = delete;
    InkPane& operator=(InkPane&&) = delete;

    // The size of the source; sides below 1 count as 1. A stroke that is being drawn goes on at the pointer.
    void SetPlace(const PanePlace& place);
    [[nodiscard]] PanePlace Place() const;

    // x, y: source pixels from the left and the top. A press while the pen is down, and a movement or a release while
    // it is not, is nothing; so is a press while the panel says that the telestrator is not active.
    void Press(double x, double y) { Point(EventKind::Press, x, y); }
    void Move(double x, double y) { Point(EventKind::Move, x, y); }
    void Release(double x, double y) { Point(EventKind::Release, x, y); }
    // The pen leaves where it was last: the pointer is gone.
    void Lift() { Point(EventKind::Lift, 0, 0); }

    void SetValues(const PanelValues& values);
    // The last ones that were set, also while they wait for their field.
    [[nodiscard]] PanelValues Values() const;
    void Push(PaneAction action);

    // One field: what waits happens, and lines that wait for their shape come nearer to it.
    void PassField();

    // Hands over what of the canvas changed since the last call, if anything did, and the canvas: rows of canvasSize
    // pixels, the lowest one first as it is seen, red, green, blue, alpha, multiplied by alpha. Borrowed for the call.
    //   changed  columns and rows, counted as they lie in memory
    using ShowChange = std::function<void(const Rect& changed, std::span<const std::byte> canvas)>;
    void TakeChange(const ShowChange& show);
    // The next call of TakeChange is given all.
    void ShowAll();

    // What was drawn as a journal (docs/journal.md), with what waits and, as if the pen left now, with the line that is
    // being drawn; empty while nothing ever was.
    [[nodiscard]] std::string InkText();
    // Goes on from such a text on a canvas where nothing was drawn yet. Returns what is wrong with it, in one line, or
    // nothing; a text that cannot be read is kept, and is what InkText answers as long as nothing is drawn.
    [[nodiscard]] std::string LoadInk(const std::string& text);

private:
    enum class EventKind : std::uint8_t { Press, Move, Release, Lift, Values, Action };
    struct Event {
        EventKind kind = EventKind::Move;
        CanvasPosition at;
        PanelValues values;
        PaneAction action = PaneAction::Clear;
    };
    // Of the line that is being drawn or waits for its shape.
    struct Sample {
        EventKind kind = EventKind::Move;
        CanvasPosition at;
        TelestratorSettings settings;
    };

    void Point(EventKind kind, double x, double y);
    void Queue(Event event);
    void DoWaiting();
    void Do(const Event& event);
    void TakeValues(const PanelValues& values);
    void Draw(EventKind kind, const CanvasPosition& at);
    void Edit(PaneAction action);
    void NoteChange();
    void DropFinishedHand(std::size_t recordsBefore);
    [[nodiscard]] std::string ClosedText() const;
    [[nodiscard]] std::string TextWithOpenLine() const;

    const RegisteredPanel& m_panel;
    mutable std::mutex m_mutex;
    PanePlace m_place{1, 1};
    PanelValues m_setValues;
    std::vector<Event> m_waiting;

    PanelValues m_values;  // as the events so far have them
    TelestratorSettings m_settings;
    JournalText m_journal;
    JournaledTelestrator m_telestrator;
    std::vector<Sample> m_hand;
    CanvasPosition m_lastAt;
    bool m_isDown = false;
    Rect m_changed;
    std::string m_unreadable;
};

}  // namespace chalkpane::obs
