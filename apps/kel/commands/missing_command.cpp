#include <CLI/CLI.hpp>

#include "apps/kel/commands/commands.h"
#include "cli/error.h"

namespace kel {

// Whatever follows it, what is missing is the answer.
void AddMissingCommand(CLI::App& program, const std::string& name, const std::string& library) {
    CLI::App* command = program.add_subcommand(name, "Left out: this kel was built without " + library);
    command->allow_extras();
    command->callback(
        [name, library] { throw cli::Error("kel " + name + " is left out: this kel was built without " + library); });
}

}  // namespace kel
