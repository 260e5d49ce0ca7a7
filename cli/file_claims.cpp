#include "cli/file_claims.h"

#include <sys/stat.h>

#include <system_error>

#include "cli/error.h"
#include "cli/file_kind.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

// Device and number of what is there; the place where it would come to be of what is not.
std::string IdentityOf(const fs::path& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) == 0) return std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
    const fs::path place = BehindLinks(file);
    std::error_code failure;
    const fs::path folder = fs::weakly_canonical(FolderOf(place), failure);
    return (failure ? place : folder / place.filename()).string();
}

bool IsStream(const fs::path& file) { return file == "-"; }

}  // namespace

void FileClaims::Read(const fs::path& file) {
    if (IsStream(file)) return;
    const auto [at, isNew] = m_claims.try_emplace(IdentityOf(file), Claim{file, Use::Input});
    if (!isNew && at->second.use == Use::Output)
        throw Error(at->second.file.string(), {}, "cannot be written: it is read too, as " + file.string());
}

void FileClaims::Write(const fs::path& file) {
    if (!IsStream(file)) Enter(IdentityOf(file), file);
}

void FileClaims::WriteOnto(const fs::path& file, const fs::path& input) {
    if (IsStream(file)) return;
    const std::string identity = IdentityOf(file);
    const auto claim = m_claims.find(identity);
    const bool isThat = claim != m_claims.end() && claim->second.use == Use::Input && identity == IdentityOf(input);
    if (isThat)
        claim->second = {file, Use::Output};
    else
        Enter(identity, file);
}

void FileClaims::Enter(const std::string& identity, const fs::path& file) {
    const auto [at, isNew] = m_claims.try_emplace(identity, Claim{file, Use::Output});
    if (isNew) return;
    const Claim& other = at->second;
    if (other.use == Use::Input)
        throw Error(file.string(), {}, "cannot be written: it is read too, as " + other.file.string());
    if (fs::absolute(other.file).lexically_normal() == fs::absolute(file).lexically_normal())
        throw Error(file.string(), {}, "two outputs have this name");
    throw Error(file.string(), {}, "is the same file as another output, " + other.file.string());
}

}  // namespace cli
