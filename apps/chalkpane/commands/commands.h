#pragma once

#include <array>

namespace CLI {
class App;
}

namespace chalkpane::app {

// Each adds its command to the program's command line. The command runs while the line is parsed, throws cli::Error
// for what the operator got wrong, and cli::Interrupted to end with another exit code.
void AddFilterCommand(CLI::App& program);
void AddFiltersCommand(CLI::App& program);
void AddPaintCommand(CLI::App& program);
void AddAnimateCommand(CLI::App& program);
void AddCurveCommand(CLI::App& program);

// In the order in which the help lists them.
inline constexpr std::array commands{
    AddFiltersCommand, AddFilterCommand, AddPaintCommand, AddAnimateCommand, AddCurveCommand,
};

}  // namespace chalkpane::app
