#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kel/scene/instance_history.h"

namespace kel {

// Edits of what was drawn on a container, whatever module draws there: each is the history of its instance with
// something in it done otherwise, which a fresh instance then lives through (Host::Rebuild). So a stroke that is taken
// away is one that was never drawn.
//
// A stroke is a press over the container and all up to its release. Strokes are numbered from 1 as they were drawn, and
// keep their numbers. What can be undone, to any depth, is strokes, buttons and edits, each as one.
class InkEdits {
public:
    // Each is given the history so far. True: something was done, and `Apply` gives the history as it now is.
    bool Undo(const InstanceHistory& history);
    bool Redo(const InstanceHistory& history);
    bool Remove(const InstanceHistory& history, std::size_t stroke);
    // right, down: window pixels.
    bool Move(const InstanceHistory& history, std::size_t stroke, std::int32_t right, std::int32_t down);
    // From the field before its press to the field before the next one's, these parameters have these values.
    bool Recolour(const InstanceHistory& history, std::size_t stroke, const std::vector<SettingInput>& values);

    [[nodiscard]] InstanceHistory Apply(const InstanceHistory& history) const;
    // Of the history that was given last.
    [[nodiscard]] std::size_t Strokes() const { return m_strokes; }

private:
    enum class Kind : std::uint8_t { Stroke, Action, Remove, Move, Recolour };
    struct Operation {
        Kind kind = Kind::Stroke;
        std::size_t number = 0;  // of the stroke, or of the button that was pushed, from 1
        std::int32_t right = 0;
        std::int32_t down = 0;
        std::vector<SettingInput> values;
    };
    // What became of a stroke.
    struct Look {
        bool isThere = false;
        std::int32_t right = 0;
        std::int32_t down = 0;
        std::vector<SettingInput> values;
    };

    void Follow(const InstanceHistory& history);
    bool Edit(const InstanceHistory& history, Operation operation);
    [[nodiscard]] Look LookOf(std::size_t stroke) const;
    [[nodiscard]] bool IsPushed(std::size_t action) const;

    std::vector<Operation> m_done;
    std::vector<Operation> m_undone;   // the last one first to be redone
    std::size_t m_inputs = 0;          // of the history that have been followed
    std::size_t m_operatorInputs = 0;  // of the last one of them
    bool m_isPressed = false;
    bool m_isPointerSeen = false;  // of the last one of them
    std::size_t m_strokes = 0;
    std::size_t m_actions = 0;
};

}  // namespace kel
