#include <CLI/CLI.hpp>
#include <memory>

#include "apps/kel/commands/commands.h"
#include "apps/kel/commands/output_options.h"
#include "apps/kel/commands/play_session.h"

namespace kel {

void AddPlayCommand(CLI::App& program) {
    const auto options = std::make_shared<PlayOptions>();
    CLI::App* command = program.add_subcommand("play", "Plays a session without a window");
    command->add_option("session", options->session, "The session, a JSON file (docs/session.md)")->required();
    AddOutputOptions(*command, options->outputs);
    AddLiveOptions(*command, options->live);
    command
        ->add_option("--frames", options->outputs.frames,
                     "Writes every field's picture, such as frames/f%05d.png, beside what --out writes")
        ->type_name("PATTERN");
    command
        ->add_option("--saves", options->savesFolder,
                     "Where the session's own save events write (default: a folder named after the session)")
        ->type_name("FOLDER");
    command
        ->add_option("--journal", options->journal,
                     "Writes a journal of the strokes drawn on the first telestrator (docs/journal.md)")
        ->type_name("FILE");
    command->add_flag("--overwrite", options->overwrite, "Lets the session's saves replace files that are there");
    AddTimelineOption(*command, options->timeline);
    AddSessionOptions(*command, options->access);
    command->callback([options] { PlaySession(*options); });
}

}  // namespace kel
