#include "apps/chalkpane/commands/commands.h"
#include "cli/run_program.h"

int main(int argc, char** argv) {
    CLI::App program("The paint engine and the image filters, on picture files", "chalkpane");
    program.require_subcommand(1);
    for (const auto& add : chalkpane::app::commands) add(program);
    return cli::RunProgram(program, argc, argv);
}
