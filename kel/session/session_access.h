#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/memory_budget.h"
#include "kel/session/session.h"

namespace kel {

// What the operator lets a session reach beyond its own folder, whoever wrote it.
struct SessionPermissions {
    std::vector<std::filesystem::path> modules;        // named on the command line
    std::vector<std::filesystem::path> moduleFolders;  // where the program is installed; all modules there are trusted
    std::vector<std::filesystem::path> files;          // named on the command line
    bool allowModules = false;                         // whatever module a session names is loaded
    bool allowOutside = false;                         // whatever picture or video a session names is read
    std::uint64_t memory = cli::MemoryBudget::HalfOfTheMachine();  // bytes; see CheckMemory
    bool keepsStrokes = false;  // of every telestrator, whatever the session does: its memory counts
};

// Which files a session gets. A session is data that may have come from anywhere: a module, which is a program, is
// loaded only when the operator named it or installed it, and what is read lies in the session's folder or below, links
// resolved.
//
// Borrows both for its life. Refusals are Errors with the session's file, the place in it, and how to allow it.
class SessionAccess {
public:
    SessionAccess(const Session& session, const SessionPermissions& permissions);

    // The file of the module that the plug-in names, which is not empty.
    [[nodiscard]] std::filesystem::path ModuleFile(const SessionPlugin& plugin) const;
    // A trusted module by its name alone, in whichever folder it is: the operator's own, or else an installed one.
    [[nodiscard]] std::optional<std::filesystem::path> TrustedModule(const std::filesystem::path& name) const;

    // A picture or a video. One that is not there passes, and its reader tells.
    [[nodiscard]] std::filesystem::path InputFile(const std::string& path, const std::string& place) const;

private:
    [[nodiscard]] bool IsTrustedModule(const std::filesystem::path& file) const;
    [[nodiscard]] bool IsInside(const std::filesystem::path& file) const;
    [[nodiscard]] bool IsRecordedInput(const std::filesystem::path& file) const;

    const Session& m_session;
    const SessionPermissions& m_permissions;
    std::filesystem::path m_folder;  // of the session; canonical
};

}  // namespace kel
