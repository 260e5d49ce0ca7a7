#pragma once

namespace CLI {
class App;
}

namespace cli {

// What a program is called and what it is for, and what adds its commands.
struct ProgramDescription {
    const char* name;
    const char* purpose;
    void (*addCommands)(CLI::App& program);
};

// Makes the program and parses the command line, by which the command named there runs, and answers the exit code: 0; 2
// for what the operator got wrong (Error, or a line that does not parse); exitNoMemory (memory_end.h); what
// Interrupted (interrupt_guard.h) says; 1 for anything else. Whatever fails is told in one line on standard error
// behind the program's name.
int RunProgram(const ProgramDescription& description, int argc, char** argv) noexcept;

}  // namespace cli
