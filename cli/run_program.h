#pragma once

namespace CLI {
class App;
}

namespace cli {

// Parses the command line, by which the command named there runs, and answers the exit code: 0; 2 for what the operator
// got wrong (Error, or a line that does not parse); exitNoMemory (memory_end.h); what a CLI::RuntimeError says; 1 for
// anything else. Whatever fails is told in one line on standard error behind the program's name.
int RunProgram(CLI::App& program, int argc, char** argv);

}  // namespace cli
