#pragma once

#include <optional>

#include "kel/video/video_clock.h"
#include "kel/workspace/keys_table.h"

namespace kel {

// A video at the moment when a key is pressed.
struct VideoMoment {
    const VideoClock& clock;
    double framesPerSecond = 25;
    std::int64_t field = 0;  // the next one
};

// What an action does to a video; nothing: it is none of a video's.
[[nodiscard]] std::optional<VideoChange> ChangeFor(WorkspaceAction action, const VideoMoment& moment);

}  // namespace kel
