#include "apps/kel/commands/commands.h"
#include "cli/run_program.h"

int main(int argc, char** argv) {
    CLI::App program("A small renderer for telestrator modules", "kel");
    program.require_subcommand(1);
    kel::AddInfoCommand(program);
    kel::AddPlayCommand(program);
    kel::AddReplayCommand(program);
#ifdef KEL_WITH_WINDOW
    kel::AddWindowCommand(program);
#endif
    return cli::RunProgram(program, argc, argv);
}
