#include "kel/ink/container_ink.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "cli/error.h"
#include "telestrator/surface_pen.h"

namespace kel {
namespace {

using chalkpane::CanvasPixels;
using chalkpane::JournaledTelestrator;
using chalkpane::RecordKind;

// Canvas pixels have their rows as the texture's lie in memory, and rectangles of the canvas count from the other side.
FrameArea TextureArea(const chalkpane::Rect& rect, std::int32_t canvasHeight) {
    if (!rect.IsValid()) return {};
    return {rect.x0, canvasHeight - rect.y1 - 1, rect.Width(), rect.Height()};
}

}  // namespace

ContainerInk::ContainerInk(Host& host, ObjectId container, const Module& module)
    : m_host(host),
      m_id(container),
      m_registration(module.registration),
      m_module(TelestratorModule::Find(module.registration)) {}

ContainerInk::~ContainerInk() {
    if (m_isShown) m_host.Substitute(m_id, nullptr);
    FinishJournal();
}

void ContainerInk::FinishJournal() {
    if (!m_journal) return;
    Follow();
    m_follower->Telestrator().FinishLine();
}

void ContainerInk::Keep() {
    if (m_follower || !m_module) return;
    m_follower = std::make_unique<InkFollower>(m_host.State(), m_id, *m_module, History(),
                                               static_cast<chalkpane::JournalSink*>(this));
}

void ContainerInk::Follow() {
    if (m_follower) m_follower->Follow(History(), m_host.FieldsRun());
}

void ContainerInk::WriteJournal(const std::filesystem::path& file) {
    m_journal = std::make_unique<JournalWriter>(file);
    Keep();
}

// What happens to the drawing, whoever does it.
void ContainerInk::Write(const chalkpane::JournalRecord& record) noexcept {
    const InkFollower::Line& line = m_follower->LastLine();
    Source source = m_source;
    switch (record.kind) {
        case RecordKind::Undo:
            if (m_done.empty()) break;
            m_undone.push_back(m_done.back());
            m_done.pop_back();
            break;
        case RecordKind::Redo:
            if (m_undone.empty()) break;
            m_done.push_back(m_undone.back());
            m_undone.pop_back();
            break;
        case RecordKind::Stroke:
            if (line.goesOn) ForgetLastStroke();
            source = {InkEdits::Kind::Stroke, line.presses.size() == 1 && !line.goesOn ? line.presses.front() : 0};
            if (source.number != 0) m_strokes[source.number] = {record.number, line, m_lastEnd};
            m_lastEnd = m_follower->Field();
            [[fallthrough]];
        case RecordKind::Clear:
        case RecordKind::Move:
        case RecordKind::Recolour:
        case RecordKind::Remove:
        case RecordKind::Recall:
            NoteNewEdit(record.kind == RecordKind::Clear ? SourceOfClearing() : source);
            break;
    }
    if (m_journal && !m_isRestarting) m_journal->Write(record, *m_follower->Telestrator().Drawing());
}

// The next one goes on with its points, and would be another without it.
void ContainerInk::ForgetLastStroke() {
    if (m_done.empty() || m_done.back().kind != InkEdits::Kind::Stroke) return;
    m_strokes.erase(m_done.back().number);
    m_done.back().number = 0;
}

void ContainerInk::NoteNewEdit(Source source) {
    if (m_follower->Pushed() != 0) source = {InkEdits::Kind::Action, m_follower->Pushed()};
    m_done.push_back(source);
    m_undone.clear();
}

// Nothing clears the canvas but a button, and ink that has faded.
ContainerInk::Source ContainerInk::SourceOfClearing() {
    if (m_follower->Pushed() != 0) return {};
    m_edits.AddFade(History(), m_follower->Field(), m_module->ClearAction());
    return {InkEdits::Kind::Fade, m_edits.Done().back().number};
}

CanvasSubstitute::View ContainerInk::Look() {
    Follow();
    JournaledTelestrator& telestrator = m_follower->Telestrator();
    const CanvasPixels pixels = telestrator.Inner().canvasSurface->GetPixels();
    chalkpane::Rect changed = telestrator.TakeChange().rect;
    if (std::exchange(m_isLookWhole, false)) changed.SetSize(pixels.width, pixels.height);
    const std::byte* shown = pixels.bytes;
    // Where the factor is another than at the last look, all of the canvas has changed.
    if (const double factor = telestrator.FadeFactor(); factor < 1) {
        m_faded.resize(pixels.byteSize);
        if (changed.IsValid()) chalkpane::WriteFaded(pixels, factor, m_faded);
        shown = m_faded.data();
    }
    return {static_cast<const std::uint8_t*>(static_cast<const void*>(shown)), pixels.width, pixels.height,
            TextureArea(changed, pixels.height)};
}

// True: the module's canvas is the follower's.
bool ContainerInk::IsSeen() const {
    const std::span<const std::uint8_t> texture = m_host.TextureBytes(m_id);
    const CanvasPixels pixels = m_follower->Telestrator().Inner().canvasSurface->GetPixels();
    return texture.size() == pixels.byteSize && std::memcmp(texture.data(), pixels.bytes, pixels.byteSize) == 0;
}

// True: the follower has the canvas as it is.
bool ContainerInk::CatchUp() {
    Keep();
    if (!m_follower) return false;
    Follow();
    if (m_follower->Telestrator().Drawing() == nullptr || !m_follower->IsInStep()) return false;
    return m_isShown || IsSeen();
}

bool ContainerInk::Edit(const InkEdit& edit) {
    if (edit.kind == InkEditKind::Recall) return Recall(edit);
    if (edit.kind == InkEditKind::Fade) return SetFade(edit.fade);
    const bool isRepeated = edit.kind == InkEditKind::Undo || edit.kind == InkEditKind::Redo;
    const std::size_t times = isRepeated ? edit.number : 1;
    bool isDone = false;
    bool isQuick = true;
    for (std::size_t i = 0; i < times && m_edits.Do(History(), edit); ++i) {
        isDone = true;
        isQuick = isQuick && ShowQuickly(edit.kind);
    }
    if (isDone && !isQuick) RebuildAll();
    return isDone;
}

bool ContainerInk::ShowQuickly(InkEditKind kind) {
    if (!CatchUp() || !MakeQuickly(kind)) return false;
    Show();
    return true;
}

void ContainerInk::Show() {
    m_isLookWhole = !std::exchange(m_isShown, true) || m_isLookWhole;
    m_host.Substitute(m_id, this);
}

bool ContainerInk::Recall(const InkEdit& edit) {
    const bool clears = edit.recall == chalkpane::InkDrawing::Recall::InPlace;
    if ((edit.strokes.empty() && !clears) || !CatchUp()) return false;
    if (m_follower->Telestrator().IsPointerDown()) return false;
    m_edits.AddRecall(History(), edit, m_host.FieldsRun());
    m_source = {InkEdits::Kind::Recall, m_edits.Done().back().number};
    m_follower->Recall(edit.strokes, edit.recall);
    Show();
    return true;
}

bool ContainerInk::SetFade(const chalkpane::FadeSettings& fade) {
    m_fade = fade;
    if (!CatchUp()) return false;
    m_follower->Telestrator().fade = fade;
    Show();
    return true;
}

std::vector<chalkpane::SharedStroke> ContainerInk::Strokes() {
    std::vector<chalkpane::SharedStroke> strokes;
    if (!CatchUp()) return strokes;
    for (const chalkpane::InkDrawing::Stroke& stroke : m_follower->Telestrator().Drawing()->Strokes())
        strokes.push_back(stroke.ink);
    return strokes;
}

std::optional<std::vector<chalkpane::SharedStroke>> ContainerInk::SettledStrokes() {
    if (!CatchUp()) return std::nullopt;
    const JournaledTelestrator& telestrator = m_follower->Telestrator();
    if (telestrator.IsPointerDown() || telestrator.HasOpenLine()) return std::nullopt;
    return Strokes();
}

std::size_t ContainerInk::StrokesKept() const {
    const chalkpane::InkDrawing* drawing = m_follower ? m_follower->Telestrator().Drawing() : nullptr;
    return drawing == nullptr ? 0 : drawing->Strokes().size();
}

std::optional<std::size_t> ContainerInk::StrokeAt(std::int32_t x, std::int32_t y) {
    constexpr std::int32_t nearEnough = 12;  // window pixels
    if (!CatchUp()) return std::nullopt;
    const PaneMapping& mapping = m_follower->Mapping();
    const chalkpane::CanvasPosition at = mapping.Map(m_host.Window(), x, y);
    const chalkpane::CanvasPosition beside = mapping.Map(m_host.Window(), x + nearEnough, y);
    if (!chalkpane::IsPaintable(at.x, at.y) || !chalkpane::IsPaintable(beside.x, beside.y)) return std::nullopt;
    const double within = std::hypot(beside.x - at.x, beside.y - at.y);
    const auto nearest = m_follower->Telestrator().Drawing()->Nearest(at, within);
    const auto drawn = std::ranges::find_if(
        m_strokes, [&](const auto& stroke) { return nearest && stroke.second.number == *nearest; });
    if (drawn == m_strokes.end()) return std::nullopt;
    return drawn->first;
}

ContainerInk::Outline ContainerInk::OutlineOf(std::size_t stroke) {
    Outline outline;
    const DrawnStroke* const drawn = CatchUp() ? Find(stroke) : nullptr;
    const chalkpane::SharedStroke ink =
        drawn == nullptr ? nullptr : m_follower->Telestrator().Drawing()->Find(drawn->number);
    if (!ink) return outline;
    for (const chalkpane::PaintStep& step : ink->steps) {
        if (step.stage == chalkpane::StrokeStage::Begin || outline.empty()) outline.emplace_back();
        if (const auto at = m_follower->Mapping().Project(step.at)) outline.back().push_back(*at);
    }
    return outline;
}

bool ContainerInk::MakeQuickly(InkEditKind kind) {
    JournaledTelestrator& telestrator = m_follower->Telestrator();
    if (telestrator.IsPointerDown()) return false;
    const InkEdits::Operation& operation = kind == InkEditKind::Undo ? m_edits.Undone().back() : m_edits.Done().back();
    const Source source{operation.kind, operation.number};
    if (telestrator.HasOpenLine()) return kind == InkEditKind::Undo && DropLine(operation);
    m_source = source;
    switch (kind) {
        case InkEditKind::Undo:
            return !m_done.empty() && m_done.back() == source && telestrator.Undo();
        case InkEditKind::Redo:
            return !m_undone.empty() && m_undone.back() == source && telestrator.Redo();
        case InkEditKind::Remove: {
            const DrawnStroke* const stroke = Find(operation.number);
            return stroke != nullptr && telestrator.Remove(stroke->number);
        }
        case InkEditKind::Move:
            return MoveQuickly(operation);
        case InkEditKind::Recolour:
            return RecolourQuickly(operation);
        case InkEditKind::Keep:
        case InkEditKind::Recall:
        case InkEditKind::Fade:
            break;  // not made of the history
    }
    return false;
}

const ContainerInk::DrawnStroke* ContainerInk::Find(std::size_t stroke) const {
    const auto found = m_strokes.find(stroke);
    return found == m_strokes.end() ? nullptr : &found->second;
}

// The stroke that is undone is the line that waits, which nobody else has joined.
bool ContainerInk::DropLine(const InkEdits::Operation& undone) {
    const std::vector<std::size_t>& presses = m_follower->LastLine().presses;
    const bool isIt = undone.kind == InkEdits::Kind::Stroke && presses.size() == 1 && presses[0] == undone.number;
    return isIt && m_follower->Telestrator().DropWaiting();
}

// Where the hand would have been on the canvas; empty: it would have drawn something else.
std::optional<std::vector<chalkpane::CanvasPosition>> ContainerInk::PlacesOf(const InkFollower::Line& line,
                                                                             const InkEdits::Look& look) const {
    const auto& [window, x, y] = line.places.front();
    const WindowSize present = m_host.Window();
    if (!m_follower->Mapping().IsOver(x + look.right, y + look.down)) return std::nullopt;
    std::vector<chalkpane::CanvasPosition> hand;
    for (const InkFollower::Place& place : line.places) {
        if (place.window.width != present.width || place.window.height != present.height) return std::nullopt;
        hand.push_back(m_follower->Mapping().Map(place.window, place.x + look.right, place.y + look.down));
        if (!chalkpane::IsPaintable(hand.back().x, hand.back().y)) return std::nullopt;
    }
    return hand;
}

bool ContainerInk::MoveQuickly(const InkEdits::Operation& operation) {
    const DrawnStroke* const drawn = Find(operation.number);
    JournaledTelestrator& telestrator = m_follower->Telestrator();
    const chalkpane::SharedStroke stroke = drawn == nullptr ? nullptr : telestrator.Drawing()->Find(drawn->number);
    if (!stroke || stroke->hand.size() != drawn->line.places.size() || !IsPaintedAsHand(*stroke)) return false;
    const auto hand = PlacesOf(drawn->line, m_edits.LookOf(operation.number));
    if (!hand) return false;
    const auto moved = std::make_shared<const chalkpane::InkStroke>(Redrawn(*stroke, *hand));
    // What vanishes there would have left its mark on the module's own undo.
    return !moved->steps.empty() && telestrator.Replace(RecordKind::Move, drawn->number, moved);
}

bool ContainerInk::RecolourQuickly(const InkEdits::Operation& operation) {
    const auto isColourAlone = [&](const InkEdits::Operation& other) {
        return other.kind != InkEdits::Kind::Recolour || other.number != operation.number ||
               (other.values.size() == 1 && other.values[0].parameter == m_module->BrushColour());
    };
    if (!std::ranges::all_of(m_edits.Done(), isColourAlone)) return false;
    const DrawnStroke* const stroke = Find(operation.number);
    // A shape that came in the field before the press would have had the colour too.
    if (stroke == nullptr || stroke->formerEnd >= stroke->line.firstField - 1) return false;
    const auto& colour = std::get<ColourBytes>(operation.values[0].value);
    return m_follower->Telestrator().Recolour(stroke->number, TelestratorModule::Packed(colour));
}

void ContainerInk::RebuildAll() {
    const InstanceHistory history = m_edits.Apply(History());
    // Nothing that is given to an instance of the module puts a recalled drawing on its canvas.
    const bool isModules = !m_edits.HasRecalls();
    if (isModules) {
        m_host.Rebuild(m_id, history);
        if (std::exchange(m_isShown, false)) m_host.Substitute(m_id, nullptr);
    }
    if (m_follower) Restart(history);
    m_isLookWhole = true;
    if (m_follower && (!isModules || m_fade.waitFields >= 0)) Show();
}

// From the beginning, with another history.
void ContainerInk::Restart(const InstanceHistory& history) {
    m_isRestarting = true;
    m_strokes.clear();
    m_done.clear();
    m_undone.clear();
    m_source = {};
    m_lastEnd = -1;
    m_follower = std::make_unique<InkFollower>(m_host.State(), m_id, *m_module, history,
                                               static_cast<chalkpane::JournalSink*>(this));
    for (const InkEdits::Operation& operation : m_edits.Done()) {
        if (operation.kind != InkEdits::Kind::Recall) continue;
        m_follower->Follow(history, operation.field);
        m_source = {operation.kind, operation.number};
        m_follower->Recall(operation.strokes, operation.recall);
    }
    m_follower->Follow(history, m_host.FieldsRun());
    m_follower->SetValues(m_host.Values(m_id));
    m_follower->CountButtons(History());
    for (Source& source : m_done)
        if (source.kind == InkEdits::Kind::Action) source.number = 0;
    m_follower->Telestrator().fade = m_fade;
    m_isRestarting = false;
    const JournaledTelestrator& telestrator = m_follower->Telestrator();
    if (m_journal && telestrator.Drawing() != nullptr)
        m_journal->WriteAnew(*telestrator.Drawing(), telestrator.Fields());
}

void ContainerInk::BeforeButton(std::string_view button) {
    const Button* const pushed = m_registration.FindButton(button);
    if (m_isShown && pushed != nullptr && pushed->action != m_module->ClearAction()) RebuildAll();
}

void ContainerInk::BeforeField() {
    if (!m_follower || !m_follower->TakeGesture()) return;
    if (m_isShown) RebuildAll();
}

}  // namespace kel
