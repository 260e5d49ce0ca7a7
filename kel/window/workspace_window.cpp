#include "kel/window/workspace_window.h"

#include <SDL.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/window/help_page.h"
#include "kel/window/panel.h"
#include "kel/window/panel_style.h"
#include "kel/window/sdl_window.h"
#include "kel/window/status_line.h"
#include "kel/window/window_painter.h"
#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/picture_area.h"

namespace kel {
namespace {

using Clock = FieldPacer::Clock;

// The next recording when another file is opened: "match.json" is followed by "match-2.json".
std::filesystem::path NumberedRecording(const std::filesystem::path& file, int number) {
    if (file.empty() || number == 1) return file;
    return file.parent_path() / (file.stem().string() + "-" + std::to_string(number) + file.extension().string());
}

class WorkspaceWindow {
public:
    explicit WorkspaceWindow(const WindowOptions& options);
    void Run();

private:
    void FitTheKeys(KeyFit fit);
    void Open(const std::filesystem::path& file);
    void StartLive();
    void FeedLive(int fields);
    void FeedFrame();
    void EndFeed();
    void StartPacing() { m_pacer = FieldPacer(m_workspace->FieldsPerSecond(), Clock::now()); }
    [[nodiscard]] WindowSize Free() const;

    void TakeEvents();
    void TakeEvent(const SDL_Event& event);
    void TakePointer(PointerKind kind, std::int32_t x, std::int32_t y);
    void BeginStroke();
    void TakeKey(const SDL_KeyboardEvent& event);
    void TakeText(const char* text);
    void TakeDrop(char* file);
    void DoKey(const FittedKeys::Key& key);
    void DoAction(WorkspaceAction action);

    void PlacePicture();
    void MakePanel();
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
    FieldPacer m_pacer{50, Clock::now()};  // the scene's own rate once it runs
    WindowPainter m_painter{m_window};
    Panel m_panel;
    Clock::time_point m_panelTime;  // when it was made last
    int m_panelsWanted = 0;         // how many more, until it has taken in what happened
    StatusLine m_status;
    SecondRate m_pictures;
    PenTimes m_pen;
    std::vector<SDL_Event> m_keysUp;
    int m_opened = 1;
    std::int64_t m_fedFrame = -1;  // the last one of the video that what is written has
    bool m_isDrawing = false;      // the pointer was pressed on the picture
    bool m_hasPanel = true;
    bool m_hasHelp = false;
    bool m_isOver = false;
};

WorkspaceWindow::WorkspaceWindow(const WindowOptions& options) : m_options(options) {
    m_options.workspace.gl = GlSource::Current;
    const WindowSize room = m_window.Room();
    m_workspace = std::make_unique<Workspace>(m_options.file, m_options.workspace);
    FitTheKeys(m_options.areKeysGiven ? KeyFit::All : KeyFit::WhatFits);
    const WindowSize shown = FirstSize(m_workspace->TheHost().Window(), {std::max(room.width - panelWidth, 64),
                                                                         std::max(room.height - statusHeight, 64)});
    m_window.SetTitle(m_workspace->File().filename().string() + " - kel");
    m_window.Show({shown.width + panelWidth, std::max(shown.height, 560) + statusHeight});
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
    m_panel = {};
    m_isDrawing = false;
    m_painter.ShowAnew();
    StartPacing();
    FitTheKeys(KeyFit::WhatFits);
    m_window.SetTitle(m_workspace->File().filename().string() + " - kel");
}

// What is written meanwhile shows every field of the file that the window was opened with. Where the machine was late,
// fields went by undrawn; then it is made from the recording when the window is closed.
void WorkspaceWindow::FeedLive(int fields) {
    if (m_options.live == nullptr || m_opened > 1) return;
    if (m_options.followsVideo) return FeedFrame();
    if (fields == 1)
        m_options.live->TakeField(m_workspace->TheHost());
    else
        m_options.live->Abandon();
}

// A video that is played once and straight on, with any pauses, can be written as it goes. Jumps are for the recording.
void WorkspaceWindow::FeedFrame() {
    const std::int64_t frame = m_workspace->Video()->Shown();
    if (frame == m_fedFrame + 1)
        m_options.live->TakeField(m_workspace->TheHost());
    else if (frame == m_fedFrame)
        m_options.live->TakeFieldAgain(m_workspace->TheHost());
    else
        m_options.live->Abandon();
    m_fedFrame = frame;
}

// Frames that have not been shown are missing in what was written.
void WorkspaceWindow::EndFeed() {
    if (m_options.live == nullptr || !m_options.followsVideo) return;
    const VideoShow* video = m_workspace->Video();
    if (video == nullptr || m_fedFrame + 1 < video->Clock().Frames() || m_opened > 1) m_options.live->Abandon();
}

WindowSize WorkspaceWindow::Free() const {
    const WindowSize size = m_window.Size();
    if (!m_hasPanel) return size;
    return {std::max(size.width - panelWidth, 1), std::max(size.height - statusHeight, 1)};
}

void WorkspaceWindow::TakeEvents() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
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
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.button == SDL_BUTTON_LEFT) TakePointer(PointerKind::Press, event.button.x, event.button.y);
            break;
        case SDL_MOUSEBUTTONUP:
            if (event.button.button == SDL_BUTTON_LEFT)
                TakePointer(PointerKind::Release, event.button.x, event.button.y);
            break;
        case SDL_MOUSEMOTION:
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
    const bool isOnPicture = m_painter.Picture().Contains(x, y) && !m_window.IsOnPage(x, y);
    if (!m_isDrawing && (!isOnPicture || kind == PointerKind::Release)) return;
    if (kind == PointerKind::Press) BeginStroke();
    if (m_isDrawing) m_pen.Move(Clock::now());
    if (kind != PointerKind::Move) m_isDrawing = kind == PointerKind::Press;
    const ScenePixel at = SceneAt(m_painter.Picture(), m_workspace->TheHost().Window(), x, y);
    m_workspace->Point(kind, at.x, at.y);
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
        case WorkspaceAction::FullScreen:
            return m_window.SetFullScreen(!m_window.IsFullScreen());
        case WorkspaceAction::Panel:
            m_hasPanel = !m_hasPanel;
            return;
        case WorkspaceAction::Help:
            m_hasHelp = !m_hasHelp;
            return;
        case WorkspaceAction::Close:
            if (!m_hasHelp && m_window.IsFullScreen()) m_window.SetFullScreen(false);
            m_hasHelp = false;
            return;
        case WorkspaceAction::Quit:
            m_isOver = true;
            return;
        case WorkspaceAction::Undo:
            return m_workspace->Undo();
        case WorkspaceAction::Redo:
            return m_workspace->Redo();
        default:
            return m_workspace->DoVideo(action);
    }
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

