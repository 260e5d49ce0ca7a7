#include "apps/kel/commands/module_path.h"

#include <system_error>

namespace kel {

namespace {

std::filesystem::path ProgramFolder() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

// Beside this program, or else in `installed`, a folder as seen from the program's.
std::filesystem::path Find(const char* name, const char* installedFolder) {
    std::error_code failure;
    const auto folder = ProgramFolder();
    auto beside = folder / name;
    auto installed = (folder / installedFolder / name).lexically_normal();
    if (!std::filesystem::exists(beside, failure) && std::filesystem::exists(installed, failure)) return installed;
    return beside;
}

}  // namespace

std::filesystem::path FindModule() { return Find("Chalkpane.qop", KEL_INSTALLED_MODULE_FOLDER); }

std::vector<std::filesystem::path> ModuleFolders() {
    const auto folder = ProgramFolder();
    if (folder.empty()) return {};
    return {folder, (folder / KEL_INSTALLED_MODULE_FOLDER).lexically_normal()};
}

std::filesystem::path FindExampleScene() { return Find("pitch.json", KEL_INSTALLED_SHARE_FOLDER); }

}  // namespace kel
