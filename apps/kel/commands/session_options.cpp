#include "apps/kel/commands/session_options.h"

#include "apps/kel/commands/module_path.h"
#include "cli/memory_option.h"

namespace kel {

std::filesystem::path SessionOptions::DefaultModule() const {
    return IsModuleGiven() ? std::filesystem::path(modules.front()) : FindModule();
}

SessionPermissions SessionOptions::Permissions() const {
    SessionPermissions permissions;
    permissions.modules.assign(modules.begin(), modules.end());
    permissions.moduleFolders = ModuleFolders();
    permissions.allowModules = allowModules;
    permissions.allowOutside = allowOutside;
    permissions.memory = memory;
    return permissions;
}

void AddSessionOptions(CLI::App& command, SessionOptions& options) {
    command
        .add_option("--module", options.modules,
                    "The module of plug-ins that name none (default: Chalkpane.qop); further ones may be named by the "
                    "session")
        ->type_name("MODULE")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
    command.add_flag("--allow-modules", options.allowModules,
                     "Loads whatever modules the session names, which are programs");
    command.add_flag("--allow-outside", options.allowOutside,
                     "Reads pictures and films that lie outside the session's folder");
    cli::AddMemoryOption(command, options.memory);
}

}  // namespace kel
