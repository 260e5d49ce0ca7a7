#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "kel/session/session.h"

namespace kel {

// Where the pictures go that a session itself saves: into one folder, beside what is there already.
class SessionSaves {
public:
    enum class Existing { Kept, Replaced };

    // folder: as the operator named it, then it is there; none: one in the current folder named after the session, made
    // when the session saves anything. Throws Error for a folder that cannot be, and for a file that would be replaced
    // although it should be kept, or that is no file.
    SessionSaves(const Session& session, const std::optional<std::filesystem::path>& folder, Existing existing);
    ~SessionSaves();  // takes a folder away that was made for nothing
    SessionSaves(const SessionSaves&) = delete;
    SessionSaves& operator=(const SessionSaves&) = delete;
    SessionSaves(SessionSaves&&) = delete;
    SessionSaves& operator=(SessionSaves&&) = delete;

    // name: of a save event
    [[nodiscard]] std::filesystem::path FileOf(const std::string& name) const { return m_folder / name; }

private:
    void MakeFolder(const Session& session);

    std::filesystem::path m_folder;
    bool m_isMade = false;
};

}  // namespace kel
