// What the operator does: pointer, wheel, keys, dropped files, and the actions behind them.

#include <imgui.h>

#include <algorithm>

#include "cli/error.h"
#include "kel/window/window_loop.h"
#include "kel/workspace/brush_look.h"
#include "kel/workspace/workspace_actions.h"

namespace kel {

void WindowLoop::TakeEvents() {
    (void)m_stylus.Look();
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
        if (m_clean && m_clean->TakeEvent(event)) continue;
        if (m_keyFill && m_keyFill->TakeEvent(event)) continue;
        const auto mouse = m_touch.Take(event, m_window.Size());
        for (const SDL_Event& each : mouse) TakeForAll(each);
        if (mouse.empty()) TakeForAll(event);
    }
}

// What acts past the panel, so that clicks on the panel that came before it have to have acted.
bool WindowLoop::ComesAfterClicks(const SDL_Event& event) const {
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
            return IsOnPicture(event.button.x, event.button.y);
        case SDL_WINDOWEVENT:
            return event.window.event == SDL_WINDOWEVENT_CLOSE;
        case SDL_KEYDOWN:
        case SDL_TEXTINPUT:
        case SDL_DROPFILE:
        case SDL_QUIT:
            return true;
        default:
            return false;
    }
}

void WindowLoop::SettleClicks() {
    while (m_window.HasClickWaiting()) MakePanel();
}

// For the panel, and then for the picture.
void WindowLoop::TakeForAll(const SDL_Event& event) {
    if (ComesAfterClicks(event)) SettleClicks();
    // The panel looks at keys once a frame: one that is up again by then is held down for it until it has looked.
    if (event.type == SDL_KEYUP)
        m_keysUp.push_back(event);
    else
        m_window.TakeForPanel(event);
    NoteForPanel(event);
    TakeEvent(event);
}

void WindowLoop::TakeEvent(const SDL_Event& event) {
    switch (event.type) {
        case SDL_QUIT:
            m_isOver = true;
            break;
        case SDL_WINDOWEVENT:
            if (event.window.event == SDL_WINDOWEVENT_CLOSE)
                m_isOver = true;  // comes alone where there are two windows
            break;
        case SDL_MOUSEWHEEL:
            TakeWheel(event.wheel);
            break;
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.button == SDL_BUTTON_MIDDLE) m_isPanning = IsOnPicture(event.button.x, event.button.y);
            if (event.button.button == SDL_BUTTON_LEFT)
                TakePointer(PointerKind::Press, event.button.x, event.button.y, event.button.which);
            break;
        case SDL_MOUSEBUTTONUP:
            if (event.button.button == SDL_BUTTON_MIDDLE) m_isPanning = false;
            if (event.button.button == SDL_BUTTON_LEFT)
                TakePointer(PointerKind::Release, event.button.x, event.button.y, event.button.which);
            break;
        case SDL_MOUSEMOTION:
            if (m_isPanning) Pan(event.motion);
            ShowBrush(event.motion.x, event.motion.y);
            TakePointer(PointerKind::Move, event.motion.x, event.motion.y, event.motion.which);
            break;
        case SDL_KEYDOWN:
            TakeKey(event.key);
            break;
        case SDL_TEXTINPUT:
            TakeText(event.text.text);
            break;
        case SDL_DROPFILE:
            TakeDrop(event.drop.file);
            break;
        default:
            break;
    }
}

// What a mouse's event comes from: a finger, which SDL names, is no pen.
StylusWatch::State WindowLoop::PenOf(std::uint32_t device) {
    return m_options.hasPen && device != SDL_TOUCH_MOUSEID ? m_stylus.Look() : StylusWatch::State();
}

void WindowLoop::BeginStroke(bool isEraser) {
    // What is being typed is over with the press, and takes hold before the stroke.
    if (ImGui::GetIO().WantTextInput) MakePanel();
    m_eraserEnd.Use(*m_workspace, isEraser);
    m_hasHelp = false;
    m_pen.Press(Clock::now());
}

