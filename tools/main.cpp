#include "shared/run_program.h"
#include "tools/commands/commands.h"

int main(int argc, char** argv) {
    CLI::App program("The paint engine and the image filters, on picture files", "chalkpane");
    program.require_subcommand(1);
    for (const auto& add : chalkpane::tools::commands) add(program);
    return shared::RunProgram(program, argc, argv);
}
