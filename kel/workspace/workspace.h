#pragma once

#include <chrono>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kel/live/clip_file.h"
#include "kel/live/live_source.h"
#include "kel/scene/host.h"
#include "kel/session/player.h"
#include "kel/workspace/ink_slots.h"
#include "kel/workspace/keys_table.h"
#include "kel/workspace/moment_ink.h"
#include "kel/workspace/picture_saver.h"
#include "kel/workspace/recording.h"
#include "kel/workspace/recording_file.h"
#include "kel/workspace/workspace_scene.h"

namespace kel {

struct WorkspaceOptions {
    GlSource gl = GlSource::Own;
    std::filesystem::path module;     // for plug-ins that name none
    bool isModuleGiven = false;       // by the operator: a recording names it
    SessionPermissions permissions;   // of the sessions opened; the file that is opened may be read wherever it is
    std::filesystem::path recording;  // empty: none
    std::filesystem::path saves = ".";
    // What is opened instead of a file, with its first picture there (LiveSource::WaitForPicture); null: a file is.
    std::shared_ptr<LiveSource> live;
    bool inkLeaves = false;  // Workspace::DoesInkLeave, at first
    // Of what is shown; what is saved is exact in any case.
    VideoConversion videoConversion = VideoConversion::Exact;
};

// The operator's workspace without its display: a picture, a video, live pictures or a session with its plug-ins, what
// the hand and the panel do to them, field by field, and the recording of it. The window draws it and brings it the
// events.
//
// A session's own events are played first, as fast as they go; the operator's count from then on. Errors are thrown as
// Error where said; what goes wrong while fields run becomes news.
class Workspace {
public:
    // file: not looked at when the options have live pictures. Throws Error.
    Workspace(const std::filesystem::path& file, const WorkspaceOptions& options);
    ~Workspace();  // writes the recording to its end
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    Workspace(Workspace&&) = delete;
    Workspace& operator=(Workspace&&) = delete;

    // A plug-in of the scene.
    struct PlugIn {
        std::size_t container = 0;  // index in the scene
        ObjectId id = noObject;
        std::string name;                            // of its container
        const Registration* registration = nullptr;  // borrowed from the host
    };
    [[nodiscard]] std::span<const PlugIn> PlugIns() const { return m_plugIns; }
    // The one that the panel and the keys are for; null when the scene has none.
    [[nodiscard]] const PlugIn* Chosen() const;
    [[nodiscard]] std::size_t ChosenIndex() const { return m_chosen; }
    void Choose(std::size_t plugIn) { m_chosen = plugIn; }

    [[nodiscard]] Host& TheHost() { return *m_host; }
    [[nodiscard]] WindowSize SceneSize() const { return m_host->Window(); }
    [[nodiscard]] const std::filesystem::path& File() const { return m_file; }
    [[nodiscard]] double FieldsPerSecond() const { return m_scene.session.fieldsPerSecond; }
    [[nodiscard]] const Session& Scene() const { return m_scene.session; }
    [[nodiscard]] std::int64_t NextField() const { return m_player->NextField(); }

    // True while the session's own events are played; nothing of the operator counts. Progress runs from 0 to 1.
    [[nodiscard]] bool IsPlayingSession() const { return NextField() < m_firstOwnField; }
    [[nodiscard]] double SessionProgress() const;
    void PlaySession(std::chrono::milliseconds atMost);

    // The operator. All of it takes effect in the next field, in the order in which it was done: a press, and what the
    // pointer does after it, comes in the field after what was set and pushed before it, and that when the presses and
    // releases before have had theirs.
    //   x, y      pixels of the scene's window
    //   pressure  of a pen, 0.0 .. 1.0, for recording and journal; kept within that, NaN is full
    void Point(PointerKind kind, std::int32_t x, std::int32_t y, double pressure = 1);
    // Of the chosen plug-in, which is there; `parameter` is the index in the order of registration. Throws Error when
    // the value is not taken, or is the path of an image that cannot be read.
    void Set(std::size_t parameter, const ParameterValue& value);
    [[nodiscard]] ParameterValue Value(std::size_t parameter) const;  // with what waits for the next field
    [[nodiscard]] bool IsShown(std::size_t parameter) const;
    void Push(const std::string& button);
    void Do(const ModuleKey& key);
    // Takes back the last stroke, button or edit on the chosen plug-in's canvas, or does the one taken back last again;
    // to any depth, whatever the module's own undo can do.
    void Undo() { Edit(InkEditKind::Undo); }
    void Redo() { Edit(InkEditKind::Redo); }
    // Any other edit of what was drawn on the chosen plug-in's container; so does whoever edits it for the operator.
    void Edit(const InkEdit& edit);
    // What was drawn there; null when the scene has no plug-in.
    [[nodiscard]] ContainerInk* Ink() const;
    // Keeps strokes as data from now on, so that edits need not look for them, and follows what was drawn by now: to be
    // called when a picture has been shown.
    void FollowInk();

    // Keeps the drawing on the chosen plug-in's canvas in a slot, or brings one back; what cannot be is news.
    void Keep(int slot);
    void Recall(int slot, chalkpane::InkDrawing::Recall recall);
    [[nodiscard]] InkSlots& Slots() { return m_slots; }
    // All ink fades so many seconds after drawing has stopped, over so many, on every telestrator's canvas.
    struct Fading {
        bool isOn = false;
        double after = 3;
        double over = 1;
    };
    [[nodiscard]] const Fading& InkFading() const { return m_fading; }
    void SetFading(const Fading& fading);

