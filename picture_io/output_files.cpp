#include "picture_io/output_files.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "cli/error.h"
#include "cli/file_bytes.h"

namespace picture_io {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(const fs::path& file, const std::string& reason) {
    throw cli::Error(file.string(), {}, reason);
}

// What can be known before anything is written.
void RequireWritable(const fs::path& file) {
    if (file == "-") return;
    cli::RefuseUnlessRegular(file, "cannot be written: it ");
    std::error_code failure;
    const fs::path folder = cli::FolderOf(cli::BehindLinks(file));
    if (!fs::is_directory(folder, failure)) Refuse(file, "cannot be written: there is no folder " + folder.string());
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        Refuse(file, "cannot be written: " + std::generic_category().message(errno));
}

void RequirePictureName(const fs::path& file) {
    if (file != "-" && !IsPictureName(file)) Refuse(file, EndingsRule());
}

}  // namespace

void OutputFiles::Announce(const fs::path& file) {
    RequirePictureName(file);
    AnnounceOther(file);
}

void OutputFiles::AnnounceOnto(const fs::path& file, const fs::path& input) {
    RequirePictureName(file);
    RequireWritable(file);
    m_claims.WriteOnto(file, input);
}

void OutputFiles::AnnounceOther(const fs::path& file) {
    RequireWritable(file);
    m_claims.Write(file);
}

void OutputFiles::Stage(const AnyPicture& picture, const fs::path& file, const WriteOptions& options) {
    const FormatRow* const format = FormatOfName(file);
    if (format == nullptr) Refuse(file, EndingsRule());
    try {
        const auto bytes = EncodePictureFile(picture, *format, options);
        m_staged.emplace_back(file).Write(bytes);
    } catch (const cli::Error& error) {
        const std::string reason = error.what();
        if (reason.starts_with(file.string() + ": ")) throw;
        Refuse(file, reason);
    }
}

void OutputFiles::StageBytes(std::vector<std::uint8_t> bytes, const fs::path& file) {
    if (file == "-")
        m_stream = std::move(bytes);
    else
        m_staged.emplace_back(file).Write(bytes);
}

void OutputFiles::StageText(std::string_view text, const fs::path& file) {
    m_staged.emplace_back(file).Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void OutputFiles::Commit() {
    if (!m_stream.empty()) cli::WriteStandardOutput(m_stream);
    cli::StagedFile::CommitAll(m_staged);
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
