#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kel/scene/instance_history.h"
#include "telestrator/journal/ink_drawing.h"
#include "telestrator/journal/ink_fade.h"

namespace kel {

enum class InkEditKind : std::uint8_t { Undo, Redo, Remove, Move, Recolour, Keep, Recall, Fade };

// An edit of what was drawn on a container, with its parameters as the module knows them.
struct InkEdit {
    InkEditKind kind = InkEditKind::Undo;
    std::size_t number = 1;  // how often, which stroke, or which slot; of a recall, 0: its strokes are here
    std::int32_t right = 0;  // window pixels
    std::int32_t down = 0;
    std::vector<SettingInput> values;
    // Recalled, over what is there or in its place.
    std::vector<chalkpane::SharedStroke> strokes;
    chalkpane::InkDrawing::Recall recall = chalkpane::InkDrawing::Recall::Over;
    chalkpane::FadeSettings fade;
};

// Edits of what was drawn on a container, whatever module draws there: each is the history of its instance with
// something in it done otherwise, which a fresh instance then lives through (Host::Rebuild). So a stroke that is taken
// away is one that was never drawn.
//
// A stroke is a press over the container and all up to its release. Strokes are numbered from 1 as they were drawn, and
// keep their numbers. What can be undone, to any depth, is strokes, buttons and edits, each as one.
class InkEdits {
public:
    enum class Kind : std::uint8_t { Stroke, Action, Remove, Move, Recolour, Recall, Fade };
    struct Operation {
        Kind kind = Kind::Stroke;
        std::size_t number = 0;  // of the stroke, or of those of its kind, from 1
        std::int32_t right = 0;
        std::int32_t down = 0;
        std::vector<SettingInput> values;
        std::vector<chalkpane::SharedStroke> strokes;  // recalled
        chalkpane::InkDrawing::Recall recall = chalkpane::InkDrawing::Recall::Over;
        std::int64_t field = 0;   // of a recall, before which it came; of a fade, in which all was gone
        std::int32_t action = 0;  // of the button that does what fading did
    };
    // What became of a stroke.
    struct Look {
        bool isThere = false;
        std::int32_t right = 0;
        std::int32_t down = 0;
        std::vector<SettingInput> values;
    };

    // Each is given the history so far. True: something was done, and `Apply` gives the history as it now is.
    // One edit; of undo and redo, once.
    bool Do(const InstanceHistory& history, const InkEdit& edit);
    bool Undo(const InstanceHistory& history);
    bool Redo(const InstanceHistory& history);
    bool Remove(const InstanceHistory& history, std::size_t stroke);
    // right, down: window pixels.
    bool Move(const InstanceHistory& history, std::size_t stroke, std::int32_t right, std::int32_t down);
    // From the field before its press to the field before the next one's, these parameters have these values.
    bool Recolour(const InstanceHistory& history, std::size_t stroke, const std::vector<SettingInput>& values);

    // A drawing has been recalled before that field, which no history tells.
    void AddRecall(const InstanceHistory& history, const InkEdit& edit, std::int64_t field);
    [[nodiscard]] bool HasRecalls() const;
    // All ink has faded in that field, as if the button of this action had been pushed in it.
    void AddFade(const InstanceHistory& history, std::int64_t field, std::int32_t action);

    // Without what was recalled.
    [[nodiscard]] InstanceHistory Apply(const InstanceHistory& history) const;
    // Of the history that was given last.
    [[nodiscard]] std::size_t Strokes() const { return m_strokes; }

    // What is in force, in the order in which it was done, and what was undone, the last one first to be redone.
    [[nodiscard]] const std::vector<Operation>& Done() const { return m_done; }
    [[nodiscard]] const std::vector<Operation>& Undone() const { return m_undone; }
    [[nodiscard]] Look LookOf(std::size_t stroke) const;

private:
    void Follow(const InstanceHistory& history);
    bool Edit(const InstanceHistory& history, Operation operation);
    [[nodiscard]] bool IsPushed(std::size_t action) const;

    std::vector<Operation> m_done;
    std::vector<Operation> m_undone;
    std::size_t m_inputs = 0;          // of the history that have been followed
    std::size_t m_operatorInputs = 0;  // of the last one of them
    bool m_isPressed = false;
    bool m_isPointerSeen = false;  // of the last one of them
    std::size_t m_strokes = 0;
    std::size_t m_actions = 0;
    std::size_t m_recalls = 0;
    std::size_t m_fades = 0;
};

}  // namespace kel
