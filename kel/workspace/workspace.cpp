#include "kel/workspace/workspace.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cli/error.h"
#include "kel/session/session_inputs.h"
#include "kel/session/session_memory.h"
#include "kel/workspace/panel_model.h"
#include "kel/workspace/video_keys.h"

namespace kel {
namespace {

constexpr std::int64_t mostRecordedFields = 1'000'000;  // what a session takes
constexpr std::int32_t farthestPixel = 100'000;
constexpr auto recordingInterval = std::chrono::milliseconds(400);

bool HasEvents(const Session& session) { return !session.events.empty(); }

}  // namespace

Workspace::Workspace(const std::filesystem::path& file, const WorkspaceOptions& options)
    : m_file(options.live ? std::filesystem::path(options.live->Name().shown) : file),
      m_conversion(options.videoConversion),
      m_live(options.live),
      m_inkLeaves(options.inkLeaves),
      m_saver(options.saves),
      m_slots(options.live ? options.saves / liveSaves : file) {
    m_host = std::make_unique<Host>(WindowSize{16, 16}, options.gl);
    OpenScene(file, options);
    const Session& session = m_scene.session;
    m_host->ResizeWindow({session.window.width, session.window.height});
    SessionPermissions permissions = options.permissions;
    permissions.files.push_back(file);
    permissions.keepsStrokes = true;
    m_player = std::make_unique<Player>(session, *m_host, options.module, std::move(permissions));
    m_player->SetVideoConversion(options.videoConversion);
    m_firstOwnField = HasEvents(session) ? session.fields : 0;
    for (std::size_t i = 0; i < session.containers.size(); ++i) {
        const Player::Container& container = m_player->Containers()[i];
        if (container.module == nullptr) continue;
        std::string name = session.containers[i].name;
        if (name.empty()) name = "container " + std::to_string(i + 1);
        m_plugIns.push_back({i, container.id, std::move(name), &container.module->registration});
    }
    m_momentInk.resize(m_plugIns.size());
    if (!options.recording.empty()) StartRecording(options);
}

void Workspace::OpenScene(const std::filesystem::path& file, const WorkspaceOptions& options) {
    const Registration& module = m_host->LoadModule(options.module).registration;
    if (m_live) {
        m_live->SetConversion(options.videoConversion);
        m_scene = LiveWorkspaceScene(
            {m_live->Name().shown, {m_live->Width(), m_live->Height()}, m_live->FramesPerSecond()}, module);
        return;
    }
    CheckPictureMemory(file, options.permissions);
    m_scene = OpenWorkspaceScene(file, module);
    m_news = LiveNotices(m_scene.session);
}

Workspace::~Workspace() {
    FollowInk();
    if (!m_recording) return;
    m_lastChange = NextField();
    WriteRecording();
}

void Workspace::StartRecording(const WorkspaceOptions& options) {
    std::vector<const Registration*> modules;
    for (const Player::Container& container : m_player->Containers())
        modules.push_back(container.module == nullptr ? nullptr : &container.module->registration);
    m_recording = std::make_unique<Recording>(
        m_scene, modules, options.isModuleGiven ? options.module : std::filesystem::path(), options.permissions);
    m_recording->AddFields(m_firstOwnField);
    for (const Journal& journal : Journals(options.recording)) CheckJournalPlace(journal.file);
    m_recordingFile = std::make_unique<RecordingFile>(options.recording, m_recording->TakeLines());
    for (const Journal& journal : Journals(options.recording)) journal.ink->WriteJournal(journal.file);
}

// Some seconds after something happened, too, for what a module finishes by itself; then nothing is written any more.
void Workspace::WriteRecording() {
    constexpr double secondsToSettle = 2;
    const auto settles = static_cast<std::int64_t>(secondsToSettle * FieldsPerSecond());
    const std::int64_t fields = std::max(m_firstOwnField, NextField());
    const bool goesOn = fields > m_writtenUntil && m_writtenUntil < m_lastChange + settles;
    if (!m_recording->HasLines() && !goesOn) return;
    m_recording->AddFields(fields);
    m_writtenUntil = fields;
    m_recordingFile->Append(m_recording->TakeLines());
}

const Workspace::PlugIn* Workspace::Chosen() const { return m_plugIns.empty() ? nullptr : &m_plugIns[m_chosen]; }

double Workspace::SessionProgress() const {
    return m_firstOwnField == 0 ? 1.0 : static_cast<double>(NextField()) / static_cast<double>(m_firstOwnField);
}

void Workspace::PlaySession(std::chrono::milliseconds atMost) {
    const auto end = std::chrono::steady_clock::now() + atMost;
    while (IsPlayingSession() && std::chrono::steady_clock::now() < end) {
        try {
            (void)m_player->PlayField(Player::Rendering::NotWanted);
        } catch (const cli::Error& error) {
            m_news.emplace_back(error.what());
        }
    }
}

void Workspace::Point(PointerKind kind, std::int32_t x, std::int32_t y, double pressure) {
    if (IsPlayingSession()) return;
    const PointerStep step{kind, std::clamp(x, -farthestPixel, farthestPixel),
                           std::clamp(y, -farthestPixel, farthestPixel),
                           std::isnan(pressure) ? 1 : std::clamp(pressure, 0.0, 1.0)};
    // What is edited takes effect in front of a press in the same field, and what is set behind it.
    const auto comesFirst = [&] { return !m_waiting.back().changes.empty() || m_host->HasQueuedPointer(); };
    const bool waits =
        !m_waiting.empty() && (!m_waiting.front().steps.empty() || (kind == PointerKind::Press && comesFirst()));
    if (waits)
        m_waiting.back().steps.push_back(step);
    else
        m_host->QueuePointer(step.kind, step.x, step.y, step.pressure);
}

void Workspace::Set(std::size_t parameter, const ParameterValue& value) {
    if (IsPlayingSession()) return;
    const Parameter& which = Chosen()->registration->parameters[parameter];
    if (const std::string refusal = which.Refusal(value); !refusal.empty())
        throw cli::Error(which.label + ": " + refusal);
    ParameterValue taken = value;
    if (which.kind == ParameterKind::Image && !std::get<std::string>(value).empty()) {
        const auto path = std::filesystem::absolute(std::get<std::string>(value)).lexically_normal();
        m_host->AddImage(path.string(), picture_io::ReadPicture(path));
        taken = path.string();
    }
    LastActs().changes.push_back({m_chosen, parameter, taken, {}});
}

ParameterValue Workspace::Value(std::size_t parameter) const {
    for (auto acts = m_waiting.rbegin(); acts != m_waiting.rend(); ++acts)
        for (auto change = acts->changes.rbegin(); change != acts->changes.rend(); ++change)
            if (change->plugIn == m_chosen && change->parameter == parameter) return change->value;
    return m_host->GetParameter(Chosen()->id, Chosen()->registration->parameters[parameter].name);
}

bool Workspace::IsShown(std::size_t parameter) const {
    return m_host->IsParameterShown(Chosen()->id, Chosen()->registration->parameters[parameter].name);
}

void Workspace::Push(const std::string& button) {
    if (!IsPlayingSession()) LastActs().changes.push_back({m_chosen, std::nullopt, {}, button});
}

void Workspace::Do(const ModuleKey& key) {
    switch (key.kind) {
        case ModuleKey::Kind::Button:
            return Push(key.button);
        case ModuleKey::Kind::Toggle: {
            const bool isOn = Value(key.settings[0].parameter) == key.settings[1].value;
            return Set(key.settings[0].parameter, key.settings[isOn ? 0 : 1].value);
        }
        case ModuleKey::Kind::Step:
            for (const ModuleKey::Setting& setting : key.settings) {
                if (!IsShown(setting.parameter)) continue;
                const Parameter& parameter = Chosen()->registration->parameters[setting.parameter];
                return Set(setting.parameter, SteppedValue(parameter, Value(setting.parameter), key.by));
            }
            return;
        case ModuleKey::Kind::Set:
            for (const ModuleKey::Setting& setting : key.settings) Set(setting.parameter, setting.value);
    }
}

const Player::Container* Workspace::VideoContainer() const {
    const auto containers = m_player->Containers();
    const auto found =
        std::ranges::find_if(containers, [](const auto& container) { return container.video != nullptr; });
    return found == containers.end() ? nullptr : &*found;
}

const VideoShow* Workspace::Video() const {
    const Player::Container* container = VideoContainer();
    return container == nullptr ? nullptr : container->video.get();
}

std::filesystem::path Workspace::VideoFile() const {
    const auto index = static_cast<std::size_t>(VideoContainer() - m_player->Containers().data());
    return m_scene.session.Resolve(m_scene.session.containers[index].video);
}

std::int64_t Workspace::VideoFrame() const { return Video()->Clock().FrameAt(NextField()); }

void Workspace::ChangeVideo(const VideoChange& change) {
    const Player::Container* container = VideoContainer();
    if (container == nullptr || IsPlayingSession()) return;
    const auto index = static_cast<std::size_t>(container - m_player->Containers().data());
    m_player->ChangeVideo(index, change);
    if (m_recording && !m_live) m_recording->AddVideo(NextField(), index, change);  // a replay is seen once
}

void Workspace::DoVideo(WorkspaceAction action) {
    const bool wasReplay = Video() != nullptr;
    if (m_live) DoReplay(action);
    if (!wasReplay && action == WorkspaceAction::Pause) return;  // it stands already
    if (const VideoShow* video = Video())
        if (const auto change = ChangeFor(action, {video->Clock(), video->FramesPerSecond(), NextField()}))
            ChangeVideo(*change);
}

void Workspace::SkipVideo(std::int64_t fields) {
    if (Video() == nullptr || fields <= 0) return;
    const VideoClock& clock = Video()->Clock();
    if (clock.IsRunning(NextField())) ChangeVideo({clock.FrameAt(NextField() + fields), std::nullopt, std::nullopt});
}

void Workspace::Deliver(const PendingChange& change) {
    const PlugIn& plugIn = m_plugIns[change.plugIn];
    if (change.parameter)
        m_host->SetParameter(plugIn.id, plugIn.registration->parameters[*change.parameter].name, change.value);
    else
        m_player->PushButton(plugIn.container, change.button);
}

// What happened in that field, which has just been played. True: something did. A pointer that moves without having
// been pressed is nothing, unless the picture shows it.
bool Workspace::Record(std::int64_t field, const std::vector<PendingChange>& changes, bool isOtherPicture) {
    const auto& step = m_host->DeliveredPointer();
    const bool counts = step && (step->kind != PointerKind::Move || m_isPressed || isOtherPicture);
    if (counts) m_recording->AddPointer(field, *step);
    for (const PendingChange& change : changes) {
        const PlugIn& plugIn = m_plugIns[change.plugIn];
        if (change.parameter)
            m_recording->AddSetting(field, plugIn.container, plugIn.registration->parameters[*change.parameter],
                                    change.value);
        else
            m_recording->AddButton(field, plugIn.container, change.button);
    }
    return counts || !changes.empty();
}

Workspace::WaitingActs& Workspace::LastActs() {
    if (m_waiting.empty() || !m_waiting.back().steps.empty()) m_waiting.emplace_back();
    return m_waiting.back();
}

// A field delivers edits, then one press or release, then what is set.
Workspace::WaitingActs Workspace::TakeDueActs() {
    if (m_waiting.empty()) return {};
    const std::size_t mostButtons = m_waiting.front().edits.empty() ? 1 : 0;
    if (m_host->QueuedButtons() > mostButtons) return {};
    WaitingActs due = std::move(m_waiting.front());
    m_waiting.pop_front();
    return due;
}

void Workspace::PlayField(int fieldsDue) {
    const std::int64_t field = NextField();
    const WaitingActs acts = TakeDueActs();
    FollowMoment();
    DeliverEdits(acts.edits);
    for (const PendingChange& change : acts.changes) Deliver(change);
    const std::uint64_t pictureBefore = m_host->PictureNumber();
    const bool isOtherLive = fieldsDue == 1 && ShowLive();
    try {
        (void)m_player->PlayField(fieldsDue == 1 ? Player::Rendering::Wanted : Player::Rendering::NotWanted, fieldsDue);
    } catch (const cli::Error& error) {
        m_news.emplace_back(error.what());
    }
    NotePressed();
    if (m_recording) {
        const bool isOtherPicture = m_host->PictureNumber() != pictureBefore && !isOtherLive;
        const bool plays = Video() != nullptr && Video()->Clock().IsRunning(field);
        if (Record(field, acts.changes, isOtherPicture) || (isOtherPicture && !plays)) m_lastChange = NextField();
    }
    // A field delivers its press before what is set in it.
    for (const PointerStep& step : acts.steps) m_host->QueuePointer(step.kind, step.x, step.y, step.pressure);
}

void Workspace::NotePressed() {
    const auto& step = m_host->DeliveredPointer();
    if (step && step->kind != PointerKind::Move) m_isPressed = step->kind == PointerKind::Press;
}

bool Workspace::CanStep() const {
    if (IsPlayingSession() || NextField() >= mostRecordedFields) return false;
    const auto next = m_host->NextPointer();
    return next == PointerKind::Press || (next == PointerKind::Move && m_isPressed);
}

void Workspace::RunStep() {
    m_host->SetDrawing(true);
    m_host->RunStep();
    NotePressed();
    if (!m_recording) return;
    m_recording->AddStep(NextField(), *m_host->DeliveredPointer());
    m_lastChange = NextField();
}

void Workspace::RunFields(int fields) {
    for (int due = fields; due > 0; --due) {
        if (m_recording && NextField() == mostRecordedFields) {
            WriteRecording();
            m_recordingFile.reset();
            m_recording.reset();
            m_news.emplace_back("The recording is full and ends here.");
        }
        PlayField(due);
    }
    const auto now = std::chrono::steady_clock::now();
    if (!m_recording || now < m_nextWrite) return;
    m_nextWrite = now + recordingInterval;
    WriteRecording();
}

std::string Workspace::SaveName(const char* ending) const {
    return (m_live ? std::string(liveSaves) : m_file.stem().string()) + ending;
}

void Workspace::SavePicture() {
    try {
        ShowExactly();
    } catch (const cli::Error& error) {
        m_news.emplace_back(error.what());
    }
    m_saver.Save(m_host->ReadFrame(), SaveName("-picture"));
}

void Workspace::SaveOverlay() {
    try {
        if (const PlugIn* plugIn = Chosen()) m_saver.Save(m_host->ReadCanvas(plugIn->id), SaveName("-overlay"));
    } catch (const cli::Error& error) {
        m_news.emplace_back(error.what());
    }
}

std::vector<std::string> Workspace::TakeNews() {
    for (std::string& line : m_saver.TakeNews()) m_news.push_back(std::move(line));
    if (m_live)
        for (std::string& line : m_live->TakeNews()) m_news.push_back(std::move(line));
    if (m_recordingFile)
        if (std::string trouble = m_recordingFile->Trouble(); trouble != m_toldTrouble) {
            if (!trouble.empty()) m_news.push_back(trouble);
            m_toldTrouble = std::move(trouble);
        }
    return std::exchange(m_news, {});
}

}  // namespace kel