// What begins on the picture belongs to it until the button is up, wherever the pointer goes.
void WindowLoop::TakePointer(PointerKind kind, std::int32_t x, std::int32_t y, std::uint32_t device) {
    const bool isOnPicture = IsOnPicture(x, y);
    const bool isHeld = m_isDrawing || m_chooser.IsDragging();
    if (!isHeld && (!isOnPicture || kind == PointerKind::Release)) return;
    if (m_chooser.IsOn()) return ChooseAt(kind, x, y);
    const StylusWatch::State pen = PenOf(device);
    if (kind == PointerKind::Press) BeginStroke(pen.isEraser);
    if (m_isDrawing) m_pen.Move(Clock::now());
    if (kind != PointerKind::Move) m_isDrawing = kind == PointerKind::Press;
    const ScenePixel at = SceneAt(m_painter.Picture(), m_workspace->TheHost().Window(), x, y);
    m_workspace->Point(kind, at.x, at.y, pen.pressure);
    NoteStroke(kind, at);
}

bool WindowLoop::IsOnPicture(std::int32_t x, std::int32_t y) const {
    return m_painter.Picture().Contains(x, y) && !m_window.IsOnPage(x, y);
}

void WindowLoop::NoteStroke(PointerKind kind, const ScenePixel& at) {
    constexpr double rim = 0.85;  // of a dab's radius: beyond it ink fades away
    InkTail& tail = m_painter.Tail();
    const auto brush = kind == PointerKind::Release ? std::nullopt : BrushLookOf(*m_workspace, at);
    const SeenDab dab = brush ? brush->dab.Scaled(rim) : SeenDab();
    if (kind == PointerKind::Press) {
        const bool isSeen = m_options.hasTail && brush && brush->hasColour;
        tail.Press(at, dab, isSeen ? TailPen{{brush->colour[0], brush->colour[1], brush->colour[2]}, true} : TailPen{});
        m_spotlight.Press(at);
        m_isTailOver = false;
    } else if (m_isDrawing) {
        if (brush) tail.Move(at, dab);
        m_spotlight.Move(at);
    }
    if (kind != PointerKind::Release) return;
    m_spotlight.Release();
    m_isTailOver = true;
}

// The pointer is as large as the dab that it would paint.
void WindowLoop::ShowBrush(std::int32_t x, std::int32_t y) {
    if (!m_isDrawing && !IsOnPicture(x, y)) return m_cursor.Hide();
    const WindowSize scene = m_workspace->SceneSize();
    const auto brush = BrushLookOf(*m_workspace, SceneAt(m_painter.Picture(), scene, x, y));
    const double scale = 1.0 * m_painter.Picture().width / scene.width;
    m_cursor.Show(brush ? std::optional(brush->dab.Scaled(scale)) : std::nullopt);
}

void WindowLoop::TakeWheel(const SDL_MouseWheelEvent& wheel) {
    constexpr double step = 1.25;
    std::int32_t x = 0;
    std::int32_t y = 0;
    SDL_GetMouseState(&x, &y);
    if (m_isDrawing || wheel.y == 0 || !IsOnPicture(x, y)) return;
    m_zoom.By(wheel.y > 0 ? step : 1 / step, x, y, WholePicture(), Free());
    ShowPicture();
}

void WindowLoop::Pan(const SDL_MouseMotionEvent& motion) {
    if (!m_zoom.IsZoomed() || m_isDrawing) return;
    m_zoom.Move(motion.xrel, motion.yrel, WholePicture(), Free());
    ShowPicture();
}

void WindowLoop::ChooseAt(PointerKind kind, std::int32_t x, std::int32_t y) {
    constexpr int framesToShow = 2;
    m_chooser.Point(*m_workspace, kind, SceneAt(m_painter.Picture(), m_workspace->SceneSize(), x, y));
    m_panelsWanted = std::max(m_panelsWanted, framesToShow);
}

