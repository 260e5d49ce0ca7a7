#include "cli/staged_file.h"

#include <unistd.h>

#include <atomic>
#include <string>
#include <system_error>
#include <utility>

#include "cli/error.h"

namespace cli {
namespace {

std::filesystem::path TemporaryName(const std::filesystem::path& file) {
    static std::atomic<int> count{0};
    const std::string name = ".unfinished-" + std::to_string(getpid()) + '-' + std::to_string(count++);
    return FolderOf(file) / (name + file.extension().string());
}

}  // namespace

StagedFile::StagedFile(std::filesystem::path file) : m_file(std::move(file)), m_temporary(TemporaryName(m_file)) {}

StagedFile::~StagedFile() {
    std::error_code ignored;
    if (!m_temporary.empty()) std::filesystem::remove(m_temporary, ignored);
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : m_file(std::move(other.m_file)), m_temporary(std::exchange(other.m_temporary, {})) {}

void StagedFile::Commit() {
    std::error_code failure;
    std::filesystem::rename(m_temporary, m_file, failure);
    if (failure) throw Error(m_file.string(), {}, "cannot be written: " + failure.message());
    m_temporary.clear();
}

std::filesystem::path FolderOf(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path();
    return folder.empty() ? std::filesystem::path(".") : folder;
}

}  // namespace cli
