#include "kel/ink/ink_follower.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "telestrator/surface_pen.h"

namespace kel {
namespace {

using chalkpane::CanvasPosition;
using chalkpane::JournaledTelestrator;
using WaitingLine = JournaledTelestrator::WaitingLine;

// The window's size as it was in the history; afterwards what it was before.
class WindowOfHistory {
public:
    explicit WindowOfHistory(HostState& state) : m_state(state), m_window(state.window) {}
    ~WindowOfHistory() { m_state.window = m_window; }
    WindowOfHistory(const WindowOfHistory&) = delete;
    WindowOfHistory& operator=(const WindowOfHistory&) = delete;
    WindowOfHistory(WindowOfHistory&&) = delete;
    WindowOfHistory& operator=(WindowOfHistory&&) = delete;

private:
    HostState& m_state;
    WindowSize m_window;
};

}  // namespace

InkFollower::InkFollower(HostState& state, ObjectId container, const TelestratorModule& module,
                         const InstanceHistory& history, chalkpane::JournalSink* sink)
    : m_state(&state),
      m_mapping(state, container),
      m_module(module),
      m_values(history.firstValues),
      m_telestrator(std::make_unique<JournaledTelestrator>(sink)),
      m_field(history.firstField) {
    m_telestrator->goesOnWithFinished = true;
}

void InkFollower::Follow(const InstanceHistory& history, std::int64_t until) {
    const WindowOfHistory window(*m_state);
    auto input = std::ranges::lower_bound(history.inputs, m_field, {}, &InstanceInput::field);
    for (; m_field < until; ++m_field) {
        const bool isGiven = input != history.inputs.end() && input->field == m_field;
        m_telestrator->SetFields(m_ownFields);
        if (isGiven) Give(*input);
        PassField();
        if (!isGiven || !input->isStep) ++m_ownFields;
        m_telestrator->SetFields(m_ownFields);
        if (isGiven) ++input;
    }
}

void InkFollower::Give(const InstanceInput& input) {
    if (input.pointer) {
        m_pointerX = input.pointer->x;
        m_pointerY = input.pointer->y;
        m_pressure = input.pointer->pressure;
        m_state->window = {input.windowWidth, input.windowHeight};
        if (input.pointer->kind != PointerKind::Move) MoveButton(input);
    }
    for (const auto& each : input.operatorInputs) {
        if (const auto* setting = std::get_if<SettingInput>(&each)) {
            const bool isOther = std::exchange(m_values[setting->parameter], setting->value) != setting->value;
            if (isOther && m_module.IsBrushType(setting->parameter)) m_telestrator->ApplyBrushMode(Settings());
        }
        if (const auto* action = std::get_if<ActionInput>(&each)) Push(action->action);
    }
}

void InkFollower::SetValues(const std::vector<ParameterValue>& values) {
    InstanceInput input;
    for (std::size_t i = 0; i < values.size(); ++i) input.operatorInputs.emplace_back(SettingInput{i, values[i]});
    Give(input);
}

bool InkFollower::Recall(const std::vector<chalkpane::SharedStroke>& strokes, chalkpane::InkDrawing::Recall recall) {
    if (!m_telestrator->Insert(strokes, recall)) return false;
    m_ring.Push(State());
    return true;
}

void InkFollower::CountButtons(const InstanceHistory& history) {
    m_buttons = 0;
    for (const InstanceInput& input : history.inputs)
        m_buttons += static_cast<std::size_t>(std::ranges::count_if(
            input.operatorInputs, [](const auto& each) { return std::holds_alternative<ActionInput>(each); }));
}

void InkFollower::RememberPosition(std::int32_t x, std::int32_t y) {
    m_lastX = x;
    m_lastY = y;
}

void InkFollower::MoveButton(const InstanceInput& input) {
    if (m_telestrator->Drawing() == nullptr) return;
    const PointerStep& step = *input.pointer;
    const bool isPress = step.kind == PointerKind::Press;
    const bool isBegun = isPress && m_module.IsActive(m_values) && m_mapping.IsOver(step.x, step.y);
    if (!m_module.IsActive(m_values)) m_isInsideStroke = false;
    if (!m_isInsideStroke && !isBegun) return RememberPosition(-1, -1);
    m_isInsideStroke = true;
    if (!m_mapping.HasBox()) return;
    m_telestrator->SetAspect(m_mapping.Aspect());
    const CanvasPosition at = m_mapping.Map(m_window, step.x, step.y);
    m_isDown = isPress;
    if (isPress) {
        Press(input, at);
    } else {
        m_line.places.push_back({m_window, step.x, step.y});
        m_telestrator->Release(Settings(), at, m_pressure);
        m_isInsideStroke = false;
        if (!Settings().recogniseShapes) m_ring.Push(State());
    }
    RememberPosition(step.x, step.y);
}

void InkFollower::Press(const InstanceInput& input, const CanvasPosition& at) {
    const bool isJoined = m_telestrator->IsJoined(Settings()) || m_telestrator->IsPointerDown();
    const bool goesOn = !m_telestrator->HasOpenLine() && m_telestrator->Inner().shapeCountdown >= 0;
    // A line that nothing joins is told to the sink in here.
    m_telestrator->Press(Settings(), at, m_pressure);
    if (!m_telestrator->IsPointerDown()) {
        m_isLost = true;  // pressed where nothing can be painted, which a journal has no word for
        return;
    }
    if (!isJoined) {
        m_line = {};
        m_line.goesOn = goesOn;
        m_line.firstField = m_field;
    }
    m_line.presses.push_back(input.stroke);
    m_line.places.push_back({m_window, m_pointerX, m_pointerY});
}

// KEEP: as in module/pointer_input.cpp, the test of y looks at whether a stroke runs and the test of x does not.
void InkFollower::PollPointer() {
    const bool rests = m_pointerX == m_lastX && (m_pointerY == m_lastY || !m_isInsideStroke);
    if (!rests && m_mapping.HasBox()) {
        m_telestrator->SetAspect(m_mapping.Aspect());
        const CanvasPosition at = m_mapping.Map(m_window, m_pointerX, m_pointerY);
        if (!chalkpane::IsPaintable(at.x, at.y)) m_isLost = true;
        m_line.places.push_back({m_window, m_pointerX, m_pointerY});
        m_telestrator->Move(Settings(), at, m_pressure);
    }
    RememberPosition(m_pointerX, m_pointerY);
}

void InkFollower::Push(std::int32_t action) {
    m_pushed = ++m_buttons;
    if (m_telestrator->IsPointerDown()) m_isLost = true;
    if (action == m_module.ClearAction()) {
        if (m_isLost && !m_telestrator->HasOpenLine()) {
            m_isLost = false;
            m_isRingLost = true;
        }
        m_telestrator->Clear(WaitingLine::LeftToWait);
        m_ring.PushClearing();
    } else if (action == m_module.UndoAction()) {
        if (const InkUndoRing::State* const wanted = m_ring.Restore()) {
            m_isLost = m_isLost || m_isRingLost;
            m_telestrator->Undo(WaitingLine::LeftToWait);
            ShowRingsState(*wanted);
        }
    }
    m_pushed = 0;
}

InkUndoRing::State InkFollower::State() const { return InkUndoRing::StateOf(*m_telestrator->Drawing()); }

// The last edit has been taken back, which is what the ring brings back as long as it has not come round.
void InkFollower::ShowRingsState(const InkUndoRing::State& wanted) {
    if (State() == wanted) return;
    if (m_telestrator->HasOpenLine()) m_isLost = true;
    m_telestrator->Insert(wanted, chalkpane::InkDrawing::Recall::InPlace);
}

void InkFollower::PassField() {
    m_window = m_state->window;
    const bool hadCanvas = m_telestrator->Drawing() != nullptr;
    const chalkpane::TelestratorSettings settings = Settings();
    if (hadCanvas) {
        if (!m_ring.HasSize(settings.maxUndos)) m_ring.Resize(settings.maxUndos, State());
        m_telestrator->Inner().FollowSettings(settings);
        if (m_module.IsActive(m_values) && m_isDown) PollPointer();
    } else {
        m_telestrator->SetAspect(m_mapping.Aspect());
    }
    // Recognition that is switched off leaves on the canvas what it was to replace, until the next shape comes.
    const bool isLeftBehind =
        m_telestrator->HasOpenLine() && !m_telestrator->IsPointerDown() && !settings.recogniseShapes;
    if (isLeftBehind || m_module.HasBrushPicture(m_values)) m_isLost = true;
    m_telestrator->Field(settings);
    if (!hadCanvas) m_ring.Begin(settings.maxUndos);
    if (m_telestrator->Inner().result == chalkpane::StrokeResult::UndoGesture) {
        m_hadGesture = true;
        m_isLost = m_isLost || m_isRingLost;
        if (const InkUndoRing::State* const wanted = m_ring.Restore())
            ShowRingsState(*wanted);
        else
            m_telestrator->Redo();
    }
    if (m_telestrator->Commit()) m_ring.Push(State());
}

}  // namespace kel
