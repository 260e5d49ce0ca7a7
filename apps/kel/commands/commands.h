#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kel {

// Each adds its command to the program's command line. The command runs while the line is parsed, throws Error for what
// the operator got wrong, and cli::Interrupted to end with another exit code.
void AddControlCommand(CLI::App& program);  // where the program is built with the door it goes through
// In the place of one that the program is built without.
void AddMissingCommand(CLI::App& program, const std::string& name, const std::string& library);
void AddInfoCommand(CLI::App& program);
void AddPlayCommand(CLI::App& program);
void AddReplayCommand(CLI::App& program);
void AddWindowCommand(CLI::App& program);  // where the program is built with its window

}  // namespace kel
