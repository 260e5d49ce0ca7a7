#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "telestrator/journal/ink_drawing.h"
#include "telestrator/journal/ink_fade.h"
#include "telestrator/journal/journal_record.h"
#include "telestrator/journal/stroke_capture_log.h"
#include "telestrator/telestrator.h"

namespace chalkpane {

// Is given each record when what it says has happened.
class JournalSink {
public:
    JournalSink() = default;
    JournalSink(const JournalSink&) = delete;
    JournalSink& operator=(const JournalSink&) = delete;
    JournalSink(JournalSink&&) = delete;
    JournalSink& operator=(JournalSink&&) = delete;
    virtual void Write(const JournalRecord& record) noexcept = 0;

protected:
    ~JournalSink() = default;
};

// A telestrator with memory: driven like a `Telestrator`, with the same pixels, it keeps every stroke as data, so that
// strokes can be undone and redone to any depth, taken away, moved and recoloured one by one, kept and recalled.
//
//   JournaledTelestrator telestrator;
//   telestrator.Field(settings);
//   telestrator.Press(settings, {100, 100});
//   telestrator.Release(settings, {300, 100});
//   telestrator.Undo();
//   telestrator.Redo();
//   telestrator.MoveStroke(1, 0, 50);  // the first stroke, 50 pixels down
//
// It has no ring of snapshots: `maxUndos` has no meaning to it, and the dab that is an undo gesture undoes here. A line
// whose recognition is switched off while it waits stays as it was drawn. Movements and releases without a press are
// passed over, and so is a press where nothing can be painted. While the pointer is down no edit is made; a line that
// waits for its recognition is finished first. Nothing here throws but what says so; where memory runs out, the
// operation does nothing and `Inner().memory` counts the failure. One thread.
class JournaledTelestrator {
public:
    // The sink is borrowed; null: nobody is told.
    explicit JournaledTelestrator(JournalSink* sink = nullptr) : sink_(sink) {}

    // As those of `Telestrator`. How hard the pen is pressed, 0.0 .. 1.0, is kept and changes no pixel.
    Rect Press(const TelestratorSettings& settings, const CanvasPosition& position, double pressure = 1.0) noexcept;
    Rect Move(const TelestratorSettings& settings, const CanvasPosition& position, double pressure = 1.0) noexcept;
    Rect Release(const TelestratorSettings& settings, const CanvasPosition& position, double pressure = 1.0) noexcept;
    bool Field(const TelestratorSettings& settings) noexcept;
    bool Commit() noexcept;
    [[nodiscard]] Telestrator::Change TakeChange() noexcept;
    bool ApplyBrushMode(const TelestratorSettings& settings, const BrushPicture* picture = nullptr) noexcept;
    void SetAspect(float aspect) noexcept { inner_.aspect = aspect; }

    // What an edit does with a line that waits for its recognition: finishes it first, or takes what the hand painted
    // of it off the canvas and lets it wait on, as the module's buttons do.
    enum class WaitingLine : std::uint8_t { Finished, LeftToWait };

    // Edits. True: done, and the canvas shows it. False: there was nothing to do.
    bool Undo(WaitingLine waiting = WaitingLine::Finished) noexcept;
    bool Redo() noexcept;
    bool Clear(WaitingLine waiting = WaitingLine::Finished) noexcept;
    bool Remove(std::uint32_t number) noexcept;
    // By canvas pixels. What a line became is found anew at its new place.
    bool MoveStroke(std::uint32_t number, double right, double down) noexcept;
    // colour: as in the settings. False also for a stroke that only erases.
    bool Recolour(std::uint32_t number, std::uint32_t colour) noexcept;
    // Another stroke in the place of that one; it was drawn elsewhere, or in another colour.
    bool Replace(RecordKind kind, std::uint32_t number, const SharedStroke& stroke) noexcept;
    bool Insert(const std::vector<SharedStroke>& strokes, InkDrawing::Recall recall) noexcept;
    // A line that waits for its recognition becomes what it will at once.
    void FinishLine() noexcept { ReadyToEdit(); }
    // Takes a line that waits off the canvas for good: it was never drawn. Nobody is told, as nobody was told of it.
    bool DropWaiting() noexcept;

    // A press in the very field after a line was finished goes on with the points of that line, as a plain
    // telestrator's does; what it becomes can then not be found anew where it is moved to. Otherwise it begins a line
    // of its own.
    bool goesOnWithFinished = false;

    // All ink fades together after a pause, and is then cleared, which can be undone. Counted in fields; a line being
    // drawn, one that waits, and every edit begin the pause anew.
    FadeSettings fade;
    // By what the ink is to be multiplied where it is shown; see `WriteFaded`.
    [[nodiscard]] double FadeFactor() const { return fading_.Factor(fade); }

    // Does what a record says, without telling the sink: to go on from a journal.
    bool Apply(const JournalRecord& record) noexcept;

    // Null before the first field.
    [[nodiscard]] const InkDrawing* Drawing() const { return drawing_.get(); }
    // What is drawn on now is in its `canvasSurface`.
    [[nodiscard]] Telestrator& Inner() { return inner_; }
    [[nodiscard]] std::int64_t Fields() const { return log_.field; }
    // The field to come, where not every call of `Field` is one of the operator's fields.
    void SetFields(std::int64_t fields) noexcept { log_.field = fields; }
    // A line has been drawn and is not yet what it will become; also while it is being drawn.
    [[nodiscard]] bool HasOpenLine() const { return log_.IsOpen(); }
    [[nodiscard]] bool IsPointerDown() const { return pointerDown_; }
    // A press now would go on with the line that waits.
    [[nodiscard]] bool IsJoined(const TelestratorSettings& settings) const {
        return IsWaiting() && settings.recogniseShapes && inner_.shapeCountdown >= 0;
    }

private:
    enum class Painted { OnCanvas, OnShapes };

    bool MakeDrawing() noexcept;
    [[nodiscard]] bool IsWaiting() const { return log_.IsOpen() && !pointerDown_; }
    bool ReadyToEdit(WaitingLine waiting = WaitingLine::Finished) noexcept;
    void FinishWaiting() noexcept;
    void HideWaiting() noexcept;
    void FollowResult() noexcept;
    void PassFade() noexcept;
    void KeepAsDrawn() noexcept;
    void TakeBackGesture() noexcept;
    void Settle(Painted painted) noexcept;
    void ShowDrawing() noexcept;
    static void CopyCanvas(const TelestratorSurface& from, TelestratorSurface& to) noexcept;
    template <typename EditFunction>
    bool Edit(const EditFunction& edit, WaitingLine waiting = WaitingLine::Finished) noexcept;
    bool Do(const JournalRecord& record, WaitingLine waiting = WaitingLine::Finished) noexcept;
    template <typename ChangeFunction>
    bool ChangeStroke(RecordKind kind, std::uint32_t number, const ChangeFunction& change) noexcept;
    void Tell(const JournalRecord& record) noexcept;

    Telestrator inner_;
    std::unique_ptr<InkDrawing> drawing_;  // on the shape surface's canvas
    StrokeCaptureLog log_;
    JournalSink* sink_;
    TelestratorSettings lastSettings_;
    bool pointerDown_ = false;
    InkFade fading_;
    Rect edited_;  // what edits changed since the last TakeChange
};

}  // namespace chalkpane
