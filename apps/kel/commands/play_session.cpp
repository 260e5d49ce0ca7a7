#include "apps/kel/commands/play_session.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "apps/kel/commands/claimed_files.h"
#include "apps/kel/commands/live_lines.h"
#include "apps/kel/commands/play_journal.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/progress_line.h"
#include "kel/session/player.h"
#include "kel/session/session_inputs.h"
#include "kel/session/session_saves.h"
#include "kel/session/video_timeline.h"

namespace kel {
namespace {

// Null where nothing that the session saves is wanted.
std::unique_ptr<SessionSaves> SavesOf(const PlayOptions& options, const Session& session) {
    if (!options.areSavesWritten) return nullptr;
    const auto existing = options.overwrite ? SessionSaves::Existing::Replaced : SessionSaves::Existing::Kept;
    return std::make_unique<SessionSaves>(session, options.savesFolder, existing);
}

void Announce(const SessionSaves& saves, const Session& session, Outputs& outputs) {
    for (const SessionEvent& event : session.events)
        if (const auto* save = std::get_if<SaveEvent>(&event.what)) outputs.Announce(saves.FileOf(save->name));
}

bool HasSaves(const PlayOptions& options, const Session& session) {
    return options.areSavesWritten && std::ranges::any_of(session.events, [](const SessionEvent& event) {
               return std::holds_alternative<SaveEvent>(event.what);
           });
}

// Says how far the play has come, and ends it when it is interrupted.
class PlayProgress {
public:
    PlayProgress(const PlayOptions& options, const char* noun, std::int64_t all)
        : m_told(options.progress), m_all(all), m_line(noun, all) {}
    void Show(std::int64_t done) {
        m_line.Show(done);
        if (m_told && !m_told(done, m_all)) throw PlayStopped();
        cli::InterruptGuard::ThrowIfInterrupted();
    }

private:
    const std::function<bool(std::int64_t, std::int64_t)>& m_told;
    std::int64_t m_all;
    cli::ProgressLine m_line;
};

WindowSize WindowOf(const Session& session) { return {session.window.width, session.window.height}; }

// What of a play is sent live, and the pace at which it is looked at; without anything to send there is none.
class PlayBroadcast {
public:
    explicit PlayBroadcast(const PlayOptions& options) : m_streams(options.live, options.outputs.isStraight) {}
    ~PlayBroadcast() { Close(); }  // tells how it did, also when the play is interrupted
    PlayBroadcast(const PlayBroadcast&) = delete;
    PlayBroadcast& operator=(const PlayBroadcast&) = delete;
    PlayBroadcast(PlayBroadcast&&) = delete;
    PlayBroadcast& operator=(PlayBroadcast&&) = delete;

    [[nodiscard]] bool IsThere() const { return m_streams.AreThere(); }
    void Start(WindowSize window, double fieldsPerSecond) {
        if (!IsThere()) return;
        TellStreams(m_streams);
        m_streams.Start(window, fieldsPerSecond);
        m_isOn = true;
        m_period = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / fieldsPerSecond));
        m_next = Clock::now();
    }
    // The host has just drawn the next field; returns when it is the time of that.
    void Show(Host& host, const SoundMoment& sound) {
        if (!IsThere()) return;
        std::this_thread::sleep_until(m_next);
        // What was late is not hurried after: a burst of pictures is of no use to a reader.
        m_next = std::max(m_next, Clock::now() - m_period) + m_period;
        m_streams.TakeField(host, sound);
    }
    void ChangeHost() { m_streams.ChangeHost(); }
    void Close() {
        if (std::exchange(m_isOn, false)) CloseStreams(m_streams);
    }

private:
    using Clock = std::chrono::steady_clock;

    LiveStreams m_streams;
    bool m_isOn = false;
    Clock::duration m_period{};
    Clock::time_point m_next;  // when the next field is looked at
};

TimelinePlay::Stage MakeStage(const Session& session, const PlayOptions& options) {
    TimelinePlay::Stage stage;
    stage.host = std::make_unique<Host>(WindowOf(session));
    SessionPermissions permissions = options.access.Permissions();
    permissions.keepsStrokes = !options.journal.empty();
    stage.player =
        std::make_unique<Player>(session, *stage.host, options.access.DefaultModule(), std::move(permissions));
    return stage;
}

struct Wanted {
    Outputs& outputs;
    const SessionSaves* saves;  // null: none of the session's own
    PlayBroadcast* broadcast;   // null: none of these fields
};

void PlayFields(TimelinePlay::Stage& stage, const PlayOptions& options, const Session& session, const Wanted& wanted,
                Player::Rendering rendering) {
    PlayProgress progress(options, "field", session.fields);
    PlayJournal journal(options.journal, *stage.player);
    while (!stage.player->IsOver()) {
        const auto names = stage.player->PlayField(rendering);
        journal.Follow();
        if (wanted.saves != nullptr)
            for (const std::string& name : names)
                wanted.outputs.Stage(stage.host->ReadFrame(), wanted.saves->FileOf(name));
        if (rendering == Player::Rendering::Wanted) wanted.outputs.TakeField(*stage.host);
        if (wanted.broadcast != nullptr) wanted.broadcast->Show(*stage.host, stage.player->Heard());
        progress.Show(stage.player->NextField());
    }
    journal.Finish();
}

