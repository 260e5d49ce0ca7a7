#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kel/workspace/openable_files.h"
#include "kel/workspace/picture_area.h"

namespace kel {

// A page over the picture with the files opened last and those beside the present one, to open another.
class OpenPage {
public:
    // present: the file that is open
    void Open(const std::filesystem::path& present, const RecentFiles& recent);
    void Close() { m_isOpen = false; }
    [[nodiscard]] bool IsOpen() const { return m_isOpen; }

    // Shows it, and returns the file or the name of live pictures that was chosen, once.
    [[nodiscard]] std::optional<std::string> Show(const PictureArea& area);

private:
    struct Row {
        std::filesystem::path file;
        bool isRecent = false;
    };
    [[nodiscard]] bool Fits(const Row& row) const;
    [[nodiscard]] std::optional<std::string> ShowRows(bool isEntered);

    std::vector<Row> m_rows;
    std::array<char, 1024> m_filter{};  // or an address
    bool m_isOpen = false;
    bool m_isFresh = false;  // was opened since it was shown last
};

}  // namespace kel