void WorkspaceWindow::PlacePicture() { m_painter.Place(FitPicture(m_workspace->TheHost().Window(), Free())); }

void WorkspaceWindow::MakePanel() {
    const WindowSize size = m_window.Size();
    const auto now = Clock::now();
    PlacePicture();
    m_window.BeginPanel();
    if (m_hasPanel) {
        for (const WorkspaceAction action : m_panel.Show(*m_workspace, m_keys, size)) DoAction(action);
        if (auto refusal = m_panel.TakeRefusal()) m_status.Tell(*refusal, now);
        m_status.Show(*m_workspace, {m_pacer, m_pictures, m_pen}, size, now);
    }
    for (const std::string& news : m_workspace->TakeNews()) m_status.Tell(news, now);
    m_status.ShowNews(size, now);
    ShowSessionProgress();
    if (m_hasHelp) ShowHelpPage(m_keys, m_painter.Picture());
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
    m_workspace->RunFields(due);
    FeedLive(due);
    ShowPicture();
}

void WorkspaceWindow::RunDueStep() {
    constexpr auto shortestStep = std::chrono::nanoseconds(std::chrono::seconds(1)) / 240;
    const auto now = Clock::now();
    if (now < m_nextStep || !WantsStep()) return;
    m_nextStep = now + shortestStep;
    m_workspace->RunStep();
    ShowPicture();
}

void WorkspaceWindow::ShowPicture() {
    PlacePicture();
    Host& host = m_workspace->TheHost();
    const FrameArea changed = host.TakeChangedArea();
    m_painter.ShowPicture(host, changed);
    if (changed.IsEmpty()) return;
    const auto now = Clock::now();
    m_pictures.Add(now);
    m_pen.Shown(now);
}

// A session's own events go by undrawn, and where nothing can be drawn the outputs are refused afterwards.
void WorkspaceWindow::StartLive() {
    const bool canFollow = !m_workspace->IsPlayingSession() && !m_workspace->PlugIns().empty();
    if (m_options.live == nullptr || !canFollow) return;
    const double rate =
        m_options.followsVideo ? m_workspace->Video()->FramesPerSecond() : m_workspace->FieldsPerSecond();
    m_options.live->Start(m_workspace->TheHost().Window(), rate);
}

void WorkspaceWindow::Run() {
    StartLive();
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
    FeedLive(1);
    EndFeed();
}

}  // namespace

void RunWorkspaceWindow(const WindowOptions& options) { WorkspaceWindow(options).Run(); }

}  // namespace kel
