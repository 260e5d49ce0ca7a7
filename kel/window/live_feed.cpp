#include "kel/window/live_feed.h"

namespace kel {

void LiveFeed::Start(Workspace& workspace) {
    const bool canFollow = !workspace.IsPlayingSession() && !workspace.PlugIns().empty();
    if (m_live == nullptr || !canFollow) return;
    const double rate = m_followsVideo ? workspace.Video()->FramesPerSecond() : workspace.FieldsPerSecond();
    m_live->Start(workspace.TheHost().Window(), rate);
}

void LiveFeed::Take(Workspace& workspace, int fields) {
    if (m_live == nullptr || m_isOver) return;
    if (m_followsVideo)
        TakeFrame(workspace);
    else if (fields == 1)
        m_live->TakeField(workspace.TheHost());
    else if (workspace.Live() != nullptr)
        // What was not drawn is never seen again: late fields have the picture of the last of them.
        for (int late = 0; late < fields; ++late) m_live->TakeField(workspace.TheHost());
    else
        m_live->Abandon();
}

// A video that is played once and straight on, with any pauses, can be written as it goes. Jumps are for the recording.
void LiveFeed::TakeFrame(Workspace& workspace) {
    const std::int64_t frame = workspace.Video()->Shown();
    if (frame == m_frame + 1)
        m_live->TakeField(workspace.TheHost());
    else if (frame == m_frame)
        m_live->TakeFieldAgain(workspace.TheHost());
    else
        m_live->Abandon();
    m_frame = frame;
}

void LiveFeed::End(const Workspace& workspace) {
    if (m_live == nullptr || m_isOver || !m_followsVideo) return;
    if (m_frame + 1 < workspace.Video()->Clock().Frames()) m_live->Abandon();
}

// Every field of a picture or a session is there; of a video only if it was at its end.
void LiveFeed::EndEarly() {
    if (m_live != nullptr && !m_isOver && m_followsVideo) m_live->Abandon();
    m_isOver = true;
}

}  // namespace kel
