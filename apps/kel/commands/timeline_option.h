#pragma once

#include "kel/session/player.h"

namespace CLI {
class App;
}

namespace kel {

// Whose time the fields of outputs follow.
enum class TimelineChoice {
    Usual,    // the film's where the window was drawn on one, the session's otherwise
    Video,    // the session's first video
    Session,  // every field, with all pauses
};

// Adds --timeline, which fills `choice` while the line is parsed.
void AddTimelineOption(CLI::App& command, TimelineChoice& choice);

// True: outputs are laid on the video's own time. What the window records over a picture or a film has only one thing
// to draw on, so there it is what people expect.
[[nodiscard]] bool FollowsVideo(TimelineChoice choice, const Session& session);

}  // namespace kel
