#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kel/ink/ink_edits.h"
#include "kel/ink/ink_follower.h"
#include "kel/ink/journal_writer.h"
#include "kel/ink/telestrator_module.h"
#include "kel/scene/canvas_substitute.h"
#include "kel/scene/host.h"

namespace kel {

// What was drawn on a container, and how it is edited, whatever module draws there.
//
// An edit gives the canvas of the history in which it had been so. For a telestrator's module a follower keeps the
// strokes, with checkpoints of the canvas, and paints only what changes: that canvas is then shown in the place of the
// module's. All else, and what the follower cannot do, a fresh instance lives through (Host::Rebuild). The bytes are
// the same either way.
class ContainerInk final : private chalkpane::JournalSink, private CanvasSubstitute {
public:
    // Borrows both for its life.
    ContainerInk(Host& host, ObjectId container, const Module& module);
    ~ContainerInk();
    ContainerInk(const ContainerInk&) = delete;
    ContainerInk& operator=(const ContainerInk&) = delete;
    ContainerInk(ContainerInk&&) = delete;
    ContainerInk& operator=(ContainerInk&&) = delete;

    // Makes it at once. False: there was nothing to do.
    bool Edit(const InkEdit& edit);

    // The strokes that are on the canvas; of a module that is no telestrator, none.
    [[nodiscard]] std::vector<chalkpane::SharedStroke> Strokes();
    // The same; nothing while they cannot be told, since one is being drawn or waits for what it becomes.
    [[nodiscard]] std::optional<std::vector<chalkpane::SharedStroke>> SettledStrokes();
    // How many there are among those that have been followed by now; looks at nothing else.
    [[nodiscard]] std::size_t StrokesKept() const;

    // Pointing at strokes. The number is the one that edits take.
    [[nodiscard]] std::optional<std::size_t> StrokeAt(std::int32_t x, std::int32_t y);  // window pixels
    // The lines that the stroke was painted along, in window pixels.
    using Outline = std::vector<std::vector<std::array<double, 2>>>;
    [[nodiscard]] Outline OutlineOf(std::size_t stroke);

    // Of a telestrator's module: from now on strokes are kept as they are drawn, and need not be looked for later.
    void Keep();
    [[nodiscard]] bool CanKeep() const { return m_module.has_value(); }
    // Follows what has been drawn by now. Nothing waits for it; without it, it is done when it is needed.
    void Follow();
    // Writes a journal of all that is drawn from the beginning on. Throws Error.
    void WriteJournal(const std::filesystem::path& file);
    // A line that waits for its recognition is written as what it becomes. Also done in the end.
    void FinishJournal();
    // Why no more of it can be written; empty while all is well.
    [[nodiscard]] std::string JournalTrouble() const { return m_journal ? m_journal->Trouble() : std::string(); }

    // Has to be told before a button is pushed and before each field.
    void BeforeButton(std::string_view button);
    void BeforeField();

    // What is shown is the follower's canvas.
    [[nodiscard]] bool IsSubstituted() const { return m_isShown; }

private:
    // What an edit of the drawing came from.
    struct Source {
        InkEdits::Kind kind = InkEdits::Kind::Stroke;
        std::size_t number = 0;  // as of the operation; 0: none of its own
        friend bool operator==(const Source&, const Source&) = default;
    };
    // A stroke that was one press.
    struct DrawnStroke {
        std::uint32_t number = 0;  // in the drawing
        InkFollower::Line line;
        std::int64_t formerEnd = -1;  // the field in which the one before it was settled
    };

    void Write(const chalkpane::JournalRecord& record) noexcept override;
    View Look() override;

    bool Recall(const InkEdit& edit);
    bool SetFade(const chalkpane::FadeSettings& fade);
    void Show();
    void NoteNewEdit(Source source);
    void ForgetLastStroke();
    Source SourceOfClearing();
    bool CatchUp();
    [[nodiscard]] bool IsSeen() const;
    bool ShowQuickly(InkEditKind kind);
    bool MakeQuickly(InkEditKind kind);
    bool DropLine(const InkEdits::Operation& undone);
    bool MoveQuickly(const InkEdits::Operation& operation);
    bool RecolourQuickly(const InkEdits::Operation& operation);
    [[nodiscard]] std::optional<std::vector<chalkpane::CanvasPosition>> PlacesOf(const InkFollower::Line& line,
                                                                                 const InkEdits::Look& look) const;
    void RebuildAll();
    void Restart(const InstanceHistory& history);
    [[nodiscard]] const DrawnStroke* Find(std::size_t stroke) const;
    [[nodiscard]] const InstanceHistory& History() const { return m_host.History(m_id); }

    Host& m_host;
    ObjectId m_id;
    const Registration& m_registration;
    std::optional<TelestratorModule> m_module;
    InkEdits m_edits;
    std::unique_ptr<InkFollower> m_follower;  // null: nothing is kept yet
    std::unique_ptr<JournalWriter> m_journal;
    std::map<std::size_t, DrawnStroke> m_strokes;  // by their numbers in the history
    std::vector<Source> m_done;                    // of the drawing's edits
    std::vector<Source> m_undone;
    Source m_source;  // of the edit that is being made
    std::int64_t m_lastEnd = -1;
    chalkpane::FadeSettings m_fade;
    std::vector<std::byte> m_faded;  // the canvas, where it is fading
    bool m_isShown = false;
    bool m_isLookWhole = false;  // the next look is at all of it
    bool m_isRestarting = false;
};

}  // namespace kel
