#include "kel/window/workspace_window.h"

#include <SDL.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/window/brush_cursor.h"
#include "kel/window/clean_output.h"
#include "kel/window/help_page.h"
#include "kel/window/ink_panel.h"
#include "kel/window/live_feed.h"
#include "kel/window/open_page.h"
#include "kel/window/panel.h"
#include "kel/window/panel_style.h"
#include "kel/window/sdl_window.h"
#include "kel/window/spotlight.h"
#include "kel/window/status_line.h"
#include "kel/window/stroke_chooser.h"
#include "kel/window/video_sound.h"
#include "kel/window/window_painter.h"
#include "kel/workspace/brush_look.h"
#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/picture_area.h"
#include "kel/workspace/picture_zoom.h"

namespace kel {
namespace {

using Clock = FieldPacer::Clock;

// The next recording when another file is opened: "match.json" is followed by "match-2.json".
std::filesystem::path NumberedRecording(const std::filesystem::path& file, int number) {
    if (file.empty() || number == 1) return file;
    return file.parent_path() / (file.stem().string() + "-" + std::to_string(number) + file.extension().string());
}

// Less than the panel and something to draw on beside it.
bool IsNarrow(int windowWidth) { return windowWidth < 2 * PanelWidth() + StripWidth(); }

class WorkspaceWindow {
public:
    explicit WorkspaceWindow(const WindowOptions& options);
    void Run();

private:
    void FitTheKeys(KeyFit fit);
    void Open(const std::filesystem::path& file);
    void OpenSound();
    void FollowWithSound();
    void StartPacing() {
        m_pacer = FieldPacer(m_workspace->FieldsPerSecond(), Clock::now());
        m_givenUp = 0;
    }
    [[nodiscard]] WindowSize Free() const;
    [[nodiscard]] PictureArea WholePicture() const { return FitPicture(m_workspace->TheHost().Window(), Free()); }
    [[nodiscard]] bool IsPanelFolded() const;
    [[nodiscard]] bool IsOnPicture(std::int32_t x, std::int32_t y) const;

    void TakeEvents();
    void TakeEvent(const SDL_Event& event);
    void TakePointer(PointerKind kind, std::int32_t x, std::int32_t y);
    void BeginStroke();
    void TakeWheel(const SDL_MouseWheelEvent& wheel);
    void Pan(const SDL_MouseMotionEvent& motion);
    void NoteStroke(PointerKind kind, const ScenePixel& at);
    void ShowBrush(std::int32_t x, std::int32_t y);
    void TakeKey(const SDL_KeyboardEvent& event);
    void TakeText(const char* text);
    void TakeDrop(char* file);
    void DoKey(const FittedKeys::Key& key);
    void DoAction(WorkspaceAction action);
    bool DoInk(WorkspaceAction action);
    void ChooseAt(PointerKind kind, std::int32_t x, std::int32_t y);
    void DoDisplay(WorkspaceAction action);
    void LeaveOne();
    void ToggleSpotlight();

    void PlacePicture();
    void MakePanel();
    void ShowPages();
    void ShowClean(const FrameArea& changed);
    void ShowPanel();
    void ShowSessionProgress();
    void ShowPicture();
    void PlaySession();
    void RunDueFields();
    [[nodiscard]] bool WantsStep() const { return m_options.hasSteps && m_workspace->CanStep(); }
    void RunDueStep();
    void NoteForPanel(const SDL_Event& event);
    [[nodiscard]] Clock::time_point NextPanel() const;

