#include "host/commands/play_session.h"

#include <CLI/CLI.hpp>

#include "host/commands/module_path.h"
#include "host/error.h"
#include "host/player.h"
#include "shared/interrupt_guard.h"
#include "shared/progress_line.h"

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
        throw Error(options.session, "/containers", "no container has a plug-in, so there is no overlay");

    const auto picture = outputs.WantEveryField() ? Player::Picture::Wanted : Player::Picture::NotWanted;
    const shared::InterruptGuard guard;
    {
        shared::ProgressLine progress("field", session.fields);
        while (!player.IsOver()) {
            if (shared::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", shared::InterruptGuard::exitCode);
            const auto saves = player.PlayField(picture);
            if (options.saves)
                for (const std::string& name : saves) outputs.Stage(host.ReadFrame(), *options.saves / name);
            if (picture == Player::Picture::Wanted) outputs.TakeField(host);
            progress.Show(player.NextField());
        }
    }
    outputs.Finish(host, player.OverlayContainer());
}

}  // namespace kel
