#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "kel/live/clip_file.h"
#include "kel/session/session_lines.h"
#include "kel/workspace/workspace.h"

// Live pictures, and the replay of the last of them.

namespace kel {

// The newest of the live pictures, on the first container, which is theirs. True: it is another one.
bool Workspace::ShowLive() {
    if (!m_live || Video() != nullptr || !m_live->Take(m_livePicture)) return false;
    m_host->ExchangePicture(m_player->Containers().front().id, m_livePicture, true);
    return true;
}

// The one shown last, made exactly; false: none was.
bool Workspace::ShowLastLive() {
    if (!m_live->TakeExactly(m_livePicture)) return false;
    m_host->ExchangePicture(m_player->Containers().front().id, m_livePicture, true);
    return true;
}

SoundMoment Workspace::Heard() const { return m_live && Video() == nullptr ? m_live->Heard() : m_player->Heard(); }

void Workspace::ShowExactly() {
    m_player->ShowVideosExactly();
    if (m_live && Video() == nullptr && ShowLastLive()) m_host->DrawAgain();
}

void Workspace::DoReplay(WorkspaceAction action) {
    if (action == WorkspaceAction::Live) return EndReplay();
    if (action == WorkspaceAction::SaveClip) return SaveClip();
    if (Video() == nullptr) BeginReplay();
}

void Workspace::BeginReplay() {
    try {
        LiveSource::Replay replay = m_live->HoldReplay();
        auto video = std::make_unique<VideoShow>(std::move(replay.video), m_player->Containers().front().id,
                                                 FieldsPerSecond(), std::move(replay.sound));
        video->SetConversion(m_conversion);
        VideoChange stand;
        stand.frame = video->Clock().Frames() - 1;
        stand.play = false;
        video->Change(stand, NextField());
        m_player->SetVideo(0, std::move(video));
        m_replayed = std::move(replay.held);
        m_replayedSize = {replay.width, replay.height};
        m_replayedTimes = FrameTimes(m_replayed);
        for (MomentInk& ink : m_momentInk) ink.ForgetBefore(m_replayedTimes.front());
    } catch (const cli::Error& error) {
        m_news.emplace_back(error.what());
    }
}

void Workspace::EndReplay() {
    if (Video() == nullptr) return;
    m_player->SetVideo(0, nullptr);
    m_replayed = {};
    (void)ShowLastLive();
}

MomentInk::Moment Workspace::NextMoment() const {
    if (Video() == nullptr || m_replayedTimes.empty()) return std::nullopt;
    const std::int64_t last = std::ssize(m_replayedTimes) - 1;
    return m_replayedTimes[static_cast<std::size_t>(std::clamp<std::int64_t>(VideoFrame(), 0, last))];
}

// Before anything else of the field, as a session that has it first plays it.
void Workspace::FollowMoment() {
    if (!m_live) return;
    for (std::size_t i = 0; i < m_plugIns.size(); ++i) {
        const bool isOther = m_inkLeaves ? m_momentInk[i].Shown() != NextMoment() : !m_momentInk[i].IsEmpty();
        if (isOther && !m_isPressed) ShowMoment(i);
    }
}

// A stroke that is being drawn, or waits for what it becomes, is waited for; the ink stays so long.
void Workspace::ShowMoment(std::size_t plugIn) {
    const PlugIn& which = m_plugIns[plugIn];
    const auto onCanvas = m_player->Containers()[which.container].ink->SettledStrokes();
    if (!onCanvas) return;
    MomentInk& ink = m_momentInk[plugIn];
    ink.Note(*onCanvas);
    InkEdit edit;
    edit.kind = InkEditKind::Recall;
    edit.number = 0;
    edit.recall = chalkpane::InkDrawing::Recall::InPlace;
    edit.strokes = m_inkLeaves ? ink.Show(NextMoment()) : ink.ShowAll();
    if (edit.strokes != *onCanvas) DeliverEdits({{plugIn, edit}});
}

// The clip beside its session, under the next number that is free for both. Writing it is copying some megabytes, which
// another thread does.
void Workspace::SaveClip() {
    if (Video() == nullptr) {
        m_news.emplace_back("A clip is saved of a replay: pause the live pictures, and mark its beginning and end.");
        return;
    }
    const VideoClock& clock = Video()->Clock();
    const ClipPart part{clock.In(), clock.Out(), m_replayedSize.width, m_replayedSize.height};
    const std::filesystem::path clip = m_saver.FreeName(std::string(liveSaves) + "-clip", ".mkv");
    std::filesystem::path session = clip;
    session.replace_extension(".json");
    const std::string text = ClipSession(clip.filename().string(), part);
    m_saver.Run([held = m_replayed, part, clip, session, text] {
        std::filesystem::create_directories(cli::FolderOf(clip));
        const std::int64_t lead = WriteClip(held, part, clip);
        nlohmann::ordered_json json = nlohmann::ordered_json::parse(text);
        for (nlohmann::ordered_json& event : json["events"])
            if (event.contains("film")) event["film"] = {{"frame", lead}, {"in", lead}};
        cli::WriteFileWhole(session, json.dump(1) + "\n");
        return "Saved " + clip.string() + " and " + session.filename().string();
    });
}

namespace {

// As large as it fits with its own proportions, in the scene's units.
nlohmann::ordered_json FittedSize(WindowSize own, WindowSize room) {
    if (own.width == room.width && own.height == room.height) return {room.width, room.height};
    const double scale =
        std::min(static_cast<double>(room.width) / own.width, static_cast<double>(room.height) / own.height);
    return {own.width * scale, own.height * scale};
}

}  // namespace

// What is drawn now, over all of the clip.
std::string Workspace::ClipSession(const std::string& clip, const ClipPart& part) const {
    const double framesPerSecond = Video()->FramesPerSecond();
    const Registration& module = *Chosen()->registration;
    const WorkspaceScene scene = VideoWorkspaceScene({clip, SceneSize(), framesPerSecond}, module);
    Recording recording(scene, {nullptr, &module}, {}, {});
    VideoChange begin;
    begin.frame = 0;  // known when it is written
    recording.AddVideo(0, 0, begin);
    constexpr std::int64_t inkField = 1;  // a module has nothing to draw on before its first
    InkEdit ink;
    ink.kind = InkEditKind::Recall;
    ink.recall = chalkpane::InkDrawing::Recall::InPlace;
    if (Ink() != nullptr && Ink()->CanKeep()) ink.strokes = Ink()->Strokes();
    if (!ink.strokes.empty()) recording.AddInk(inkField, 1, ink, module, scene.session.fieldsPerSecond);
    const auto frames = static_cast<double>(part.last - part.first + 1);
    recording.AddFields(static_cast<std::int64_t>(frames / framesPerSecond * scene.session.fieldsPerSecond + 0.5));
    nlohmann::ordered_json json = nlohmann::ordered_json::parse(WholeSessionText(recording.TakeLines()));
    json.erase("recording");
    json["containers"][0]["film"] = clip;  // both may be taken elsewhere together
    json["containers"][0]["size"] = FittedSize(m_replayedSize, SceneSize());
    return json.dump();
}

}  // namespace kel
