#include "cli/file_kind.h"

#include <sys/stat.h>

#include <string>
#include <system_error>

#include "cli/error.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

}  // namespace

void RefuseUnlessRegular(const fs::path& file, mode_t mode, const char* prefix) {
    if (!S_ISREG(mode))
        throw Error(file.string(), {}, std::string(prefix) + (S_ISDIR(mode) ? "is a folder" : "is not a regular file"));
}

void RefuseUnlessRegular(const fs::path& file, const char* prefix) {
    struct stat status {};
    if (stat(file.c_str(), &status) == 0) RefuseUnlessRegular(file, status.st_mode, prefix);
}

fs::path BehindLinks(const fs::path& file) {
    constexpr int mostLinks = 40;  // as many as the system follows
    fs::path path = file;
    std::error_code failure;
    for (int links = 0; fs::is_symlink(fs::symlink_status(path, failure)); ++links) {
        const fs::path target = fs::read_symlink(path, failure);
        if (failure || links == mostLinks) throw Error(file.string(), {}, "cannot be written: too many links");
        path = target.is_absolute() ? target : FolderOf(path) / target;
    }
    return path;
}

fs::path FolderOf(const fs::path& file) {
    const fs::path folder = file.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

}  // namespace cli
