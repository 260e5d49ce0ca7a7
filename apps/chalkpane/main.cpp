#include "apps/chalkpane/commands/commands.h"
#include "cli/run_program.h"

int main(int argc, char** argv) {
    constexpr cli::ProgramDescription description{
        "chalkpane", "The paint engine and the image filters, on picture files", [](CLI::App& program) {
            for (const auto& add : chalkpane::app::commands) add(program);
        }};
    return cli::RunProgram(description, argc, argv);
}
