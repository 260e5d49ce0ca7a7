#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kel {

// The pictures and films of a folder, by name, in the order of their names; nothing where it cannot be read.
[[nodiscard]] std::vector<std::filesystem::path> OpenableFilesIn(const std::filesystem::path& folder);

// The files opened last, the last one first, kept in a file of the operator's own. What cannot be read or written of it
// is none: it is a comfort and no more.
class RecentFiles {
public:
    static constexpr std::size_t most = 12;

    // list: where they are kept; empty: nowhere
    explicit RecentFiles(std::filesystem::path list);
    // Those that are there still.
    [[nodiscard]] std::vector<std::filesystem::path> Files() const;
    // file: opened now
    void Add(const std::filesystem::path& file);

private:
    std::filesystem::path m_list;
    std::vector<std::filesystem::path> m_files;
};

// Where desktops keep what programs remember: below XDG_STATE_HOME, or ~/.local/state. Empty: there is no such place.
[[nodiscard]] std::filesystem::path RecentFilesPlace();

}  // namespace kel