    WindowOptions m_options;
    SdlWindow m_window{"kel"};
    std::unique_ptr<Workspace> m_workspace;
    const Registration* m_fitted = nullptr;
    FittedKeys m_keys;
    Clock::time_point m_nextStep;
    LiveFeed m_feed{m_options.live, m_options.followsVideo};
    FieldPacer m_pacer{50, Clock::now()};  // the scene's own rate once it runs
    WindowPainter m_painter{m_window};
    Panel m_panel;
    InkPanel m_inkPanel;
    StrokeChooser m_chooser;
    Clock::time_point m_panelTime;  // when it was made last
    int m_panelsWanted = 0;         // how many more, until it has taken in what happened
    PictureZoom m_zoom;
    Spotlight m_spotlight;
    BrushCursor m_cursor;
    OpenPage m_openPage;
    RecentFiles m_recent{RecentFilesPlace()};
    std::unique_ptr<CleanOutput> m_clean;  // null: there is none
    StatusLine m_status;
    std::unique_ptr<VideoSound> m_sound;  // null: no video is open
    bool m_isMuted = false;
    SecondRate m_pictures;
    PenTimes m_pen;
    std::vector<SDL_Event> m_keysUp;
    int m_opened = 1;
    std::int64_t m_givenUp = 0;  // fields that the video knows of
    bool m_isDrawing = false;    // the pointer was pressed on the picture
    bool m_isTailOver = false;   // once the next field has been run
    bool m_isPanning = false;
    bool m_hasPanel = true;
    std::optional<bool> m_isFolded;  // the panel; nothing: as the window has room
    bool m_hasHelp = false;
    bool m_isOver = false;
};

WorkspaceWindow::WorkspaceWindow(const WindowOptions& options) : m_options(options) {
    m_options.workspace.gl = GlSource::Current;
    // What is written while one draws is what is seen.
    if (options.live == nullptr) m_options.workspace.videoConversion = VideoConversion::Fast;
    const WindowSize room = m_window.Room();
    m_workspace = std::make_unique<Workspace>(m_options.file, m_options.workspace);
    OpenSound();
    FitTheKeys(m_options.areKeysGiven ? KeyFit::All : KeyFit::WhatFits);
    const int panelWidth = IsNarrow(room.width) ? StripWidth() : PanelWidth();
    const WindowSize shown = FirstSize(m_workspace->TheHost().Window(), {std::max(room.width - panelWidth, 64),
                                                                         std::max(room.height - StatusHeight(), 64)});
    m_window.SetTitle(m_workspace->File().filename().string() + " - kel");
    m_window.Show({shown.width + panelWidth,
                   std::max(shown.height, std::min(560, room.height - StatusHeight())) + StatusHeight()});
    m_recent.Add(m_options.file);
    if (m_options.hasCleanOutput)
        m_clean =
            std::make_unique<CleanOutput>("kel clean output", m_workspace->TheHost().Window(), m_options.cleanDisplay);
}

void WorkspaceWindow::FitTheKeys(KeyFit fit) {
    m_fitted = m_workspace->Chosen() == nullptr ? nullptr : m_workspace->Chosen()->registration;
    m_keys = FitKeys(m_options.keys, m_fitted, fit);
}

void WorkspaceWindow::Open(const std::filesystem::path& file) {
    WorkspaceOptions options = m_options.workspace;
    options.recording = NumberedRecording(options.recording, m_opened + 1);
    try {
        m_workspace = std::make_unique<Workspace>(file, options);
    } catch (const cli::Error& error) {
        return m_status.Tell(error.what(), Clock::now());
    }
    ++m_opened;
    m_feed.EndEarly();
    m_recent.Add(file);
    m_zoom.Reset();
    m_spotlight.Forget();
    m_painter.Tail().End();
    if (m_clean) m_clean->ShowAnew();
    OpenSound();
    m_panel = {};
    m_chooser = {};
    m_isDrawing = false;
    m_painter.ShowAnew();
    StartPacing();
    FitTheKeys(KeyFit::WhatFits);
    m_window.SetTitle(m_workspace->File().filename().string() + " - kel");
}

void WorkspaceWindow::OpenSound() {
    m_sound.reset();
    if (m_workspace->Video() != nullptr) m_sound = std::make_unique<VideoSound>(m_workspace->VideoFile());
}

// Faster and slower than it was taken there is none.
void WorkspaceWindow::FollowWithSound() {
    const VideoShow* video = m_workspace->Video();
    if (!m_sound || video == nullptr) return;
    const VideoClock& clock = video->Clock();
    const bool isRunning = clock.IsRunning(m_workspace->NextField()) && clock.Speed() == 1;
    m_sound->SetMuted(m_isMuted);
    m_sound->Follow({static_cast<double>(m_workspace->VideoFrame()) / video->FramesPerSecond(), isRunning});
}

WindowSize WorkspaceWindow::Free() const {
    const WindowSize size = m_window.Size();
    if (!m_hasPanel) return size;
    const int panelWidth = IsPanelFolded() ? StripWidth() : PanelWidth();
    return {std::max(size.width - panelWidth, 1), std::max(size.height - StatusHeight(), 1)};
}

bool WorkspaceWindow::IsPanelFolded() const { return m_isFolded.value_or(IsNarrow(m_window.Size().width)); }

void WorkspaceWindow::TakeEvents() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
        if (m_clean && m_clean->TakeEvent(event)) continue;
        // The panel looks at keys once a frame: one that is up again by then is held down for it until it has looked.
        if (event.type == SDL_KEYUP)
            m_keysUp.push_back(event);
        else
            ImGui_ImplSDL2_ProcessEvent(&event);
        NoteForPanel(event);
        TakeEvent(event);
    }
}

