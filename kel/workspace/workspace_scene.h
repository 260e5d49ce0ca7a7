#pragma once

#include <filesystem>
#include <string>

#include "kel/scene/host.h"
#include "kel/session/session.h"

namespace kel {

// What lies on the workspace: a session of its own, or one made around a picture or a video.
struct WorkspaceScene {
    std::string text;  // the session's JSON; its relative paths start at session.file
    Session session;
};

// Opens a picture, a video or a session, whichever the file is. A picture or a video fills the window, with a square
// pane in front of it that is seen through and carries the plug-in: a brush's dabs are then round on the screen.
//   module   what the plug-in's module registers: of the workspace's own values for the pen it takes those that fit
//   largest  a picture is shown at its own size or smaller, so that it fits; a small one is enlarged
// Throws Error naming the file and the reason.
[[nodiscard]] WorkspaceScene OpenWorkspaceScene(const std::filesystem::path& file, const Registration& module,
                                                WindowSize largest);

// True: the file is opened as a session. Throws Error for what cannot be read or is no regular file.
[[nodiscard]] bool IsSessionFile(const std::filesystem::path& file);

// The window of a picture of that size: its proportions, at most `largest`, and not needlessly small.
[[nodiscard]] WindowSize WindowFor(WindowSize picture, WindowSize largest);

}  // namespace kel
