#include <memory>

#include "host/commands/commands.h"
#include "host/commands/module_path.h"
#include "host/commands/output_options.h"
#include "host/error.h"
#include "host/outputs.h"
#include "host/player.h"
#include "shared/interrupt_guard.h"
#include "shared/progress_line.h"

namespace kel {
namespace {

struct PlayOptions {
    std::string session;
    OutputOptions outputs;
    std::string saves = ".";
    std::string module;
};

std::filesystem::path SavePath(const PlayOptions& options, const std::string& name) {
    return std::filesystem::path(options.saves) / name;
}

void AnnounceSaves(const PlayOptions& options, const Session& session, Outputs& outputs) {
    for (const SessionEvent& event : session.events)
        if (const auto* save = std::get_if<SaveEvent>(&event.what)) outputs.Announce(SavePath(options, save->name));
}

void Play(const PlayOptions& options) {
    const Session session = ReadSession(options.session);
    const WindowSize window{session.window.width, session.window.height};
    // Every file that the play will write is checked before the first field.
    Outputs outputs(options.outputs, window, session.fieldsPerSecond, session.fields);
    AnnounceSaves(options, session, outputs);

    Host host(window);
    Player player(session, host, options.module.empty() ? FindModule() : std::filesystem::path(options.module));
    if (options.outputs.WantDrawings() && player.OverlayContainer() == noObject)
        throw Error(options.session, "/containers", "no container has a plug-in, so there is no overlay");

    const auto picture = outputs.WantEveryField() ? Player::Picture::Wanted : Player::Picture::NotWanted;
    const shared::InterruptGuard guard;
    {
        shared::ProgressLine progress("field", session.fields);
        while (!player.IsOver()) {
            if (shared::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", shared::InterruptGuard::exitCode);
            const auto saves = player.PlayField(picture);
            for (const std::string& name : saves) outputs.Stage(host.ReadFrame(), SavePath(options, name));
            if (picture == Player::Picture::Wanted) outputs.TakeField(host);
            progress.Show(player.NextField());
        }
    }
    outputs.Finish(host, player.OverlayContainer());
}

}  // namespace

void AddPlayCommand(CLI::App& program) {
    const auto options = std::make_shared<PlayOptions>();
    CLI::App* command = program.add_subcommand("play", "Plays a session without a window");
    command->add_option("session", options->session, "The session, a JSON file (docs/session.md)")->required();
    AddOutputOptions(*command, options->outputs);
    command
        ->add_option("--frames", options->outputs.frames,
                     "Writes every field's picture, such as frames/f%05d.png, beside what --out writes")
        ->type_name("PATTERN");
    command->add_option("--saves", options->saves, "Where the session's own save events write (default: here)")
        ->type_name("FOLDER");
    command->add_option("--module", options->module, "The module of plug-ins that name none (default: Chalkpane.qop)")
        ->type_name("MODULE");
    command->callback([options] { Play(*options); });
}

}  // namespace kel
