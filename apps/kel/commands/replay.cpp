#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>

#include "apps/kel/commands/commands.h"
#include "cli/interrupt_guard.h"
#include "cli/progress_line.h"
#include "kel/outputs/output_format.h"
#include "kel/replay/replay_journal.h"

namespace kel {
namespace {

void Replay(const ReplayOptions& options) {
    const cli::InterruptGuard guard;
    std::optional<cli::ProgressLine> progress;
    ReplayJournal(options, [&](std::int64_t field, std::int64_t fields) {
        if (field == 1) progress.emplace("field", fields);
        progress->Show(field);
        return !cli::InterruptGuard::IsInterrupted();
    });
    cli::InterruptGuard::ThrowIfInterrupted();
}

}  // namespace

void AddReplayCommand(CLI::App& program) {
    const auto options = std::make_shared<ReplayOptions>();
    CLI::App* command = program.add_subcommand("replay", "Draws the strokes of a journal again");
    command->add_option("journal", options->journal, "The journal (docs/journal.md)")->required();
    command
        ->add_option("--out", options->out,
                     "A film (" + OutputEndings(IsVideoOutput, "") +
                         "), a picture of every field (f%05d.png), or the last one (" +
                         OutputEndings(IsPictureOutput, "") + ")")
        ->required()
        ->type_name("FILE");
    command->add_option("--over", options->over, "A picture or a film to draw on (default: the strokes alone)")
        ->type_name("FILE");
    CLI::Option* speed =
        command->add_option("--speed", options->speed, "Twice as fast with 2")->check(CLI::Range(0.001, 1000.0));
    command->add_option("--length", options->length, "Takes so many seconds, instead of a speed")
        ->check(CLI::Range(0.001, 86400.0))
        ->excludes(speed);
    command->add_option("--from", options->from, "Begins so many seconds after the first press")
        ->check(CLI::Range(0.0, 1e9));
    command->add_option("--to", options->to, "Ends so many seconds after the first press")->check(CLI::Range(0.0, 1e9));
    command->add_option("--rate", options->fieldsPerSecond, "Fields a second of the drawing and of the film")
        ->capture_default_str()
        ->check(CLI::Range(1.0, 1000.0));
    command->add_flag("--even", options->even, "The pen goes at one pace and without pauses");
    command->add_flag("--each", options->each, "Writes each stroke by itself, its number before the ending: x-1.mov");
    command->add_flag("--straight", options->straight,
                      "The strokes alone have colors that are not multiplied by alpha");
    command->callback([options] { Replay(*options); });
}

}  // namespace kel
