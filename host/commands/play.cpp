#include <memory>
#include <optional>

#include "host/commands/commands.h"
#include "host/commands/module_path.h"
#include "host/error.h"
#include "host/player.h"
#include "shared/interrupt_guard.h"
#include "shared/output_files.h"
#include "shared/progress_line.h"

namespace kel {
namespace {

struct PlayOptions {
    std::string session;
    std::string out;
    std::string frames;
    std::string overlay;
    std::string saves = ".";
    std::string module;
};

std::filesystem::path SavePath(const PlayOptions& options, const std::string& name) {
    return std::filesystem::path(options.saves) / name;
}

// Every file that the play will write is checked before the first field.
void AnnounceOutputs(const PlayOptions& options, const Session& session,
                     const std::optional<shared::NumberedName>& frames, shared::OutputFiles& outputs) {
    if (!options.out.empty()) outputs.Announce(options.out);
    if (!options.overlay.empty()) outputs.Announce(options.overlay);
    for (const SessionEvent& event : session.events)
        if (const auto* save = std::get_if<SaveEvent>(&event.what)) outputs.Announce(SavePath(options, save->name));
    for (std::int64_t field = 0; frames && field < session.fields; ++field) outputs.Announce(frames->At(field));
}

void Play(const PlayOptions& options) {
    const Session session = ReadSession(options.session);
    std::optional<shared::NumberedName> frames;
    if (!options.frames.empty()) frames.emplace(options.frames);
    shared::OutputFiles outputs;
    AnnounceOutputs(options, session, frames, outputs);

    Host host({session.window.width, session.window.height});
    Player player(session, host, options.module.empty() ? FindModule() : std::filesystem::path(options.module));
    if (!options.overlay.empty() && player.OverlayContainer() == noObject)
        throw Error(options.session, "/containers", "no container has a plug-in, so there is no overlay");

    const shared::InterruptGuard guard;
    {
        shared::ProgressLine progress("field", session.fields);
        while (!player.IsOver()) {
            if (shared::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", shared::InterruptGuard::exitCode);
            const std::int64_t field = player.NextField();
            const auto saves = player.PlayField(frames ? Player::Picture::Wanted : Player::Picture::NotWanted);
            for (const std::string& name : saves) outputs.Stage(host.ReadFrame(), SavePath(options, name));
            if (frames) outputs.Stage(host.ReadFrame(), frames->At(field));
            progress.Show(player.NextField());
        }
    }
    if (!options.out.empty()) outputs.Stage(host.ReadFrame(), options.out);
    if (!options.overlay.empty()) outputs.Stage(host.ReadCanvas(player.OverlayContainer()), options.overlay);
    outputs.Commit();
}

}  // namespace

void AddPlayCommand(CLI::App& program) {
    const auto options = std::make_shared<PlayOptions>();
    CLI::App* command = program.add_subcommand("play", "Plays a session without a window");
    command->add_option("session", options->session, "The session, a JSON file (docs/session.md)")->required();
    command->add_option("--out", options->out, "Writes the last field's picture")->type_name("PICTURE");
    command->add_option("--frames", options->frames, "Writes every field's picture, such as frames/f%05d.png")
        ->type_name("PATTERN");
    command->add_option("--overlay", options->overlay, "Writes the strokes alone, with alpha, as they are at the end")
        ->type_name("PICTURE");
    command->add_option("--saves", options->saves, "Where the session's own save events write (default: here)")
        ->type_name("FOLDER");
    command->add_option("--module", options->module, "The module of plug-ins that name none (default: Chalkpane.qop)")
        ->type_name("MODULE");
    command->callback([options] { Play(*options); });
}

}  // namespace kel
