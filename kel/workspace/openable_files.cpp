#include "kel/workspace/openable_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "kel/outputs/output_format.h"
#include "picture_io/picture_format.h"

namespace kel {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostFiles = 500;  // of a folder; more are not found in a list

bool IsOpenable(const fs::path& file) { return FormatOfOutput(file) != nullptr; }

}  // namespace

std::vector<fs::path> OpenableFilesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure)) {
        std::error_code ignored;
        const bool isHidden = entry->path().filename().string().starts_with('.');
        if (!isHidden && entry->is_regular_file(ignored) && IsOpenable(entry->path())) files.push_back(entry->path());
    }
    std::ranges::sort(files);
    if (files.size() > mostFiles) files.resize(mostFiles);
    return files;
}

RecentFiles::RecentFiles(fs::path list) : m_list(std::move(list)) {
    std::ifstream stream(m_list);
    for (std::string line; m_files.size() < most && std::getline(stream, line);)
        if (!line.empty()) m_files.emplace_back(line);
}

std::vector<fs::path> RecentFiles::Files() const {
    std::vector<fs::path> there = m_files;
    std::error_code ignored;
    std::erase_if(there, [&](const fs::path& file) { return !fs::is_regular_file(file, ignored); });
    return there;
}

void RecentFiles::Add(const fs::path& file) {
    std::error_code failure;
    const fs::path whole = fs::absolute(file, failure).lexically_normal();
    // A name that does not fit on a line would come back as two.
    if (failure || m_list.empty() || whole.string().find('\n') != std::string::npos) return;
    std::erase(m_files, whole);
    m_files.insert(m_files.begin(), whole);
    if (m_files.size() > most) m_files.resize(most);
    fs::create_directories(m_list.parent_path(), failure);
    // Written aside and put in its place, so that a full disk leaves the list that was there.
    const fs::path aside = m_list.string() + ".new";
    std::ofstream stream(aside, std::ios::trunc);
    for (const fs::path& each : m_files) stream << each.string() << '\n';
    stream.close();
    if (stream)
        fs::rename(aside, m_list, failure);
    else
        fs::remove(aside, failure);
}

fs::path RecentFilesPlace() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && *state == '/') return fs::path(state) / "kel" / "recent";
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return {};
    return fs::path(home) / ".local" / "state" / "kel" / "recent";
}

}  // namespace kel
