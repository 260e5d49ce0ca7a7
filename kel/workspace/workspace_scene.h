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
// The scene is as large as the picture, whatever the display, so what leaves it has the picture's own pixels.
//   module   what the plug-in's module registers: of the workspace's own values for the pen it takes those that fit
// Throws Error naming the file and the reason.
[[nodiscard]] WorkspaceScene OpenWorkspaceScene(const std::filesystem::path& file, const Registration& module);

// Around live pictures, of that size and rate; they are named, and whoever reads the scene opens nothing.
//   name  for people (kel/live/live_name.h)
struct ScenePictures {
    std::string name;
    WindowSize size;
    double framesPerSecond = 25;
};
[[nodiscard]] WorkspaceScene LiveWorkspaceScene(const ScenePictures& live, const Registration& module);

// The same around a video that need not be there yet; its name is a path.
[[nodiscard]] WorkspaceScene VideoWorkspaceScene(const ScenePictures& video, const Registration& module);

// True: the file is opened as a session. Throws Error for what cannot be read or is no regular file.
[[nodiscard]] bool IsSessionFile(const std::filesystem::path& file);

}  // namespace kel
