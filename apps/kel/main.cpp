#include "apps/kel/commands/commands.h"
#include "cli/run_program.h"

int main(int argc, char** argv) {
    constexpr cli::ProgramDescription description{"kel", "A small renderer for telestrator modules",
                                                  [](CLI::App& program) {
                                                      kel::AddInfoCommand(program);
                                                      kel::AddPlayCommand(program);
                                                      kel::AddReplayCommand(program);
#ifdef KEL_WITH_WINDOW
                                                      kel::AddWindowCommand(program);
#else
                                                      kel::AddMissingCommand(program, "window", "SDL 2 and Dear ImGui");
#endif
#ifdef KEL_WITH_SERVER
                                                      kel::AddControlCommand(program);
#else
                                                      kel::AddMissingCommand(program, "control", "libwebsockets");
#endif
                                                  }};
    return cli::RunProgram(description, argc, argv);
}