void WindowLoop::TakeKey(const SDL_KeyboardEvent& event) {
    if (ImGui::GetIO().WantTextInput) return;
    KeyChord chord;
    chord.key = SDL_GetKeyName(event.keysym.sym);
    if (IsSign(chord)) return;  // comes as text
    chord.control = (event.keysym.mod & KMOD_CTRL) != 0;
    chord.shift = (event.keysym.mod & KMOD_SHIFT) != 0;
    chord.alt = (event.keysym.mod & KMOD_ALT) != 0;
    const FittedKeys::Key* key = m_keys.Find(chord);
    if (key == nullptr) return;
    // A key held down goes on stepping, and does anything else once.
    const bool isStep = key->action == WorkspaceAction::Step || key->action == WorkspaceAction::StepBack ||
                        key->action == WorkspaceAction::Jump || key->action == WorkspaceAction::JumpBack ||
                        (key->module && key->module->kind == ModuleKey::Kind::Step);
    if (event.repeat == 0 || isStep) DoKey(*key);
}

void WindowLoop::TakeText(const char* text) {
    if (ImGui::GetIO().WantTextInput) return;
    const KeyChord chord{text, false, false, false};
    if (!IsSign(chord)) return;
    if (const FittedKeys::Key* key = m_keys.Find(chord)) DoKey(*key);
}

void WindowLoop::TakeDrop(char* file) {
    const std::filesystem::path dropped = file;
    SDL_free(file);
    Open(dropped);
}

void WindowLoop::DoKey(const FittedKeys::Key& key) {
    if (m_chooser.TakeKey(*m_workspace, key)) return;
    if (key.action) return DoAction(*key.action);
    if (!key.module || m_workspace->Chosen() == nullptr) return;
    try {
        m_workspace->Do(*key.module);
    } catch (const cli::Error& error) {
        m_status.Tell(error.what(), Clock::now());
    }
}

void WindowLoop::DoAction(WorkspaceAction action) {
    switch (action) {
        case WorkspaceAction::Quit:
            m_isOver = true;
            return;
        case WorkspaceAction::Sound:
            m_isMuted = !m_isMuted;
            return m_status.Tell(m_isMuted ? "The sound is off" : "The sound is on", Clock::now());
        case WorkspaceAction::Choose:
            if (!m_isDrawing) m_chooser.Toggle();
            return;
        default:
            if (!DoWithoutDisplay(*m_workspace, action)) DoDisplay(action);
    }
}

// What changes only how things are shown.
void WindowLoop::DoDisplay(WorkspaceAction action) {
    switch (action) {
        case WorkspaceAction::FullScreen:
            return m_window.SetFullScreen(!m_window.IsFullScreen());
        case WorkspaceAction::Panel:
            m_hasPanel = !m_hasPanel;
            return;
        case WorkspaceAction::FoldPanel:
            m_hasPanel = true;
            m_isFolded = !IsPanelFolded();
            return;
        case WorkspaceAction::Help:
            m_hasHelp = !m_hasHelp;
            return;
        case WorkspaceAction::Close:
            return LeaveOne();
        case WorkspaceAction::Open:
            return m_openPage.Open(m_workspace->File(), m_recent);
        case WorkspaceAction::Spotlight:
            return ToggleSpotlight();
        case WorkspaceAction::WholePicture:
            return m_zoom.Reset();
        default:
            return;
    }
}

// What lies over all else first.
void WindowLoop::LeaveOne() {
    if (m_openPage.IsOpen())
        m_openPage.Close();
    else if (m_opening.IsWaiting())
        m_opening.Stop();
    else if (m_hasHelp)
        m_hasHelp = false;
    else if (m_chooser.IsOn())
        m_chooser.Toggle();
    else if (m_spotlight.IsOn())
        m_spotlight.TurnOff();
    else if (m_window.IsFullScreen())
        m_window.SetFullScreen(false);
}

void WindowLoop::ToggleSpotlight() {
    m_spotlight.Toggle();
    if (m_spotlight.IsOn() && !m_spotlight.HasRing())
        m_status.Tell("Draw around something: all else is dimmed then", Clock::now());
}

}  // namespace kel
