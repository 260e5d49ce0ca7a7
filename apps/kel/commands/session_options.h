#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "kel/session/session_access.h"

namespace CLI {
class App;
}

namespace kel {

// What the command line says about modules and about the files that a session may reach.
struct SessionOptions {
    std::vector<std::string> modules;  // paths
    bool allowModules = false;
    bool allowOutside = false;
    std::uint64_t memory = cli::MemoryBudget::HalfOfTheMachine();  // bytes

    [[nodiscard]] bool IsModuleGiven() const { return !modules.empty(); }
    // Of plug-ins that name none: the first that is given, or else Chalkpane's own.
    [[nodiscard]] std::filesystem::path DefaultModule() const;
    [[nodiscard]] SessionPermissions Permissions() const;
};

void AddSessionOptions(CLI::App& command, SessionOptions& options);

}  // namespace kel
