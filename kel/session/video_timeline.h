#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "kel/session/player.h"

namespace kel {

// A session seen from its first video: what stands on each of its frames when nothing happens to it any more. So ink
// lies on the video's own time, and the operator's pauses, jumps and repeats leave no trace.
struct VideoTimeline {
    struct Step {
        std::int64_t frame = 0;  // of the video
        std::int64_t field = 0;  // the last one that shows it; where none does: as the frame before
    };
    std::size_t container = 0;  // with the video, index in the session
    double framesPerSecond = 0;
    std::vector<Step> steps;  // from the video's first moment to its last, evenly spaced
};

// player: has played nothing yet. Nothing: the session has no video.
[[nodiscard]] std::optional<VideoTimeline> TimelineOf(const Session& session, const Player& player);

// Plays a session along its video. Fields that show an earlier frame than others before them take another play from the
// start, without drawing.
class TimelinePlay {
public:
    struct Stage {
        std::unique_ptr<Host> host;  // ends after the player
        std::unique_ptr<Player> player;
    };
    // makeStage: a fresh host with a player that has played nothing, each time; the session is the timeline's own.
    TimelinePlay(VideoTimeline timeline, Stage first, std::function<Stage()> makeStage)
        : m_timeline(std::move(timeline)), m_stage(std::move(first)), m_makeStage(std::move(makeStage)) {}

    // The host's picture is that of the step. True: the host is another one than for the step before. Throws Error for
    // a damaged frame.
    bool Show(const VideoTimeline::Step& step);
    [[nodiscard]] const VideoTimeline& Timeline() const { return m_timeline; }
    [[nodiscard]] Host& TheHost() { return *m_stage.host; }
    [[nodiscard]] Player& ThePlayer() { return *m_stage.player; }

private:
    VideoTimeline m_timeline;
    Stage m_stage;
    std::function<Stage()> m_makeStage;
};

}  // namespace kel
