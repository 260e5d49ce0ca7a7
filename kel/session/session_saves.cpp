#include "kel/session/session_saves.h"

#include <algorithm>
#include <system_error>
#include <variant>

#include "cli/error.h"

namespace kel {
namespace {

namespace fs = std::filesystem;

// "show" for "show.json"; a file that is all dots gives no name.
fs::path FolderNamedAfter(const Session& session) {
    const fs::path stem = session.file.stem();
    return stem.empty() || stem.string().starts_with('.') ? fs::path("session") : stem;
}

void CheckFile(const fs::path& file, SessionSaves::Existing existing) {
    std::error_code failure;
    const fs::file_status status = fs::symlink_status(file, failure);  // a link would lead elsewhere
    if (status.type() == fs::file_type::not_found) return;
    if (status.type() != fs::file_type::regular)
        throw cli::Error(file.string(), {}, "cannot be written: what has this name is not a regular file");
    if (existing == SessionSaves::Existing::Kept)
        throw cli::Error(file.string(), {}, "is there already; --overwrite lets the session replace it");
}

}  // namespace

SessionSaves::SessionSaves(const Session& session, const std::optional<fs::path>& folder, Existing existing)
    : m_folder(folder.value_or(FolderNamedAfter(session))) {
    const auto isSave = [](const SessionEvent& event) { return std::holds_alternative<SaveEvent>(event.what); };
    if (!folder && std::ranges::any_of(session.events, isSave)) MakeFolder(session);
    for (const SessionEvent& event : session.events)
        if (const auto* save = std::get_if<SaveEvent>(&event.what)) CheckFile(FileOf(save->name), existing);
}

SessionSaves::~SessionSaves() {
    std::error_code ignored;
    if (m_isMade) fs::remove(m_folder, ignored);  // which spares one that has something in it
}

void SessionSaves::MakeFolder(const Session& session) {
    std::error_code failure;
    const fs::file_status status = fs::symlink_status(m_folder, failure);
    if (status.type() == fs::file_type::directory) return;
    m_isMade = status.type() == fs::file_type::not_found && fs::create_directory(m_folder, failure);
    if (m_isMade) return;
    throw cli::Error(session.file.string(), {},
                     "the folder " + m_folder.string() + " for what it saves cannot be made; --saves names another");
}

}  // namespace kel
