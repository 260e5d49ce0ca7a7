#include "obs/ink_pane.h"

#include <new>
#include <utility>

namespace chalkpane::obs {
namespace {

constexpr Rect wholeCanvas{0, 0, canvasSize - 1, canvasSize - 1};

// Positions count from the top of what is seen, rows in memory from its bottom.
Rect InMemory(const Rect& seen) { return {seen.x0, canvasSize - 1 - seen.y1, seen.x1, canvasSize - 1 - seen.y0}; }

// More samples than a line can keep.
constexpr std::size_t mostSamples = 1000000;

// The brushes follow at once, so that what is drawn in the same field has them.
void FollowSettings(JournaledTelestrator& telestrator, const TelestratorSettings& before,
                    const TelestratorSettings& now) {
    if (now.brushType != before.brushType) telestrator.ApplyBrushMode(now);
    telestrator.Inner().FollowSettings(now);
}

}  // namespace

InkPane::InkPane(const RegisteredPanel& panel)
    : m_panel(panel),
      m_setValues(panel.Defaults()),
      m_values(panel.Defaults()),
      m_settings(panel.Settings(m_values)),
      m_telestrator(&m_journal) {
    m_telestrator.SetAspect(1);
    m_telestrator.Field(m_settings);
    NoteChange();
}

void InkPane::SetPlace(const PanePlace& place) {
    const std::scoped_lock lock(m_mutex);
    m_place = {std::max(place.width, 1), std::max(place.height, 1)};
}

PanePlace InkPane::Place() const {
    const std::scoped_lock lock(m_mutex);
    return m_place;
}

void InkPane::SetValues(const PanelValues& values) {
    const std::scoped_lock lock(m_mutex);
    m_setValues = values;
    Queue({EventKind::Values, {}, values, {}});
}

PanelValues InkPane::Values() const {
    const std::scoped_lock lock(m_mutex);
    return m_setValues;
}

void InkPane::Push(PaneAction action) {
    const std::scoped_lock lock(m_mutex);
    Queue({EventKind::Action, {}, {}, action});
}

void InkPane::Point(EventKind kind, double x, double y) {
    const std::scoped_lock lock(m_mutex);
    Queue({kind, m_place.ToCanvas(x, y), {}, {}});
}

void InkPane::Queue(Event event) {
    // While nothing draws, as with a source that is in no scene, only the newest can matter.
    if (event.kind == EventKind::Values && !m_waiting.empty() && m_waiting.back().kind == EventKind::Values)
        m_waiting.pop_back();
    if (m_waiting.size() == mostSamples) DoWaiting();
    m_waiting.push_back(std::move(event));
}

void InkPane::PassField() {
    const std::scoped_lock lock(m_mutex);
    DoWaiting();
    const std::size_t records = m_journal.Records();
    m_telestrator.Field(m_settings);
    m_telestrator.Commit();
    NoteChange();
    DropFinishedHand(records);
}

void InkPane::DoWaiting() {
    const std::vector<Event> waiting = std::exchange(m_waiting, {});
    for (const Event& event : waiting) Do(event);
}

void InkPane::Do(const Event& event) {
    switch (event.kind) {
        case EventKind::Values:
            TakeValues(event.values);
            break;
        case EventKind::Action:
            Edit(event.action);
            break;
        case EventKind::Press:
            if (!m_isDown && m_panel.IsActive(m_values)) Draw(event.kind, event.at);
            break;
        case EventKind::Move:
        case EventKind::Release:
            if (m_isDown) Draw(event.kind, event.at);
            break;
        case EventKind::Lift:
            if (m_isDown) Draw(EventKind::Release, m_lastAt);
            break;
    }
}

void InkPane::TakeValues(const PanelValues& values) {
    m_values = values;
    const TelestratorSettings before = std::exchange(m_settings, m_panel.Settings(values));
    FollowSettings(m_telestrator, before, m_settings);
    if (m_isDown && !m_panel.IsActive(m_values)) Draw(EventKind::Release, m_lastAt);
}

void InkPane::Draw(EventKind kind, const CanvasPosition& at) {
    const std::size_t records = m_journal.Records();
    if (kind == EventKind::Press) {
        m_telestrator.Press(m_settings, at);
        DropFinishedHand(records);  // a line that was not joined is finished by the press
    } else if (kind == EventKind::Move) {
        m_telestrator.Move(m_settings, at);
    } else {
        m_telestrator.Release(m_settings, at);
    }
    m_isDown = kind != EventKind::Release;
    m_lastAt = at;
    NoteChange();
    if (m_hand.size() < mostSamples) m_hand.push_back({kind, at, m_settings});
    if (kind != EventKind::Press) DropFinishedHand(records);
}

void InkPane::Edit(PaneAction action) {
    const std::size_t records = m_journal.Records();
    switch (action) {
        case PaneAction::Clear:
            m_telestrator.Clear();
            break;
        case PaneAction::Undo:
            m_telestrator.Undo();
            break;
        case PaneAction::Redo:
            m_telestrator.Redo();
            break;
    }
    NoteChange();
    DropFinishedHand(records);
}

// The change is asked for after each event, since the next one replaces it, and is then emptied, since it would stay.
void InkPane::NoteChange() {
    const Telestrator::Change change = m_telestrator.TakeChange();
    m_telestrator.Inner().dirtyRect = Rect();
    const Rect changed = change.whole ? wholeCanvas : change.rect.Intersection(wholeCanvas);
    if (changed.IsValid()) m_changed = m_changed.Union(InMemory(changed));
}

void InkPane::DropFinishedHand(std::size_t recordsBefore) {
    if (m_journal.Records() != recordsBefore || !m_telestrator.HasOpenLine()) m_hand.clear();
}

void InkPane::TakeChange(const ShowChange& show) {
    const std::scoped_lock lock(m_mutex);
    if (!m_telestrator.Inner().HasCanvas() || !m_changed.IsValid()) return;
    const CanvasPixels pixels = m_telestrator.Inner().canvasSurface->GetPixels();
    show(std::exchange(m_changed, Rect()), {pixels.bytes, pixels.byteSize});
}

void InkPane::ShowAll() {
    const std::scoped_lock lock(m_mutex);
    m_changed = wholeCanvas;
}

std::string InkPane::InkText() {
    const std::scoped_lock lock(m_mutex);
    DoWaiting();
    if (m_journal.Records() == 0 && m_hand.empty() && !m_unreadable.empty()) return m_unreadable;
    return m_hand.empty() ? ClosedText() : TextWithOpenLine();
}

std::string InkPane::ClosedText() const {
    const std::string& text = m_journal.Text();
    if (!text.empty()) return text.size() > journalHeader.size() + 1 ? text : std::string();
    return m_telestrator.Drawing() == nullptr ? std::string() : DrawingText(*m_telestrator.Drawing());
}

// The hand's samples once more, on a telestrator that has drawn all before them, where the pen then leaves.
std::string InkPane::TextWithOpenLine() const {
    std::string closed = ClosedText();
    if (closed.empty()) closed = std::string(journalHeader) + '\n';
    JournalText text;
    JournaledTelestrator telestrator(&text);
    telestrator.SetAspect(1);
    telestrator.Field(m_settings);
    if (!Follow(telestrator, ParseJournal(closed).records).empty()) return closed;
    text.GoOn(std::move(closed));
    telestrator.SetFields(m_telestrator.Fields());
    TelestratorSettings before = m_settings;
    for (const Sample& sample : m_hand) {
        FollowSettings(telestrator, std::exchange(before, sample.settings), sample.settings);
        if (sample.kind == EventKind::Press) telestrator.Press(sample.settings, sample.at);
        if (sample.kind == EventKind::Move) telestrator.Move(sample.settings, sample.at);
        if (sample.kind == EventKind::Release) telestrator.Release(sample.settings, sample.at);
    }
    if (m_isDown) telestrator.Release(m_settings, m_lastAt);
    telestrator.FinishLine();
    return text.Text().empty() ? ClosedText() : text.Text();
}

std::string InkPane::LoadInk(const std::string& text) {
    const std::scoped_lock lock(m_mutex);
    if (text.empty()) return {};
    const ReadJournal read = ParseJournal(text);
    std::string wrong = read.error;
    if (wrong.empty()) wrong = Follow(m_telestrator, read.records);
    if (wrong.empty()) {
        m_journal.GoOn(text.substr(0, read.wholeBytes));
    } else {
        m_unreadable = text;
        m_journal.GoOn({});  // what could be done of it is told by the drawing
    }
    NoteChange();
    return wrong;
}

}  // namespace chalkpane::obs