    // The scene's first video; null: there is none.
    [[nodiscard]] const VideoShow* Video() const;
    [[nodiscard]] std::filesystem::path VideoFile() const;  // Video
    [[nodiscard]] std::int64_t VideoFrame() const;          // that the next field shows
    void ChangeVideo(const VideoChange& change);
    // Those that change the video; without one nothing happens. Over live pictures the first of them begins a replay of
    // what is kept, standing at its last frame, which is the video then.
    void DoVideo(WorkspaceAction action);
    // So many fields were given up since the last one that was run: the video goes on where it would be by now.
    void SkipVideo(std::int64_t fields);

    // What is heard with the field that was run last: that of the video, a replay, or the live pictures.
    [[nodiscard]] SoundMoment Heard() const;

    // The live pictures that are open; null: a file is.
    [[nodiscard]] const LiveSource* Live() const { return m_live.get(); }

    // What is drawn on a replay leaves with the moment that it was drawn at, and is there again when that is shown;
    // otherwise it stays. When it no longer leaves, all of it is there.
    [[nodiscard]] bool DoesInkLeave() const { return m_inkLeaves; }
    void SetInkLeaves(bool leaves) { m_inkLeaves = leaves; }

    // True: something of the operator has not had its field.
    [[nodiscard]] bool HasWaiting() const { return !m_waiting.empty() || m_host->HasQueuedPointer(); }

    // Runs as many fields at once, at least 1; the host's picture is of the last one.
    void RunFields(int fields);

    // Between fields, while the pointer is pressed or just so: what waits of it takes effect at once. It counts as no
    // field, so that delays keep their length, and a release waits for its field.
    [[nodiscard]] bool CanStep() const;
    void RunStep();  // CanStep

    void SavePicture();
    void SaveOverlay();

    // Lines for the operator since the last call: what was saved, what went wrong.
    [[nodiscard]] std::vector<std::string> TakeNews();
    [[nodiscard]] bool IsRecording() const { return m_recording != nullptr; }

private:
    struct PendingChange {
        std::size_t plugIn = 0;
        std::optional<std::size_t> parameter;
        ParameterValue value;
        std::string button;
    };
    struct PendingEdit {
        std::size_t plugIn = 0;
        InkEdit edit;
    };

    // What was done between two things that the pointer did: it takes effect when what the pointer did before has been
    // delivered, and then come the steps behind it.
    struct WaitingActs {
        std::vector<PendingEdit> edits;
        std::vector<PendingChange> changes;
        std::vector<PointerStep> steps;
    };

    void OpenScene(const std::filesystem::path& file, const WorkspaceOptions& options);
    void Edit(InkEditKind kind);
    [[nodiscard]] WaitingActs& LastActs();
    [[nodiscard]] WaitingActs TakeDueActs();
    void DeliverEdits(const std::vector<PendingEdit>& edits);
    [[nodiscard]] MomentInk::Moment NextMoment() const;
    void FollowMoment();
    void ShowMoment(std::size_t plugIn);
    bool ShowLive();
    bool ShowLastLive();
    void DoReplay(WorkspaceAction action);
    void BeginReplay();
    void EndReplay();
    void SaveClip();
    [[nodiscard]] std::string ClipSession(const std::string& clip, const ClipPart& part) const;
    void ShowExactly();
    void StartRecording(const WorkspaceOptions& options);
    struct Journal {
        ContainerInk* ink = nullptr;
        std::filesystem::path file;
    };
    [[nodiscard]] std::vector<Journal> Journals(const std::filesystem::path& recording) const;
    void WriteRecording();
    void PlayField(int fieldsDue);
    void Deliver(const PendingChange& change);
    bool Record(std::int64_t field, const std::vector<PendingChange>& changes, bool isOtherPicture);
    void NotePressed();
    [[nodiscard]] const Player::Container* VideoContainer() const;
    [[nodiscard]] std::string SaveName(const char* ending) const;

    static constexpr const char* liveSaves = "live";  // how what is saved of live pictures is called

    std::filesystem::path m_file;
    VideoConversion m_conversion;
    std::shared_ptr<LiveSource> m_live;         // null: a file is open
    picture_io::Picture m_livePicture;          // memory for the next one
    PacketRing::Held m_replayed;                // what the replay shows; none: there is none
    std::vector<std::int64_t> m_replayedTimes;  // of its frames, as the ring has them
    std::vector<MomentInk> m_momentInk;         // of each plug-in
    bool m_inkLeaves = false;
    WindowSize m_replayedSize;  // of its first frame, as it came
    std::unique_ptr<Host> m_host;
    WorkspaceScene m_scene;
    std::unique_ptr<Player> m_player;
    std::vector<PlugIn> m_plugIns;
    std::size_t m_chosen = 0;
    std::int64_t m_firstOwnField = 0;
    std::deque<WaitingActs> m_waiting;  // all but the last have steps
    std::unique_ptr<Recording> m_recording;
    std::unique_ptr<RecordingFile> m_recordingFile;
    std::chrono::steady_clock::time_point m_nextWrite;
    std::int64_t m_lastChange = 0;    // the field after it, by which something had happened last
    std::int64_t m_writtenUntil = 0;  // fields that the recording says
    bool m_isPressed = false;
    std::string m_toldTrouble;
    std::string m_toldJournalTrouble;
    PictureSaver m_saver;
    InkSlots m_slots;
    Fading m_fading;
    std::vector<std::string> m_news;
};

}  // namespace kel
