#include "kel/window/window_loop.h"

#include <imgui.h>

#include <algorithm>
#include <string>
#include <utility>

#include "cli/error.h"
#include "kel/window/help_page.h"
#include "kel/window/panel_style.h"

namespace kel {
namespace {

// The next recording when another file is opened: "match.json" is followed by "match-2.json".
std::filesystem::path NumberedRecording(const std::filesystem::path& file, int number) {
    if (file.empty() || number == 1) return file;
    return file.parent_path() / (file.stem().string() + "-" + std::to_string(number) + file.extension().string());
}

// Less than the panel and something to draw on beside it.
bool IsNarrow(int windowWidth) { return windowWidth < 2 * PanelWidth() + StripWidth(); }

// Frames of the panel until it shows what has happened to it.
constexpr int framesToSettle = 4;

}  // namespace

WindowLoop::WindowLoop(WindowOptions options) : m_options(std::move(options)) {
    m_options.workspace.gl = GlSource::Current;
    // What is written while one draws is what is seen.
    if (m_options.live == nullptr) m_options.workspace.videoConversion = VideoConversion::Fast;
    const WindowSize room = m_window.Room();
    m_workspace = std::make_unique<Workspace>(m_options.file, m_options.workspace);
    m_options.workspace.live.reset();  // the workspace's own from now on: they end when something else is opened
    OpenSound();
    FitTheKeys(m_options.areKeysGiven ? KeyFit::All : KeyFit::WhatFits);
    const int panelWidth = IsNarrow(room.width) ? StripWidth() : PanelWidth();
    const WindowSize shown = FirstSize(m_workspace->TheHost().Window(), {std::max(room.width - panelWidth, 64),
                                                                         std::max(room.height - StatusHeight(), 64)});
    m_window.SetTitle(m_workspace->File().filename().string() + " - kel");
    m_window.Show({shown.width + panelWidth,
                   std::max(shown.height, std::min(560, room.height - StatusHeight())) + StatusHeight()});
    if (m_workspace->Live() == nullptr) m_recent.Add(m_options.file);
    if (m_options.hasCleanOutput)
        m_clean = std::make_unique<CleanOutput>(
            CleanPlace{"kel clean output", "--clean-output", m_options.cleanDisplay}, m_workspace->TheHost().Window());
    if (m_options.hasKeyFill)
        m_keyFill = std::make_unique<KeyFillOutput>(m_workspace->TheHost().Window(), m_options.keyFillDisplay,
                                                    m_options.isKeyFillStraight);
}

void WindowLoop::FitTheKeys(KeyFit fit) {
    m_fitted = m_workspace->Chosen() == nullptr ? nullptr : m_workspace->Chosen()->registration;
    m_keys = FitKeys(m_options.keys, m_fitted, fit);
}

const FittedKeys& WindowLoop::Keys() {
    const Registration* chosen = m_workspace->Chosen() == nullptr ? nullptr : m_workspace->Chosen()->registration;
    if (chosen != m_fitted) FitTheKeys(KeyFit::WhatFits);
    return m_keys;
}

// From outside; what they change shows as what the operator does.
void WindowLoop::TakeCommands() {
    if (m_options.control == nullptr || !m_options.control->RunCommands(*this)) return;
    (void)Keys();
    m_panelsWanted = framesToSettle;
}

// The operator, and whoever listens for what happens.
void WindowLoop::TellAll(const std::string& news) {
    m_status.Tell(news, Clock::now());
    if (m_options.control != nullptr) m_options.control->TellNews(news);
}

void WindowLoop::OpenByName(const std::string& name) {
    if (!IsLiveName(name)) return Open(name);
    try {
        const LiveSource* const open = m_workspace->Live();
        if (open != nullptr && open->Name().url == ParseLiveName(name).url)
            throw cli::Error(open->Name().shown, {}, "is open already");
        m_opening.Begin(name, m_options.replay);
    } catch (const cli::Error& error) {
        TellAll(error.what());
    }
}

void WindowLoop::OpenLiveThatCame() {
    try {
        if (auto live = m_opening.Take()) OpenInstead({}, std::move(live));
    } catch (const cli::Error& error) {
        TellAll(error.what());
    }
}

//   live  null: the file is opened
void WindowLoop::OpenInstead(const std::filesystem::path& file, std::shared_ptr<LiveSource> live) {
    const bool isFile = live == nullptr;
    if (isFile) m_opening.Stop();
    WorkspaceOptions options = m_options.workspace;
    options.recording = NumberedRecording(options.recording, m_opened + 1);
    options.live = std::move(live);
    try {
        m_workspace = std::make_unique<Workspace>(file, options);
    } catch (const cli::Error& error) {
        return TellAll(error.what());
    }
    ++m_opened;
    m_feed.EndEarly();
    if (isFile) m_recent.Add(file);
    m_zoom.Reset();
    m_spotlight.Forget();
    m_painter.Tail().End();
    if (m_clean) m_clean->ShowAnew();
    if (m_keyFill) m_keyFill->ShowAnew();
    OpenSound();
    StartStreams();
    m_panel = {};
    m_chooser = {};
    m_isDrawing = false;
    m_painter.ShowAnew();
    m_isFirstField = true;
    StartPacing();
    FitTheKeys(KeyFit::WhatFits);
    m_window.SetTitle(m_workspace->File().filename().string() + " - kel");
}

void WindowLoop::OpenSound() {
    m_sound.reset();
    m_liveSound = m_workspace->Live() == nullptr ? nullptr : std::make_unique<LiveSound>();
    if (m_workspace->Video() != nullptr) m_sound = std::make_unique<VideoSound>(m_workspace->Video()->Track());
}

// Live pictures are heard as they come, a film and a replay by their own time. Each replay is another one.
void WindowLoop::FollowWithSound(const SoundMoment& heard) {
    const bool isLive = m_workspace->Live() != nullptr && m_workspace->Video() == nullptr;
    if (m_liveSound) m_liveSound->Follow(m_workspace->Live()->Ring(), !m_isMuted && isLive);
    if (isLive || !heard.track) return m_sound.reset();
    if (!m_sound || m_sound->Track() != heard.track) m_sound = std::make_unique<VideoSound>(heard.track);
    m_sound->SetMuted(m_isMuted);
    m_sound->Follow(heard);
}

WindowSize WindowLoop::Free() const {
    const WindowSize size = m_window.Size();
    if (!m_hasPanel) return size;
    const int panelWidth = IsPanelFolded() ? StripWidth() : PanelWidth();
    return {std::max(size.width - panelWidth, 1), std::max(size.height - StatusHeight(), 1)};
}

bool WindowLoop::IsPanelFolded() const { return m_isFolded.value_or(IsNarrow(m_window.Size().width)); }

void WindowLoop::ShowSessionProgress() {
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

void WindowLoop::PlacePicture() { m_painter.Place(m_zoom.Place(WholePicture(), Free())); }

void WindowLoop::ShowPages() {
    ShowSessionProgress();
    m_chooser.Show(*m_workspace, m_painter.Picture());
    m_opening.Show(WholePicture());
    if (m_hasHelp) ShowHelpPage(m_keys, WholePicture());
    if (const auto chosen = m_openPage.Show(WholePicture())) OpenByName(*chosen);
}

void WindowLoop::MakePanel() {
    const WindowSize size = m_window.Size();
    const auto now = Clock::now();
    PlacePicture();
    m_window.BeginPanel();
    m_spotlight.Show(m_painter.Picture(), m_workspace->TheHost().Window());
    if (m_hasPanel) {
        for (const WorkspaceAction action : m_panel.Show(
                 *m_workspace, m_keys, size,
                 {m_inkPanel, m_chooser.IsOn(), IsPanelFolded(), [this](const FittedKeys::Key& key) { DoKey(key); }}))
            DoAction(action);
        if (auto refusal = m_panel.TakeRefusal()) m_status.Tell(*refusal, now);
        m_status.Show(*m_workspace, {m_pacer, m_pictures, m_pen, StreamFigures()}, size, now);
    }
    for (const std::string& news : m_workspace->TakeNews()) TellAll(news);
    m_status.ShowNews(size, now);
    ShowPages();
    m_window.EndPanel();
    (void)Keys();
    if (!m_window.HasClickWaiting())  // what is clicked with a key held is looked at with it
        for (const SDL_Event& event : std::exchange(m_keysUp, {})) m_window.TakeForPanel(event);
    m_panelTime = now;
    if (m_panelsWanted > 0) --m_panelsWanted;
}

void WindowLoop::ShowPanel() {
    MakePanel();
    SettleClicks();
    m_painter.ShowPanel(m_workspace->TheHost());
}

// What happens to the panel takes a few of its frames to be seen: what is hovered is known in the next one, what a
// button does to the module after the next field. The pointer over the picture is nothing to it.
void WindowLoop::NoteForPanel(const SDL_Event& event) {
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
WindowLoop::Clock::time_point WindowLoop::NextPanel() const {
    constexpr auto figuresTime = std::chrono::milliseconds(500);
    constexpr auto frameTime = std::chrono::milliseconds(18);
    return m_panelTime + (m_panelsWanted > 0 && !m_isDrawing ? Clock::duration(frameTime) : figuresTime);
}

void WindowLoop::PlaySession() {
    constexpr auto sessionShare = std::chrono::milliseconds(30);  // between two looks at the window's events
    TakeCommands();
    m_workspace->PlaySession(sessionShare);
    StartPacing();
    ShowPanel();
    ShowPicture();
}

void WindowLoop::RunDueFields() {
    const int due = m_pacer.Due(Clock::now());
    if (due == 0) return;
    const std::int64_t skipped = m_pacer.GivenUp() - std::exchange(m_givenUp, m_pacer.GivenUp());
    m_workspace->SkipVideo(skipped);
    TakeCommands();
    m_workspace->RunFields(due);
    const SoundMoment heard = m_workspace->Heard();
    FollowWithSound(heard);
    m_feed.Take(*m_workspace, due);
    if (m_options.streams != nullptr) m_options.streams->TakeField(m_workspace->TheHost(), heard, due + skipped);
    if (std::exchange(m_isTailOver, false)) m_painter.Tail().End();
    ShowPicture();
    m_workspace->FollowInk();
    if (m_options.control != nullptr) m_options.control->TellState(*m_workspace);
    // What is made once, with the first field and its picture, makes no later one late.
    if (std::exchange(m_isFirstField, false)) StartPacing();
}

void WindowLoop::RunDueStep() {
    constexpr auto shortestStep = std::chrono::nanoseconds(std::chrono::seconds(1)) / 240;
    const auto now = Clock::now();
    if (now < m_nextStep || !WantsStep()) return;
    m_nextStep = now + shortestStep;
    m_workspace->RunStep();
    ShowPicture();
    m_workspace->FollowInk();
}

void WindowLoop::ShowPicture() {
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

void WindowLoop::ShowClean(const FrameArea& changed) {
    if (m_clean && m_clean->IsClosed()) m_clean.reset();
    if (m_keyFill && m_keyFill->IsClosed()) m_keyFill.reset();
    Host& host = m_workspace->TheHost();
    if (m_clean)
        m_clean->Show(host.Window(), changed,
                      [&](const FrameArea& area, const FrameArea& part) { host.ShowFramePart(area, part); });
    if (m_keyFill) m_keyFill->Show(host, changed);
}

// What is sent live shows whatever file is open.
void WindowLoop::StartStreams() {
    if (m_options.streams == nullptr) return;
    m_options.streams->Start(m_workspace->TheHost().Window(), m_workspace->FieldsPerSecond());
}

std::vector<LiveFigures> WindowLoop::StreamFigures() const {
    return m_options.streams == nullptr ? std::vector<LiveFigures>() : m_options.streams->Figures();
}

void WindowLoop::Run() {
    m_feed.Start(*m_workspace);
    StartStreams();
    ShowPanel();
    StartPacing();
    while (!m_isOver) {
        TakeEvents();
        if (m_workspace->IsPlayingSession()) {
            PlaySession();
            continue;
        }
        RunDueStep();
        RunDueFields();
        OpenLiveThatCame();
        if (Clock::now() >= NextPanel()) ShowPanel();
        const auto next = std::min(m_pacer.Next(), NextPanel());
        m_window.WaitForEvent(WantsStep() ? std::min(next, m_nextStep) : next);
    }
    if (m_workspace->IsPlayingSession()) return;
    do {  // in which takes effect what was done last
        m_workspace->RunFields(1);
        m_feed.Take(*m_workspace, 1);
    } while (m_workspace->HasWaiting());
    m_feed.End(*m_workspace);
}

}  // namespace kel
