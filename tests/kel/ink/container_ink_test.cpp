#include "kel/ink/container_ink.h"

#include <doctest/doctest.h>

#include "tests/kel/ink/drawing_hand.h"

namespace kel {
namespace {

using testing::HandAct;
using testing::RandomHand;
using testing::SlantedPane;

InkEdit EditOf(InkEditKind kind, std::size_t number) {
    InkEdit edit;
    edit.kind = kind;
    edit.number = number;
    return edit;
}

const Module& ModuleOf(SlantedPane& pane) { return pane.host.LoadModule(CHALKPANE_MODULE); }

// A pane whose drawing is edited as a container's, beside one that each edit is lived through anew for.
class EditedPanes {
public:
    EditedPanes() : ink(m_edited.host, m_edited.container, ModuleOf(m_edited)) {}

    void Do(const HandAct& act) {
        m_edited.Do(act, [&](const std::string& button) {
            if (button.empty())
                ink.BeforeField();
            else
                ink.BeforeButton(button);
        });
        m_rebuilt.Do(act, [&](const std::string& button) {
            // The module's own undo brings back what its own ring has, so the instance has to be the rebuilt one.
            if (!button.empty()) Rebuild();
        });
        Rebuild();
    }
    // True: it was done, on both.
    bool Edit(const InkEdit& edit) {
        const bool isDone = ink.Edit(edit);
        bool isLivedThrough = false;
        const bool isRepeated = edit.kind == InkEditKind::Undo || edit.kind == InkEditKind::Redo;
        for (std::size_t i = 0; i < (isRepeated ? edit.number : 1); ++i)
            isLivedThrough = m_edits.Do(History(), edit) || isLivedThrough;
        CHECK_EQ(isDone, isLivedThrough);
        if (isLivedThrough) m_isEdited = true;
        Do(RandomHand::Waiting(1));
        return isDone;
    }
    void CheckAlike() {
        CHECK(m_edited.host.ReadPremultipliedCanvas(m_edited.container) ==
              m_rebuilt.host.ReadPremultipliedCanvas(m_rebuilt.container));
    }

private:
    [[nodiscard]] const InstanceHistory& History() const { return m_rebuilt.host.History(m_rebuilt.container); }
    void Rebuild() {
        if (!m_isEdited) return;
        m_rebuilt.host.Rebuild(m_rebuilt.container, m_edits.Apply(History()));
    }

    SlantedPane m_edited;
    SlantedPane m_rebuilt;
    InkEdits m_edits;
    bool m_isEdited = false;

public:
    ContainerInk ink;
};

}  // namespace

TEST_CASE("each stroke that is removed leaves the canvas of the history without it, at once") {
    EditedPanes panes;
    RandomHand hand(3);
    for (int i = 0; i < 6; ++i) panes.Do(hand.Stroke());
    for (std::size_t stroke = 1; stroke <= 6; ++stroke) {
        CAPTURE(stroke);
        CHECK(panes.Edit(EditOf(InkEditKind::Remove, stroke)));
        CHECK(panes.ink.IsSubstituted());
        panes.CheckAlike();
        CHECK(panes.Edit(EditOf(InkEditKind::Undo, 1)));
        panes.CheckAlike();
    }
}

TEST_CASE("random edits among strokes, settings and buttons leave the canvas of the edited history") {
    for (std::uint32_t seed = 1; seed <= 5; ++seed) {
        CAPTURE(seed);
        EditedPanes panes;
        RandomHand hand(seed);
        for (int i = 0; i < 14; ++i) {
            CAPTURE(i);
            panes.Do(hand.Next());
            InkEdit edit = EditOf(static_cast<InkEditKind>(hand.Below(5)), 1 + hand.Below(5));
            if (edit.kind == InkEditKind::Undo || edit.kind == InkEditKind::Redo) edit.number = 1 + hand.Below(2);
            edit.right = static_cast<std::int32_t>(hand.Below(31)) - 15;
            edit.down = static_cast<std::int32_t>(hand.Below(31)) - 15;
            if (edit.kind == InkEditKind::Recolour) edit.values = {{8, ColourBytes{10, 200, 30, 255}}};
            CAPTURE(static_cast<int>(edit.kind));
            CAPTURE(edit.number);
            panes.Edit(edit);
            panes.CheckAlike();
        }
    }
}

}  // namespace kel
