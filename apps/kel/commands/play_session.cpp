#include "apps/kel/commands/play_session.h"

#include <CLI/CLI.hpp>

#include "apps/kel/commands/module_path.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/progress_line.h"
#include "kel/session/player.h"

namespace kel {
namespace {

void AnnounceSaves(const PlayOptions& options, const Session& session, Outputs& outputs) {
    if (!options.saves) return;
    for (const SessionEvent& event : session.events)
        if (const auto* save = std::get_if<SaveEvent>(&event.what)) outputs.Announce(*options.saves / save->name);
}

}  // namespace

void PlaySession(const PlayOptions& options) {
    const Session session = ReadSession(options.session);
    const WindowSize window{session.window.width, session.window.height};
    // Every file that the play will write is checked before the first field.
    Outputs outputs(options.outputs, window, session.fieldsPerSecond, session.fields);
    AnnounceSaves(options, session, outputs);

    Host host(window);
    Player player(session, host, options.module.empty() ? FindModule() : std::filesystem::path(options.module));
    if (options.outputs.WantDrawings() && player.OverlayContainer() == noObject)
        throw cli::Error(options.session, "/containers", "no container has a plug-in, so there is no overlay");

    const auto picture = outputs.WantEveryField() ? Player::Rendering::Wanted : Player::Rendering::NotWanted;
    const cli::InterruptGuard guard;
    {
        cli::ProgressLine progress("field", session.fields);
        while (!player.IsOver()) {
            if (cli::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", cli::InterruptGuard::exitCode);
            const auto saves = player.PlayField(picture);
            if (options.saves)
                for (const std::string& name : saves) outputs.Stage(host.ReadFrame(), *options.saves / name);
            if (picture == Player::Rendering::Wanted) outputs.TakeField(host);
            progress.Show(player.NextField());
        }
    }
    outputs.Finish(host, player.OverlayContainer());
}

}  // namespace kel
