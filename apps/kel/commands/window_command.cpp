#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "apps/kel/commands/claimed_files.h"
#include "apps/kel/commands/commands.h"
#include "apps/kel/commands/live_lines.h"
#include "apps/kel/commands/module_path.h"
#include "apps/kel/commands/output_options.h"
#include "apps/kel/commands/play_session.h"
#include "cli/error.h"
#include "cli/word_list.h"
#include "kel/live/live_name.h"
#include "kel/session/session_inputs.h"
#include "kel/window/live_wait.h"
#include "kel/window/progress_window.h"
#include "kel/window/workspace_window.h"
#include "kel/workspace/embedded_text.h"
#include "kel/workspace/workspace_scene.h"
#include "picture_io/picture_size.h"

namespace kel {
namespace {

struct WindowLine {
    std::string file;
    std::string keys;
    SessionOptions access;
    std::string recording;
    bool overwrites = false;
    std::string saves = ".";
    std::string steps = "motion";
    std::string tail = "on";
    std::string pen = "on";
    bool hasCleanOutput = false;
    std::string cleanDisplay;
    bool hasKeyFill = false;
    std::string keyFillDisplay;
    TimelineChoice timeline = TimelineChoice::Usual;
    OutputOptions outputs;
    std::vector<LiveRequest> live;
    std::string door;
    std::string osc;
    std::string oscFeedback;
    std::optional<double> replaySeconds;
    std::string replayInk = "stay";
};

// For a recording that nobody asked to keep.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kel-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw cli::Error(name + ": cannot be made");
        m_path = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ScratchFolder(ScratchFolder&&) = delete;
    ScratchFolder& operator=(ScratchFolder&&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

// Names and endings are refused before a window opens, not when the drawing is over.
void CheckOutputs(const OutputOptions& outputs) {
    constexpr WindowSize anySize{64, 64};
    constexpr double anyRate = 25.0;
    const Outputs tried(outputs, anySize, anyRate, 0);
}

// A session's own, or the picture or video that is opened.
std::vector<std::filesystem::path> FilesReadFor(const std::filesystem::path& file) {
    if (!IsSessionFile(file)) return {file};
    return InputFilesOf(ReadSession(file));
}

// A film has its own time, unless every field is asked for; a picture has none.
bool FollowsVideoOf(const std::filesystem::path& file, TimelineChoice choice) {
    if (IsSessionFile(file)) return FollowsVideo(choice, ReadSession(file));
    const bool isVideo = !picture_io::ReadPictureSize(file).has_value();
    if (choice == TimelineChoice::Video && !isVideo)
        throw cli::Error(file.string(), {}, "is a picture, so there is no film whose --timeline could be followed");
    return isVideo && choice != TimelineChoice::Session;
}

// The first one of a session, or the one that is opened.
std::filesystem::path VideoOf(const std::filesystem::path& file) {
    if (!IsSessionFile(file)) return file;
    const Session session = ReadSession(file);
    for (const SessionContainer& container : session.containers)
        if (!container.video.empty()) return session.Resolve(container.video);
    return {};
}

std::string NamesOf(const OutputOptions& outputs) {
    std::vector<std::string> names;
    for (const std::string& name :
         {outputs.out, outputs.frames, outputs.overlay, outputs.canvas, outputs.fill, outputs.key})
        if (!name.empty()) names.push_back(std::filesystem::path(name).filename().string());
    return cli::WordList(names, "and");
}

// Nothing that was drawn is lost with outputs that the operator no longer waits for.
std::filesystem::path KeepRecording(const std::filesystem::path& recording, const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    std::filesystem::path kept;
    int number = 1;
    do {
        kept = folder / ("recording-" + std::to_string(number++) + ".json");
    } while (std::filesystem::exists(kept));
    std::filesystem::copy_file(recording, kept);
    return kept;
}

void WriteAfterwards(PlayOptions again, bool isScratch, const std::filesystem::path& saves) {
    try {
        RunWithProgressWindow("Writing " + NamesOf(again.outputs), [&](WorkProgress& progress) {
            again.progress = [&](std::int64_t done, std::int64_t all) { return progress.Tell(done, all); };
            PlaySession(again);
        });
    } catch (const PlayStopped&) {
        const auto recording = isScratch ? KeepRecording(again.session, saves) : std::filesystem::path(again.session);
        std::fprintf(stderr, "kel: stopped: no output is written; kel play %s makes them\n", recording.c_str());
    }
}

// Null: none is asked for.
std::unique_ptr<ControlService> OpenDoors(const WindowLine& line) {
    if (line.door.empty() && line.osc.empty() && line.oscFeedback.empty()) return nullptr;
    ControlOptions options;
    if (!line.door.empty()) options.door = ParseDoorAddress(line.door);
    if (!line.osc.empty()) options.osc = ParseDoorAddress(line.osc);
    if (!line.oscFeedback.empty()) {
        options.oscFeedback = ParseDoorAddress(line.oscFeedback);
        if (options.oscFeedback->port == 0) throw cli::Error("--osc-feedback 0: nobody listens at port 0");
    }
    auto control = std::make_unique<ControlService>(options);
    if (options.door) std::printf("control: %s\n", ControlUrl(control->Door()).c_str());
    if (options.osc) {
        const ControlAddress& osc = control->Osc();
        const std::string token = IsLoopback(osc.host) ? std::string() : ", first argument " + osc.token;
        std::printf("OSC: %s:%d%s\n", osc.host.c_str(), osc.port, token.c_str());
    }
    std::fflush(stdout);
    return control;
}

PacketRing::Limits ReplayLimits(const WindowLine& line) {
    PacketRing::Limits limits;
    if (line.replaySeconds) limits.seconds = *line.replaySeconds;
    return limits;
}

// Live pictures do not come again: what shows them cannot be made from the recording, as the ink can.
void KeepInkAlone(OutputOptions& outputs) {
    const std::vector<std::string> lost{std::exchange(outputs.out, {}), std::exchange(outputs.frames, {})};
    for (const std::string& name : lost)
        if (!name.empty())
            std::fprintf(stderr, "kel: %s is not written: this machine could not follow the live pictures\n",
                         name.c_str());
}

void RunAndTell(WindowOptions& options, LiveStreams& streams) {
    WindowOptions own = options;
    options.workspace.live.reset();  // the window's own: they end when it opens something else
    RunWorkspaceWindow(std::move(own));
    CloseStreams(streams);
}

void Window(const WindowLine& line) {
    WindowOptions options;
    const bool isLive = IsLiveName(line.file);
    std::optional<LiveName> liveName;
    if (isLive) liveName = ParseLiveName(line.file);
    if (!isLive && line.replaySeconds) throw cli::Error("--replay is for live pictures: a film is all there");
    options.file = line.file.empty() ? FindExampleScene() : std::filesystem::path(line.file);
    OutputOptions outputs = line.outputs;
    if (!isLive) outputs.inputs = FilesReadFor(options.file);
    if (!line.keys.empty()) outputs.inputs.emplace_back(line.keys);
    ClaimFiles(outputs, line.recording);
    if (!line.overwrites) RequireSessionPlace(line.recording);
    options.areKeysGiven = !line.keys.empty();
    options.keys =
        options.areKeysGiven ? ReadKeysFile(line.keys) : ParseKeys(std::string(DefaultKeysText()), "keys.json");
    options.workspace.isModuleGiven = line.access.IsModuleGiven();
    options.workspace.module = line.access.DefaultModule();
    options.workspace.permissions = line.access.Permissions();
    options.hasSteps = line.steps == "motion";
    options.hasTail = line.tail == "on";
    options.hasPen = line.pen == "on";
    options.hasCleanOutput = line.hasCleanOutput;
    if (!line.cleanDisplay.empty()) options.cleanDisplay = std::stoi(line.cleanDisplay);
    options.hasKeyFill = line.hasKeyFill;
    if (!line.keyFillDisplay.empty()) options.keyFillDisplay = std::stoi(line.keyFillDisplay);
    options.isKeyFillStraight = line.outputs.isStraight;
    options.workspace.recording = line.recording;
    options.workspace.saves = line.saves;
    if (outputs.WantAnything()) CheckOutputs(outputs);
    options.followsVideo = outputs.WantAnything() && !isLive && FollowsVideoOf(options.file, line.timeline);
    LiveStreams streams(line.live, line.outputs.isStraight);
    if (streams.AreThere()) options.streams = &streams;
    options.replay = ReplayLimits(line);
    options.workspace.inkLeaves = line.replayInk == "leave";
    if (isLive) options.workspace.live = ConnectLive(*liveName, options.replay);
    if (isLive && !options.workspace.live) return;
    std::unique_ptr<ControlService> control = OpenDoors(line);
    TellStreams(streams);
    options.control = control.get();
    if (!outputs.WantAnything()) return RunAndTell(options, streams);
    std::optional<ScratchFolder> scratch;
    if (line.recording.empty()) options.workspace.recording = scratch.emplace().Path() / "recording.json";
    if (options.followsVideo) outputs.video = VideoOf(options.file);
    LiveOutputs live(outputs);
    options.live = &live;
    RunAndTell(options, streams);
    control.reset();
    if (live.Finish()) return;
    if (isLive) {
        KeepInkAlone(outputs);
        if (!outputs.WantAnything()) return;
    }
    // What could not follow is made afterwards from the recording. All that it names has been read and loaded before.
    PlayOptions again;
    again.session = options.workspace.recording.string();
    again.outputs = isLive ? outputs : line.outputs;
    again.access = line.access;
    again.access.allowModules = again.access.allowOutside = true;
    again.areSavesWritten = false;
    again.timeline = options.followsVideo ? TimelineChoice::Video : TimelineChoice::Session;
    WriteAfterwards(again, scratch.has_value(), line.saves);
}

}  // namespace

void AddWindowCommand(CLI::App& program) {
    const auto line = std::make_shared<WindowLine>();
    CLI::App* command = program.add_subcommand("window", "Opens a picture, a film or a session in a window to draw on");
    command->add_option(
        "file", line->file,
        "A picture, a film, a session, or live pictures: /dev/video0, screen:, srt://HOST:PORT ... (default: a pitch)");
    command->add_option("--record", line->recording, "Writes what happens as a session, which kel play plays again")
        ->type_name("SESSION");
    command->add_flag("--overwrite", line->overwrites, "Lets --record replace a file that is no session");
    command->add_option("--keys", line->keys, "What the keys do, a JSON file (docs/window.md)")->type_name("FILE");
    AddSessionOptions(*command, line->access);
    command->add_option("--saves", line->saves, "Where pictures are saved (default: here)")->type_name("FOLDER");
    command
        ->add_option("--steps", line->steps, "With motion (default) the pen draws as it moves, with field once a field")
        ->check(CLI::IsMember({"motion", "field"}));
    command
        ->add_option("--tail", line->tail, "With on (default) the window shows the pen's way up to the pointer at once")
        ->check(CLI::IsMember({"on", "off"}));
    command->add_option("--pen", line->pen, "With on (default) the end of a pen that erases does so")
        ->check(CLI::IsMember({"on", "off"}));
    command->add_option("--replay", line->replaySeconds, "How much of live pictures is kept for a replay (default: 60)")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 3600));
    command
        ->add_option("--replay-ink", line->replayInk,
                     "With leave what is drawn on a replay is seen at that moment alone; it stays (stay) by default")
        ->check(CLI::IsMember({"stay", "leave"}));
    CLI::Option* clean =
        command->add_option("--clean-output", line->cleanDisplay,
                            "A second window with the picture alone, filling this display (1, 2, ...)");
    clean->expected(0, 1)->type_name("[DISPLAY]")->check(CLI::Range(1, 99));
    CLI::Option* keyFill =
        command->add_option("--key-fill-display", line->keyFillDisplay,
                            "Two more windows for a mixer: the strokes' colors, filling this display, and their alpha "
                            "as gray, filling the next");
    keyFill->expected(0, 1)->type_name("[DISPLAY]")->check(CLI::Range(1, 98));
    command
        ->add_option(
            "--control", line->door,
            "Takes commands at this port (0: any), of this machine without ADDRESS, and prints how to get there")
        ->type_name("[ADDRESS:]PORT");
    command->add_option("--osc", line->osc, "Takes commands as Open Sound Control over UDP, likewise")
        ->type_name("[ADDRESS:]PORT");
    command
        ->add_option("--osc-feedback", line->oscFeedback,
                     "Tells this address every change as Open Sound Control, for lamps and faders")
        ->type_name("[ADDRESS:]PORT");
    AddTimelineOption(*command, line->timeline);
    AddOutputOptions(*command, line->outputs);
    AddLiveOptions(*command, line->live);
    command->footer("The outputs are there when the window has been closed.");
    command->callback([line, clean, keyFill] {
        line->hasCleanOutput = clean->count() > 0;
        line->hasKeyFill = keyFill->count() > 0;
        Window(*line);
    });
}

}  // namespace kel
