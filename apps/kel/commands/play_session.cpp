#include "apps/kel/commands/play_session.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "apps/kel/commands/claimed_files.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/progress_line.h"
#include "kel/session/player.h"
#include "kel/session/session_inputs.h"
#include "kel/session/session_saves.h"

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

}  // namespace

void PlaySession(const PlayOptions& options) {
    const Session session = ReadSession(options.session);
    const WindowSize window{session.window.width, session.window.height};
    OutputOptions wanted = options.outputs;
    wanted.inputs = InputFilesOf(session);
    ClaimFiles(wanted, {});
    // Every file that the play will write is checked before the first field. What fails leaves the folder of the saves
    // last, when nothing is in it any more.
    const std::unique_ptr<SessionSaves> saves = SavesOf(options, session);
    Outputs outputs(wanted, window, session.fieldsPerSecond, session.fields);
    if (saves) Announce(*saves, session, outputs);

    Host host(window);
    Player player(session, host, options.access.DefaultModule(), options.access.Permissions());
    if (options.outputs.WantDrawings() && player.OverlayContainer() == noObject)
        throw cli::Error(options.session, "/containers", "no container has a plug-in, so there is no overlay");
    if (!options.outputs.WantAnything() && !HasSaves(options, session))
        std::fprintf(stderr, "kel: nothing is written: %s\n",
                     "the session saves no picture, and none of --out, --overlay, --canvas, --fill is given");

    const auto picture = outputs.WantEveryField() ? Player::Rendering::Wanted : Player::Rendering::NotWanted;
    const cli::InterruptGuard guard;
    {
        cli::ProgressLine progress("field", session.fields);
        while (!player.IsOver()) {
            if (cli::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", cli::InterruptGuard::ExitCode());
            const auto names = player.PlayField(picture);
            if (saves)
                for (const std::string& name : names) outputs.Stage(host.ReadFrame(), saves->FileOf(name));
            if (picture == Player::Rendering::Wanted) outputs.TakeField(host);
            progress.Show(player.NextField());
        }
    }
    outputs.Finish(host, player.OverlayContainer());
}

}  // namespace kel