void WorkspaceWindow::TakeEvent(const SDL_Event& event) {
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
            if (event.button.button == SDL_BUTTON_LEFT) TakePointer(PointerKind::Press, event.button.x, event.button.y);
            break;
        case SDL_MOUSEBUTTONUP:
            if (event.button.button == SDL_BUTTON_MIDDLE) m_isPanning = false;
            if (event.button.button == SDL_BUTTON_LEFT)
                TakePointer(PointerKind::Release, event.button.x, event.button.y);
            break;
        case SDL_MOUSEMOTION:
            if (m_isPanning) Pan(event.motion);
            ShowBrush(event.motion.x, event.motion.y);
            TakePointer(PointerKind::Move, event.motion.x, event.motion.y);
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

void WorkspaceWindow::BeginStroke() {
    // What is being typed is over with the press, and takes hold before the stroke.
    if (ImGui::GetIO().WantTextInput) MakePanel();
    m_hasHelp = false;
    m_pen.Press(Clock::now());
}

// What begins on the picture belongs to it until the button is up, wherever the pointer goes.
void WorkspaceWindow::TakePointer(PointerKind kind, std::int32_t x, std::int32_t y) {
    const bool isOnPicture = IsOnPicture(x, y);
    const bool isHeld = m_isDrawing || m_chooser.IsDragging();
    if (!isHeld && (!isOnPicture || kind == PointerKind::Release)) return;
    if (m_chooser.IsOn()) return ChooseAt(kind, x, y);
    if (kind == PointerKind::Press) BeginStroke();
    if (m_isDrawing) m_pen.Move(Clock::now());
    if (kind != PointerKind::Move) m_isDrawing = kind == PointerKind::Press;
    const ScenePixel at = SceneAt(m_painter.Picture(), m_workspace->TheHost().Window(), x, y);
    m_workspace->Point(kind, at.x, at.y);
    NoteStroke(kind, at);
}

bool WorkspaceWindow::IsOnPicture(std::int32_t x, std::int32_t y) const {
    return m_painter.Picture().Contains(x, y) && !m_window.IsOnPage(x, y);
}

void WorkspaceWindow::NoteStroke(PointerKind kind, const ScenePixel& at) {
    InkTail& tail = m_painter.Tail();
    if (kind == PointerKind::Press) {
        const auto brush = BrushLookOf(*m_workspace);
        constexpr double rim = 0.85;  // of a dab's radius: beyond it ink fades away
        const bool isSeen = m_options.hasTail && brush && brush->hasColour;
        tail.Press(at, isSeen ? TailPen{{brush->colour[0], brush->colour[1], brush->colour[2]}, brush->radius * rim}
                              : TailPen{});
        m_spotlight.Press(at);
        m_isTailOver = false;
    } else if (m_isDrawing) {
        tail.Move(at);
        m_spotlight.Move(at);
    }
    if (kind != PointerKind::Release) return;
    m_spotlight.Release();
    m_isTailOver = true;
}

// The pointer is as large as the dab that it would paint.
void WorkspaceWindow::ShowBrush(std::int32_t x, std::int32_t y) {
    if (!m_isDrawing && !IsOnPicture(x, y)) return m_cursor.Hide();
    const auto brush = BrushLookOf(*m_workspace);
    const double scale = 1.0 * m_painter.Picture().width / m_workspace->TheHost().Window().width;
    m_cursor.Show(brush ? brush->radius * scale : 0);
}

void WorkspaceWindow::TakeWheel(const SDL_MouseWheelEvent& wheel) {
    constexpr double step = 1.25;
    std::int32_t x = 0;
    std::int32_t y = 0;
    SDL_GetMouseState(&x, &y);
    if (m_isDrawing || wheel.y == 0 || !IsOnPicture(x, y)) return;
    m_zoom.By(wheel.y > 0 ? step : 1 / step, x, y, WholePicture(), Free());
    ShowPicture();
}

void WorkspaceWindow::Pan(const SDL_MouseMotionEvent& motion) {
    if (!m_zoom.IsZoomed() || m_isDrawing) return;
    m_zoom.Move(motion.xrel, motion.yrel, WholePicture(), Free());
    ShowPicture();
}

void WorkspaceWindow::ChooseAt(PointerKind kind, std::int32_t x, std::int32_t y) {
    constexpr int framesToShow = 2;
    m_chooser.Point(*m_workspace, kind, SceneAt(m_painter.Picture(), m_workspace->SceneSize(), x, y));
    m_panelsWanted = std::max(m_panelsWanted, framesToShow);
}

void WorkspaceWindow::TakeKey(const SDL_KeyboardEvent& event) {
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

void WorkspaceWindow::TakeText(const char* text) {
    if (ImGui::GetIO().WantTextInput) return;
    const KeyChord chord{text, false, false, false};
    if (!IsSign(chord)) return;
    if (const FittedKeys::Key* key = m_keys.Find(chord)) DoKey(*key);
}

void WorkspaceWindow::TakeDrop(char* file) {
    const std::filesystem::path dropped = file;
    SDL_free(file);
    Open(dropped);
}

void WorkspaceWindow::DoKey(const FittedKeys::Key& key) {
    if (m_chooser.TakeKey(*m_workspace, key)) return;
    if (key.action) return DoAction(*key.action);
    if (!key.module || m_workspace->Chosen() == nullptr) return;
    try {
        m_workspace->Do(*key.module);
    } catch (const cli::Error& error) {
        m_status.Tell(error.what(), Clock::now());
    }
}

void WorkspaceWindow::DoAction(WorkspaceAction action) {
    switch (action) {
        case WorkspaceAction::SavePicture:
            return m_workspace->SavePicture();
        case WorkspaceAction::SaveOverlay:
            return m_workspace->SaveOverlay();
        case WorkspaceAction::Quit:
            m_isOver = true;
            return;
        case WorkspaceAction::Sound:
            m_isMuted = !m_isMuted;
            return m_status.Tell(m_isMuted ? "The sound is off" : "The sound is on", Clock::now());
        case WorkspaceAction::Undo:
            return m_workspace->Undo();
        case WorkspaceAction::Redo:
            return m_workspace->Redo();
        case WorkspaceAction::Choose:
            if (!m_isDrawing) m_chooser.Toggle();
            return;
        default:
            if (DoInk(action)) return;
            DoDisplay(action);
            return m_workspace->DoVideo(action);
    }
}

// True: it was for the ink.
bool WorkspaceWindow::DoInk(WorkspaceAction action) {
    using Recalled = chalkpane::InkDrawing::Recall;
    if (action == WorkspaceAction::Fade) {
        Workspace::Fading fading = m_workspace->InkFading();
        fading.isOn = !fading.isOn;
        m_workspace->SetFading(fading);
    } else if (const int kept = SlotOf(action, WorkspaceAction::Keep); kept != 0) {
        m_workspace->Keep(kept);
    } else if (const int over = SlotOf(action, WorkspaceAction::Recall); over != 0) {
        m_workspace->Recall(over, Recalled::Over);
    } else if (const int alone = SlotOf(action, WorkspaceAction::RecallInPlace); alone != 0) {
        m_workspace->Recall(alone, Recalled::InPlace);
    } else {
        return false;
    }
    return true;
}

// What changes only how things are shown.
void WorkspaceWindow::DoDisplay(WorkspaceAction action) {
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
void WorkspaceWindow::LeaveOne() {
    if (m_openPage.IsOpen())
        m_openPage.Close();
    else if (m_hasHelp)
        m_hasHelp = false;
    else if (m_chooser.IsOn())
        m_chooser.Toggle();
    else if (m_spotlight.IsOn())
        m_spotlight.TurnOff();
    else if (m_window.IsFullScreen())
        m_window.SetFullScreen(false);
}

void WorkspaceWindow::ToggleSpotlight() {
    m_spotlight.Toggle();
    if (m_spotlight.IsOn() && !m_spotlight.HasRing())
        m_status.Tell("Draw around something: all else is dimmed then", Clock::now());
}

void WorkspaceWindow::ShowSessionProgress() {
    if (!m_workspace->IsPlayingSession()) return;
    ImGui::SetNextWindowPos(
        {static_cast<float>(m_painter.Picture().x) + static_cast<float>(m_painter.Picture().width) / 2,
         static_cast<float>(m_painter.Picture().y) + static_cast<float>(m_painter.Picture().height) / 2},
        ImGuiCond_Always, {0.5F, 0.5F});
    ImGui::SetNextWindowSize({320, 0});
    ImGui::Begin("progress", nullptr, ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoInputs);
    ImGui::TextUnformatted("Playing the session");
    ImGui::ProgressBar(static_cast<float>(m_workspace->SessionProgress()), {-1, 0});
    ImGui::End();
}

void WorkspaceWindow::PlacePicture() { m_painter.Place(m_zoom.Place(WholePicture(), Free())); }

void WorkspaceWindow::ShowPages() {
    ShowSessionProgress();
    m_chooser.Show(*m_workspace, m_painter.Picture());
    if (m_hasHelp) ShowHelpPage(m_keys, WholePicture());
    if (const auto chosen = m_openPage.Show(WholePicture())) Open(*chosen);
}

void WorkspaceWindow::MakePanel() {
    const WindowSize size = m_window.Size();
    const auto now = Clock::now();
    PlacePicture();
    m_window.BeginPanel();
    m_spotlight.Show(m_painter.Picture(), m_workspace->TheHost().Window());
    if (m_hasPanel) {
        for (const WorkspaceAction action :
             m_panel.Show(*m_workspace, m_keys, size, {m_inkPanel, m_chooser.IsOn(), IsPanelFolded()}))
            DoAction(action);
        if (auto refusal = m_panel.TakeRefusal()) m_status.Tell(*refusal, now);
        m_status.Show(*m_workspace, {m_pacer, m_pictures, m_pen}, size, now);
    }
    for (const std::string& news : m_workspace->TakeNews()) m_status.Tell(news, now);
    m_status.ShowNews(size, now);
    ShowPages();
    m_window.EndPanel();
    const Registration* chosen = m_workspace->Chosen() == nullptr ? nullptr : m_workspace->Chosen()->registration;
    if (chosen != m_fitted) FitTheKeys(KeyFit::WhatFits);
    for (const SDL_Event& event : std::exchange(m_keysUp, {})) ImGui_ImplSDL2_ProcessEvent(&event);
    m_panelTime = now;
    if (m_panelsWanted > 0) --m_panelsWanted;
}

void WorkspaceWindow::ShowPanel() {
    MakePanel();
    m_painter.ShowPanel(m_workspace->TheHost());
}

// What happens to the panel takes a few of its frames to be seen: what is hovered is known in the next one, what a
// button does to the module after the next field. The pointer over the picture is nothing to it.
void WorkspaceWindow::NoteForPanel(const SDL_Event& event) {
    constexpr int framesToSettle = 4;
    const PictureArea& picture = m_painter.Picture();
    if (event.type == SDL_MOUSEMOTION) {
        const auto& motion = event.motion;
        const bool isFree = picture.Contains(motion.x, motion.y) &&
                            picture.Contains(motion.x - motion.xrel, motion.y - motion.yrel) &&
                            !m_window.IsOnPage(motion.x, motion.y);
        if (m_isDrawing || isFree) return;
    }
    m_panelsWanted = framesToSettle;
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED) m_painter.ShowAnew();
}

// Its figures are renewed twice a second; what happened to it shows at once, unless a stroke is being drawn.
Clock::time_point WorkspaceWindow::NextPanel() const {
    constexpr auto figuresTime = std::chrono::milliseconds(500);
    constexpr auto frameTime = std::chrono::milliseconds(18);
    return m_panelTime + (m_panelsWanted > 0 && !m_isDrawing ? Clock::duration(frameTime) : figuresTime);
}

void WorkspaceWindow::PlaySession() {
    constexpr auto sessionShare = std::chrono::milliseconds(30);  // between two looks at the window's events
    m_workspace->PlaySession(sessionShare);
    StartPacing();
    ShowPanel();
    ShowPicture();
}

void WorkspaceWindow::RunDueFields() {
    const int due = m_pacer.Due(Clock::now());
    if (due == 0) return;
    m_workspace->SkipVideo(m_pacer.GivenUp() - std::exchange(m_givenUp, m_pacer.GivenUp()));
    m_workspace->RunFields(due);
    FollowWithSound();
    m_feed.Take(*m_workspace, due);
    if (std::exchange(m_isTailOver, false)) m_painter.Tail().End();
    ShowPicture();
    m_workspace->FollowInk();
}

void WorkspaceWindow::RunDueStep() {
    constexpr auto shortestStep = std::chrono::nanoseconds(std::chrono::seconds(1)) / 240;
    const auto now = Clock::now();
    if (now < m_nextStep || !WantsStep()) return;
    m_nextStep = now + shortestStep;
    m_workspace->RunStep();
    ShowPicture();
    m_workspace->FollowInk();
}

void WorkspaceWindow::ShowPicture() {
    PlacePicture();
    Host& host = m_workspace->TheHost();
    const FrameArea changed = host.TakeChangedArea();
    m_painter.ShowPicture(host, changed);
    ShowClean(changed);
    if (changed.IsEmpty()) return;
    const auto now = Clock::now();
    m_pictures.Add(now);
    m_pen.Shown(now);
}

void WorkspaceWindow::ShowClean(const FrameArea& changed) {
    if (m_clean && m_clean->IsClosed()) m_clean.reset();
    if (m_clean) m_clean->Show(m_workspace->TheHost(), changed);
}

void WorkspaceWindow::Run() {
    m_feed.Start(*m_workspace);
    StartPacing();
    ShowPanel();
    while (!m_isOver) {
        TakeEvents();
        if (m_workspace->IsPlayingSession()) {
            PlaySession();
            continue;
        }
        RunDueStep();
        RunDueFields();
        if (Clock::now() >= NextPanel()) ShowPanel();
        const auto next = std::min(m_pacer.Next(), NextPanel());
        m_window.WaitForEvent(WantsStep() ? std::min(next, m_nextStep) : next);
    }
    if (m_workspace->IsPlayingSession()) return;
    m_workspace->RunFields(1);  // in which takes effect what was done last
    m_feed.Take(*m_workspace, 1);
    m_feed.End(*m_workspace);
}

}  // namespace

void RunWorkspaceWindow(const WindowOptions& options) { WorkspaceWindow(options).Run(); }

}  // namespace kel
