#pragma once

#include "kel/session/session_access.h"

namespace kel {

// Counts what a session's window, pictures, plug-ins and the strokes that are kept of them take in memory all together,
// before any of it is taken. Throws Error when that is more than the permissions allow, and for a picture that the
// session does not get.
void CheckMemory(const Session& session, const SessionAccess& access, const SessionPermissions& permissions);

// The same for a picture that is to be opened without a session. Throws Error; what is no picture passes.
void CheckPictureMemory(const std::filesystem::path& file, const SessionPermissions& permissions);

}  // namespace kel
