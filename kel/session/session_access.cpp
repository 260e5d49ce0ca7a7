#include "kel/session/session_access.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "cli/staged_file.h"

namespace kel {
namespace {

namespace fs = std::filesystem;

// Links and ".." resolved as far as the path is there; empty when that cannot be said.
fs::path Canonical(const fs::path& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path, failure);
    if (failure) return {};
    fs::path canonical = fs::weakly_canonical(absolute, failure);
    return failure ? fs::path() : canonical;
}

bool AreSame(const fs::path& left, const fs::path& right) { return !left.empty() && left == Canonical(right); }

}  // namespace

SessionAccess::SessionAccess(const Session& session, const SessionPermissions& permissions)
    : m_session(session), m_permissions(permissions), m_folder(Canonical(cli::FolderOf(session.file))) {}

std::optional<fs::path> SessionAccess::TrustedModule(const fs::path& name) const {
    if (name.has_parent_path()) return std::nullopt;
    for (const fs::path& module : m_permissions.modules)
        if (module.filename() == name) return module;
    std::error_code ignored;
    for (const fs::path& folder : m_permissions.moduleFolders)
        if (fs::is_regular_file(folder / name, ignored)) return folder / name;
    return std::nullopt;
}

bool SessionAccess::IsTrustedModule(const fs::path& file) const {
    const fs::path canonical = Canonical(file);
    return std::ranges::any_of(m_permissions.modules, [&](const auto& module) { return AreSame(canonical, module); }) ||
           std::ranges::any_of(m_permissions.moduleFolders,
                               [&](const auto& folder) { return AreSame(canonical.parent_path(), folder); });
}

fs::path SessionAccess::ModuleFile(const SessionPlugin& plugin) const {
    if (auto trusted = TrustedModule(plugin.module)) return *trusted;
    fs::path file = m_session.Resolve(plugin.module);
    if (m_permissions.allowModules || IsTrustedModule(file)) return file;
    throw cli::Error(m_session.file.string(), plugin.place + "/module",
                     "a module is a program, and sessions do not choose programs: --module " + file.string() +
                         " allows this one, --allow-modules any");
}

bool SessionAccess::IsInside(const fs::path& file) const {
    const fs::path canonical = Canonical(file);
    if (canonical.empty() || m_folder.empty()) return false;
    const fs::path way = canonical.lexically_relative(m_folder);
    return !way.empty() && *way.begin() != "..";
}

// A recording of the window names the files that its operator drew on wherever they are. Whoever made it, the account
// that plays it must own them, and their readers take nothing but pictures and videos.
bool SessionAccess::IsRecordedInput(const fs::path& file) const {
    struct stat status {};
    return m_session.isRecording && ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_uid == ::geteuid();
}

fs::path SessionAccess::InputFile(const std::string& path, const std::string& place) const {
    fs::path file = m_session.Resolve(path);
    if (m_permissions.allowOutside || IsInside(file) || IsRecordedInput(file)) return file;
    const fs::path canonical = Canonical(file);
    if (std::ranges::any_of(m_permissions.files, [&](const auto& named) { return AreSame(canonical, named); }))
        return file;
    throw cli::Error(m_session.file.string(), place,
                     cli::Quoted(path) + " lies outside the session's folder; --allow-outside lets it be read");
}

}  // namespace kel
