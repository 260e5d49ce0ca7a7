#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "kel/ink/ink_undo_ring.h"
#include "kel/ink/pane_mapping.h"
#include "kel/ink/telestrator_module.h"
#include "kel/scene/host_state.h"
#include "kel/scene/instance_history.h"
#include "telestrator/journal/journaled_telestrator.h"

namespace kel {

// Lives through what an instance of the telestrator's module was given, with a telestrator that keeps strokes as data.
// Its canvas has the bytes of the instance's after every field, unless it says that it got lost.
class InkFollower {
public:
    // Begins where the history begins. The sink is borrowed, and asked while fields are lived through.
    InkFollower(HostState& state, ObjectId container, const TelestratorModule& module, const InstanceHistory& history,
                chalkpane::JournalSink* sink);

    // Lives through the fields before that one.
    void Follow(const InstanceHistory& history, std::int64_t until);
    // Sets what the instance was set to besides its history.
    void SetValues(const std::vector<ParameterValue>& values);

    // Puts a drawing on the canvas, over what is there or in its place. False: not while the pointer is down.
    bool Recall(const std::vector<chalkpane::SharedStroke>& strokes, chalkpane::InkDrawing::Recall recall);

    // Goes on with a history that has had so many buttons pushed.
    void CountButtons(const InstanceHistory& history);

    // False: something was done that no journal can tell. It is in step again when all has been cleared.
    [[nodiscard]] bool IsInStep() const { return !m_isLost; }
    // A line was taken for the gesture that undoes; told once.
    [[nodiscard]] bool TakeGesture() { return std::exchange(m_hadGesture, false); }

    // Where the pointer was.
    struct Place {
        WindowSize window;
        std::int32_t x = 0;
        std::int32_t y = 0;
    };
    // The line that is being drawn or waits, or has just been told to the sink.
    struct Line {
        std::vector<std::size_t> presses;  // the strokes' numbers in the history
        std::vector<Place> places;         // one for each sample of the hand
        std::int64_t firstField = 0;       // of the history
        bool goesOn = false;               // with the points of the line before it, which was finished just then
    };
    [[nodiscard]] const Line& LastLine() const { return m_line; }
    // The button that is being pushed, by its number; 0: none.
    [[nodiscard]] std::size_t Pushed() const { return m_pushed; }
    [[nodiscard]] std::int64_t Field() const { return m_field; }

    [[nodiscard]] chalkpane::JournaledTelestrator& Telestrator() { return *m_telestrator; }
    [[nodiscard]] const PaneMapping& Mapping() const { return m_mapping; }

private:
    void Give(const InstanceInput& input);
    void MoveButton(const InstanceInput& input);
    void Press(const InstanceInput& input, const chalkpane::CanvasPosition& at);
    void Push(std::int32_t action);
    void PollPointer();
    void PassField();
    void ShowRingsState(const InkUndoRing::State& wanted);
    void RememberPosition(std::int32_t x, std::int32_t y);
    [[nodiscard]] InkUndoRing::State State() const;
    [[nodiscard]] chalkpane::TelestratorSettings Settings() const { return m_module.Settings(m_values); }

    HostState* m_state;
    PaneMapping m_mapping;
    TelestratorModule m_module;
    std::vector<ParameterValue> m_values;
    std::unique_ptr<chalkpane::JournaledTelestrator> m_telestrator;
    InkUndoRing m_ring;
    Line m_line;
    std::int64_t m_field = 0;      // of the history, the next one
    std::int64_t m_ownFields = 0;  // of the operator: without the steps between them
    std::size_t m_buttons = 0;
    std::size_t m_pushed = 0;
    WindowSize m_window{-1, -1};  // as of the last field
    std::int32_t m_pointerX = 0;  // where the pointer is
    std::int32_t m_pointerY = 0;
    double m_pressure = 1;      // of the pen there
    std::int32_t m_lastX = -1;  // where it was looked at last
    std::int32_t m_lastY = -1;
    bool m_isInsideStroke = false;
    bool m_isDown = false;
    bool m_isLost = false;
    bool m_isRingLost = false;  // the ring may have what was drawn while this was lost
    bool m_hadGesture = false;
};

}  // namespace kel
