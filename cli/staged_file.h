#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "cli/file_kind.h"

namespace cli {

// A file that appears at its place whole or not at all: it is written under another name in the same folder, and
// Commit gives it its own. What is not committed is deleted, also when the process is ended by INT, TERM or HUP; what a
// killed process leaves behind is deleted by the next one that writes into the folder.
//
// A link is followed, and what it leads to is replaced. A file that is replaced hands on its mode and, as far as the
// system lets this account, its owner and group.
class StagedFile {
public:
    // Makes the temporary file, whose name has the file's ending and cannot be foreseen. Throws Error when there can be
    // none, or when what stands at the place is no regular file.
    explicit StagedFile(const std::filesystem::path& file);
    ~StagedFile();
    StagedFile(StagedFile&& other) noexcept;
    StagedFile& operator=(StagedFile&&) = delete;
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    [[nodiscard]] const std::filesystem::path& Temporary() const { return m_temporary; }
    [[nodiscard]] const std::filesystem::path& File() const { return m_file; }

    // Throws Error, naming the file, when not all of it can be written.
    void Write(std::span<const std::uint8_t> bytes) const;

    // On the disk, then under its name. Throws Error when the file cannot be put in place.
    void Commit();

    // Commits all of them. The names are given by a process of their own, so that a kill of this one leaves all files
    // or none in place. Throws Error when a file cannot be put in place; those before it are then there already.
    static void CommitAll(std::span<StagedFile> files);

private:
    void Finish() const;
    void Committed();

    std::filesystem::path m_file;
    std::filesystem::path m_place;      // what m_file leads to
    std::filesystem::path m_temporary;  // empty: committed or moved from
    int m_slot = -1;                    // in the list of what a signal deletes
};

}  // namespace cli
