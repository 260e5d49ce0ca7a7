#pragma once

#include "kel/session/session_access.h"

namespace kel {

// Counts what a session's window, pictures and plug-ins take in memory all together, before any of it is taken. Throws
// Error when that is more than the permissions allow, and for a picture that the session does not get.
void CheckMemory(const Session& session, const SessionAccess& access, const SessionPermissions& permissions);

}  // namespace kel
