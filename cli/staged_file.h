#pragma once

#include <filesystem>

namespace cli {

// A file that appears at its place whole or not at all: it is written under another name in the same folder, and
// Commit gives it its own. What is not committed is deleted.
class StagedFile {
public:
    // Touches nothing yet. The temporary name has the file's ending, and no two of one process are alike.
    explicit StagedFile(std::filesystem::path file);
    ~StagedFile();
    StagedFile(StagedFile&& other) noexcept;
    StagedFile& operator=(StagedFile&&) = delete;
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    [[nodiscard]] const std::filesystem::path& Temporary() const { return m_temporary; }
    [[nodiscard]] const std::filesystem::path& File() const { return m_file; }

    // Throws Error when the file cannot be put in place.
    void Commit();

private:
    std::filesystem::path m_file;
    std::filesystem::path m_temporary;  // empty: committed or moved from
};

// The folder that a file is in; "." where its name has none.
[[nodiscard]] std::filesystem::path FolderOf(const std::filesystem::path& file);

}  // namespace cli
