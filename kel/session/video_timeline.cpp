#include "kel/session/video_timeline.h"

#include <algorithm>
#include <utility>

namespace kel {
namespace {

constexpr std::int64_t none = -1;

// For each frame the last field that shows it.
std::vector<std::int64_t> LastFields(const Session& session, std::size_t container, VideoClock clock) {
    std::vector<std::int64_t> fields(static_cast<std::size_t>(clock.Frames()), none);
    auto event = session.events.begin();
    for (std::int64_t field = 0; field < session.fields; ++field) {
        for (; event != session.events.end() && event->field <= field; ++event)
            if (const auto* video = std::get_if<VideoEvent>(&event->what); video && video->container == container)
                clock.Change(video->change, field);
        fields[static_cast<std::size_t>(clock.FrameAt(field))] = field;
    }
    return fields;
}

}  // namespace

std::optional<VideoTimeline> TimelineOf(const Session& session, const Player& player) {
    const auto containers = player.Containers();
    const auto found =
        std::ranges::find_if(containers, [](const auto& container) { return container.video != nullptr; });
    if (found == containers.end()) return std::nullopt;
    VideoTimeline timeline;
    timeline.container = static_cast<std::size_t>(found - containers.begin());
    const VideoShow& video = *found->video;
    timeline.framesPerSecond = video.FramesPerSecond();
    const std::vector<std::int64_t> fields = LastFields(session, timeline.container, video.Clock());
    std::int64_t field = 0;
    std::int64_t seen = 0;  // frames
    for (std::int64_t number = 0; number < video.Clock().Frames(); ++number) {
        const std::int64_t frame = video.FrameAtTime(static_cast<double>(number) / timeline.framesPerSecond);
        // Where frames come unevenly some fall between two steps; what was drawn on them is seen on the next.
        for (; seen <= frame; ++seen)
            if (fields[static_cast<std::size_t>(seen)] != none) field = fields[static_cast<std::size_t>(seen)];
        timeline.steps.push_back({frame, field});
    }
    return timeline;
}

bool TimelinePlay::Show(const VideoTimeline::Step& step) {
    const bool startsAnew = m_stage.player->NextField() > step.field + 1;
    if (startsAnew) {
        m_stage.player.reset();  // borrows the host
        m_stage.player.reset();  // while its host is still there
        m_stage = m_makeStage();
    }
    Player& player = *m_stage.player;
    while (player.NextField() <= step.field)
        (void)player.PlayField(player.NextField() == step.field ? Player::Rendering::Wanted
                                                                : Player::Rendering::NotWanted);
    player.ShowVideoFrame(m_timeline.container, step.frame);
    return startsAnew;
}

}  // namespace kel
