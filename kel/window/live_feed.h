#pragma once

#include <cstdint>

#include "kel/outputs/live_outputs.h"
#include "kel/workspace/workspace.h"

namespace kel {

// Gives the fields of the workspace to what is written while one draws.
class LiveFeed {
public:
    //   live          borrowed; null: nothing is written
    //   followsVideo  it has a field for each frame of the workspace's video
    LiveFeed(LiveOutputs* live, bool followsVideo) : m_live(live), m_followsVideo(followsVideo) {}

    // A session's own events go by undrawn, and where nothing can be drawn the outputs are refused afterwards.
    void Start(Workspace& workspace);
    // So many fields have just been run, and the last of them is drawn. Where the machine was late, fields went by
    // undrawn; then all is made from the recording when the window is closed.
    void Take(Workspace& workspace, int fields);
    // The window is closed. Frames of the video that have not been shown are missing in what was written.
    void End(const Workspace& workspace);
    // Another file is open; what was written shows the first one.
    void EndEarly();

private:
    void TakeFrame(Workspace& workspace);

    LiveOutputs* m_live;
    bool m_followsVideo;
    bool m_isOver = false;
    std::int64_t m_frame = -1;  // the last one of the video that what is written has
};

}  // namespace kel
