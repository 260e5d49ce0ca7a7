#include "picture_io/output_files.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "cli/error.h"

namespace picture_io {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(const fs::path& file, const std::string& reason) {
    throw cli::Error(file.string(), {}, reason);
}

// One name for one file, however its folder is written.
fs::path Canonical(const fs::path& file) {
    std::error_code failure;
    const fs::path folder = fs::weakly_canonical(cli::FolderOf(file), failure);
    return failure ? file : folder / file.filename();
}

}  // namespace

void OutputFiles::Announce(const fs::path& file) {
    if (!IsPictureName(file)) Refuse(file, "pictures end in .png, .jpg or .jpeg");
    AnnounceOther(file);
}

void OutputFiles::AnnounceOther(const fs::path& file) {
    std::error_code failure;
    if (fs::is_directory(file, failure)) Refuse(file, "cannot be written: it is a folder");
    const fs::path folder = cli::FolderOf(file);
    if (!fs::is_directory(folder, failure)) Refuse(file, "cannot be written: there is no folder " + folder.string());
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        Refuse(file, "cannot be written: " + std::generic_category().message(errno));
    if (!m_announced.insert(Canonical(file)).second) Refuse(file, "two outputs have this name");
}

template <typename AnyDepth>
void OutputFiles::StageAny(const AnyDepth& picture, const fs::path& file) {
    const fs::path& temporary = m_staged.emplace_back(file).Temporary();
    try {
        WritePicture(picture, temporary);
    } catch (const cli::Error& error) {
        // The operator knows the name asked for, not the temporary one.
        std::string reason = error.what();
        if (reason.starts_with(temporary.string() + ": ")) reason.erase(0, temporary.string().size() + 2);
        Refuse(file, reason);
    }
}

void OutputFiles::Stage(const Picture& picture, const fs::path& file) { StageAny(picture, file); }
void OutputFiles::Stage(const Picture16& picture, const fs::path& file) { StageAny(picture, file); }

void OutputFiles::Commit() {
    for (cli::StagedFile& staged : m_staged) staged.Commit();
    m_staged.clear();
}

NumberedName::NumberedName(const std::string& pattern) {
    const auto refuse = [&] { Refuse(pattern, "must have one number such as %05d in the file's name"); };
    const std::size_t percent = pattern.find('%');
    if (percent == std::string::npos || percent + 3 >= pattern.size()) refuse();
    const char digits = pattern[percent + 2];
    if (pattern[percent + 1] != '0' || digits < '1' || digits > '9' || pattern[percent + 3] != 'd') refuse();
    m_digits = static_cast<std::size_t>(digits - '0');
    m_before = pattern.substr(0, percent);
    m_after = pattern.substr(percent + 4);
    if (m_after.find_first_of("%/") != std::string::npos) refuse();
}

fs::path NumberedName::At(std::int64_t number) const {
    std::string digits = std::to_string(number);
    if (digits.size() < m_digits) digits.insert(0, m_digits - digits.size(), '0');
    return m_before + digits + m_after;
}

}  // namespace picture_io
