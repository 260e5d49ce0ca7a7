#include "host/commands/commands.h"
#include "shared/run_program.h"

int main(int argc, char** argv) {
    CLI::App program("A small renderer for telestrator modules", "kel");
    program.require_subcommand(1);
    kel::AddInfoCommand(program);
    kel::AddPlayCommand(program);
#ifdef KEL_WITH_WINDOW
    kel::AddWindowCommand(program);
#endif
    return shared::RunProgram(program, argc, argv);
}