// Of the video itself, which is shown from its first step to its last.
SoundMoment HeardWith(TimelinePlay& play, std::int64_t step) {
    const VideoTimeline& timeline = play.Timeline();
    const VideoShow& video = *play.ThePlayer().Containers()[timeline.container].video;
    return {video.Track(), static_cast<double>(step) / timeline.framesPerSecond, true};
}

void PlayAlongVideo(TimelinePlay& play, const PlayOptions& options, Outputs& outputs, PlayBroadcast& broadcast) {
    const auto& steps = play.Timeline().steps;
    PlayProgress progress(options, "frame", static_cast<std::int64_t>(steps.size()));
    std::int64_t done = 0;
    for (const VideoTimeline::Step& step : steps) {
        if (play.Show(step)) {
            outputs.ChangeHost();
            broadcast.ChangeHost();
        }
        outputs.TakeField(play.TheHost());
        broadcast.Show(play.TheHost(), HeardWith(play, done));
        progress.Show(++done);
    }
}

// The outputs of a session, from its first field to the names of their files.
class SessionOutputs {
public:
    SessionOutputs(const PlayOptions& options, const Session& session, const OutputOptions& wanted);
    void Play();

private:
    [[nodiscard]] TimelinePlay::Stage MakeStage() const { return kel::MakeStage(m_session, m_options); }
    void CheckStage() const;
    // False: all is finished by it.
    bool PlayVideo();

    const PlayOptions& m_options;
    const Session& m_session;
    std::unique_ptr<SessionSaves> m_saves;
    TimelinePlay::Stage m_stage;
    std::optional<VideoTimeline> m_timeline;
    std::optional<Outputs> m_outputs;
    PlayBroadcast m_broadcast;
};

// Every file that the play will write is checked before the first field. What fails leaves the folder of the saves
// last, when nothing is in it any more.
SessionOutputs::SessionOutputs(const PlayOptions& options, const Session& session, const OutputOptions& wanted)
    : m_options(options), m_session(session), m_saves(SavesOf(options, session)), m_broadcast(options) {
    const WindowSize window = WindowOf(session);
    if (FollowsVideo(options.timeline, session)) {
        m_stage = MakeStage();
        m_timeline = TimelineOf(session, *m_stage.player);
    }
    if (m_timeline) {
        OutputOptions carried = wanted;
        carried.video = session.Resolve(session.containers[m_timeline->container].video);
        m_outputs.emplace(carried, window, m_timeline->framesPerSecond,
                          static_cast<std::int64_t>(m_timeline->steps.size()));
    } else
        m_outputs.emplace(wanted, window, session.fieldsPerSecond, session.fields);
    if (m_saves) Announce(*m_saves, session, *m_outputs);
    if (!m_stage.player) m_stage = MakeStage();
    CheckStage();
}

void SessionOutputs::CheckStage() const {
    const bool areSent =
        std::ranges::any_of(m_options.live, [](const auto& live) { return live.view != View::Rendered; });
    if ((m_options.outputs.WantDrawings() || areSent) && m_stage.player->OverlayContainer() == noObject)
        throw cli::Error(m_options.session, "/containers", "no container has a plug-in, so there is no overlay");
    PlayJournal::Check(m_options.journal, m_options.session, *m_stage.player);
    if (!m_options.outputs.WantAnything() && m_options.live.empty() && !HasSaves(m_options, m_session) &&
        m_options.journal.empty())
        std::fprintf(stderr, "kel: nothing is written: %s\n",
                     "the session saves no picture, and none of --out, --overlay, --canvas, --fill is given");
}

bool SessionOutputs::PlayVideo() {
    TimelinePlay play(*m_timeline, std::move(m_stage), [this] { return MakeStage(); });
    m_broadcast.Start(WindowOf(m_session), m_timeline->framesPerSecond);
    PlayAlongVideo(play, m_options, *m_outputs, m_broadcast);
    m_broadcast.Close();
    if (!m_outputs->WantLastField() && !HasSaves(m_options, m_session) && m_options.journal.empty()) return false;
    m_outputs->ChangeHost();
    return true;
}

void SessionOutputs::Play() {
    const bool isEveryFieldWanted = m_outputs->WantEveryField() || m_broadcast.IsThere();
    if (m_timeline && isEveryFieldWanted) {
        if (!PlayVideo()) return m_outputs->Finish();
        m_stage = MakeStage();  // for the pictures of the end and those that the session saves
    }
    const bool areFieldsTaken = isEveryFieldWanted && !m_timeline;
    if (areFieldsTaken) m_broadcast.Start(WindowOf(m_session), m_session.fieldsPerSecond);
    PlayFields(m_stage, m_options, m_session, {*m_outputs, m_saves.get(), areFieldsTaken ? &m_broadcast : nullptr},
               areFieldsTaken ? Player::Rendering::Wanted : Player::Rendering::NotWanted);
    if (areFieldsTaken) m_broadcast.Close();
    m_outputs->Finish(*m_stage.host, m_stage.player->OverlayContainer());
}

}  // namespace

void PlaySession(const PlayOptions& options) {
    const Session session = ReadSession(options.session);
    OutputOptions wanted = options.outputs;
    wanted.inputs = InputFilesOf(session);
    ClaimFiles(wanted, options.journal);
    for (const std::string& notice : LiveNotices(session)) std::fprintf(stderr, "kel: %s\n", notice.c_str());
    SessionOutputs outputs(options, session, wanted);
    const cli::InterruptGuard guard;
    outputs.Play();
}

}  // namespace kel
