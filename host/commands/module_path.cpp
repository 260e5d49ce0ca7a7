#include "host/commands/module_path.h"

#include <system_error>

namespace kel {

std::filesystem::path FindModule() {
    constexpr const char* name = "Chalkpane.qop";
    std::error_code failure;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
    const auto beside = folder / name;
    const auto installed = (folder / KEL_INSTALLED_MODULE_FOLDER / name).lexically_normal();
    if (!std::filesystem::exists(beside, failure) && std::filesystem::exists(installed, failure)) return installed;
    return beside;
}

}  // namespace kel
