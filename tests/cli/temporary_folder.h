#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace cli::testing {

// An empty folder, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kel_XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }
    [[nodiscard]] std::ptrdiff_t Entries() const {
        return std::distance(std::filesystem::directory_iterator(m_path), std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path m_path;
};

inline void WriteText(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

inline std::string ReadText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace cli::testing
