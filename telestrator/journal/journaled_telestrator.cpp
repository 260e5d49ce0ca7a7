#include "telestrator/journal/journaled_telestrator.h"

#include <algorithm>
#include <utility>

namespace chalkpane {
namespace {

// The snapshots of a ring would cost time and memory and are never asked for.
TelestratorSettings WithoutRing(const TelestratorSettings& settings) {
    TelestratorSettings without = settings;
    without.maxUndos = 0;
    return without;
}

}  // namespace

bool JournaledTelestrator::MakeDrawing() noexcept {
    if (drawing_ || !inner_.HasCanvas()) return drawing_ != nullptr;
    inner_.canvasSurface->listener = &log_;
    inner_.shapeSurface->listener = &log_;
    return inner_.memory.Run([&] { drawing_ = std::make_unique<InkDrawing>(*inner_.shapeSurface->canvas); });
}

Rect JournaledTelestrator::Press(const TelestratorSettings& settings, const CanvasPosition& position,
                                 double pressure) noexcept {
    if (!drawing_ || !IsPaintable(position.x, position.y)) return {};
    Commit();
    if (IsWaiting() && !IsJoined(settings)) KeepAsDrawn();
    if (!log_.IsOpen()) {
        if (!goesOnWithFinished) inner_.shapeCountdown = -1;  // nothing waits that the press could join
        log_.Begin(inner_.canvasSurface.get());
    }
    lastSettings_ = WithoutRing(settings);
    pointerDown_ = true;
    log_.Hand(HandEvent::Press, {lastSettings_, inner_.aspect}, position, pressure);
    return inner_.Press(lastSettings_, position);
}

Rect JournaledTelestrator::Move(const TelestratorSettings& settings, const CanvasPosition& position,
                                double pressure) noexcept {
    if (!pointerDown_ || !IsPaintable(position.x, position.y)) return {};
    lastSettings_ = WithoutRing(settings);
    log_.Hand(HandEvent::Move, {lastSettings_, inner_.aspect}, position, pressure);
    return inner_.Move(lastSettings_, position);
}

Rect JournaledTelestrator::Release(const TelestratorSettings& settings, const CanvasPosition& position,
                                   double pressure) noexcept {
    if (!pointerDown_) return {};
    lastSettings_ = WithoutRing(settings);
    const HandEvent event = IsPaintable(position.x, position.y) ? HandEvent::Release : HandEvent::Lift;
    log_.Hand(event, {lastSettings_, inner_.aspect}, position, pressure);
    const Rect changed = inner_.Release(lastSettings_, position);
    pointerDown_ = false;
    if (!lastSettings_.recogniseShapes) KeepAsDrawn();
    return changed;
}

bool JournaledTelestrator::Field(const TelestratorSettings& settings) noexcept {
    Commit();
    lastSettings_ = WithoutRing(settings);
    inner_.result = StrokeResult::None;
    log_.BeforeField();
    const bool made = inner_.Field(lastSettings_) && MakeDrawing();
    if (IsWaiting()) FollowResult();
    PassFade();
    ++log_.field;
    return made;
}

void JournaledTelestrator::PassFade() noexcept {
    const double before = FadeFactor();
    if (!drawing_ || log_.IsOpen() || drawing_->IsBlank()) {
        fading_.Restart();
    } else if (fading_.PassField(fade)) {
        Clear();
    }
    if (FadeFactor() != before) edited_ = inner_.canvasSurface->canvas->Bounds();
}

// What became of the line in this field; most often nothing yet.
void JournaledTelestrator::FollowResult() noexcept {
    if (inner_.result == StrokeResult::UndoGesture) {
        TakeBackGesture();
    } else if (inner_.result != StrokeResult::None) {
        log_.Finish({lastSettings_, inner_.aspect});
    } else if (inner_.shapeCountdown <= 0 && !inner_.shapeCommitPending) {
        KeepAsDrawn();
    }
}

bool JournaledTelestrator::Commit() noexcept {
    if (!inner_.Commit()) return false;
    Settle(Painted::OnShapes);
    return true;
}

bool JournaledTelestrator::ApplyBrushMode(const TelestratorSettings& settings, const BrushPicture* picture) noexcept {
    return inner_.ApplyBrushMode(settings, picture);
}

Telestrator::Change JournaledTelestrator::TakeChange() noexcept {
    Telestrator::Change change = inner_.TakeChange();
    change.rect = change.rect.Union(std::exchange(edited_, Rect()));
    return change;
}

// The line stays on the canvas and is final, so the shape surface gets it too.
void JournaledTelestrator::KeepAsDrawn() noexcept {
    inner_.shapeCountdown = -1;
    if (!log_.IsPaintedAlike()) CopyCanvas(*inner_.canvasSurface, *inner_.shapeSurface);
    Settle(Painted::OnCanvas);
}

// The stroke is over: it becomes part of the drawing, which has it on its canvas already.
void JournaledTelestrator::Settle(Painted painted) noexcept {
    if (!log_.IsOpen()) return;
    log_.Close();
    JournalRecord record;
    // A shape is committed for the picture of the field that has just passed.
    record.field = log_.field - (painted == Painted::OnShapes ? 1 : 0);
    bool isKept = false;
    const bool hadMemory = !log_.IsLost() && inner_.memory.Run([&] {
        const SharedStroke stroke =
            painted == Painted::OnCanvas ? log_.OnCanvas() : log_.OnShapes(FormOf(inner_.result));
        if (stroke->steps.empty()) return;
        record.strokes.push_back(stroke);
        record.number = drawing_->Add(stroke, InkDrawing::OnCanvas::Already).number;
        isKept = true;
    });
    if (!hadMemory) {
        ShowDrawing();
    } else if (isKept) {
        Tell(record);
    }
}

// The dab itself goes, and with it the last edit before.
void JournaledTelestrator::TakeBackGesture() noexcept {
    log_.Close();
    ShowDrawing();
    Undo();
}

// Both canvases as the strokes of the drawing make them, whatever else was painted there.
void JournaledTelestrator::ShowDrawing() noexcept {
    inner_.memory.Run([&] { drawing_->Repaint(*inner_.shapeSurface->canvas); });
    CopyCanvas(*inner_.shapeSurface, *inner_.canvasSurface);
    edited_ = inner_.canvasSurface->canvas->Bounds();
}

void JournaledTelestrator::CopyCanvas(const TelestratorSurface& from, TelestratorSurface& to) noexcept {
    to.canvas->CopyRegion(*from.canvas, *from.canvas);
}

void JournaledTelestrator::FinishWaiting() noexcept {
    log_.BeforeField();
    inner_.result = StrokeResult::None;
    inner_.shapeCountdown = 0;
    if (lastSettings_.recogniseShapes) inner_.FinishStroke(lastSettings_);
    FollowResult();
    Commit();
    inner_.shapeCountdown = -1;
}

bool JournaledTelestrator::ReadyToEdit(WaitingLine waiting) noexcept {
    if (!drawing_ || pointerDown_) return false;
    Commit();
    if (IsWaiting() && waiting == WaitingLine::Finished) FinishWaiting();
    return true;
}

// What the hand painted of the line; what it becomes will be painted.
void JournaledTelestrator::HideWaiting() noexcept {
    log_.ForgetPainted();
    ShowDrawing();
}

bool JournaledTelestrator::DropWaiting() noexcept {
    if (!IsWaiting()) return false;
    log_.Close();
    inner_.shapeCountdown = -1;
    inner_.shapeCommitPending = false;
    ShowDrawing();
    return true;
}

// edit: an operation of the drawing. The canvas follows, and the sink is told.
template <typename EditFunction>
bool JournaledTelestrator::Edit(const EditFunction& edit, WaitingLine waiting) noexcept {
    if (!ReadyToEdit(waiting)) return false;
    if (IsWaiting()) HideWaiting();
    InkDrawing::Outcome outcome;
    if (!inner_.memory.Run([&] { outcome = edit(); })) {
        ShowDrawing();
        return false;
    }
    if (!outcome.done) return false;
    fading_.Restart();
    inner_.canvasSurface->canvas->CopyRegion(*inner_.shapeSurface->canvas, outcome.changed);
    edited_ = edited_.Union(outcome.changed);
    return true;
}

bool JournaledTelestrator::Apply(const JournalRecord& record) noexcept {
    if (!Edit([&] { return chalkpane::Apply(record, *drawing_); })) return false;
    log_.field = std::max(log_.field, record.field);
    return true;
}

bool JournaledTelestrator::Do(const JournalRecord& record, WaitingLine waiting) noexcept {
    if (!Edit([&] { return chalkpane::Apply(record, *drawing_); }, waiting)) return false;
    Tell(record);
    return true;
}

bool JournaledTelestrator::Undo(WaitingLine waiting) noexcept {
    return Do({RecordKind::Undo, 0, {}, {}, log_.field}, waiting);
}
bool JournaledTelestrator::Redo() noexcept { return Do({RecordKind::Redo, 0, {}, {}, log_.field}); }
bool JournaledTelestrator::Clear(WaitingLine waiting) noexcept {
    return Do({RecordKind::Clear, 0, {}, {}, log_.field}, waiting);
}
bool JournaledTelestrator::Remove(std::uint32_t number) noexcept {
    return Do({RecordKind::Remove, number, {}, {}, log_.field});
}

// change: makes the stroke that takes the place of the one of that number; null: it stays.
template <typename ChangeFunction>
bool JournaledTelestrator::ChangeStroke(RecordKind kind, std::uint32_t number, const ChangeFunction& change) noexcept {
    if (!ReadyToEdit()) return false;
    const SharedStroke stroke = drawing_->Find(number);
    if (!stroke) return false;
    JournalRecord record{kind, number, {}, {}, log_.field};
    inner_.memory.Run([&] {
        if (SharedStroke changed = change(*stroke)) record.strokes.push_back(std::move(changed));
    });
    return !record.strokes.empty() && Do(record);
}

bool JournaledTelestrator::MoveStroke(std::uint32_t number, double right, double down) noexcept {
    if (!IsPaintable(right, down)) return false;
    return ChangeStroke(RecordKind::Move, number, [&](const InkStroke& stroke) {
        return std::make_shared<const InkStroke>(Moved(stroke, right, down));
    });
}

bool JournaledTelestrator::Recolour(std::uint32_t number, std::uint32_t colour) noexcept {
    return ChangeStroke(RecordKind::Recolour, number, [&](const InkStroke& stroke) -> SharedStroke {
        return HasColour(stroke) ? std::make_shared<const InkStroke>(Recoloured(stroke, colour)) : nullptr;
    });
}

bool JournaledTelestrator::Replace(RecordKind kind, std::uint32_t number, const SharedStroke& stroke) noexcept {
    JournalRecord record{kind, number, {}, {}, log_.field};
    return stroke && inner_.memory.Run([&] { record.strokes.push_back(stroke); }) && Do(record);
}

bool JournaledTelestrator::Insert(const std::vector<SharedStroke>& strokes, InkDrawing::Recall recall) noexcept {
    JournalRecord record{RecordKind::Recall, 0, {}, recall, log_.field};
    return inner_.memory.Run([&] { record.strokes = strokes; }) && Do(record);
}

void JournaledTelestrator::Tell(const JournalRecord& record) noexcept {
    if (sink_ != nullptr) sink_->Write(record);
}

}  // namespace chalkpane
