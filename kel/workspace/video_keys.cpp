#include "kel/workspace/video_keys.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

constexpr double jumpSeconds = 5;

VideoChange Frame(std::int64_t frame) {
    VideoChange change;
    change.frame = frame;
    return change;
}
VideoChange Stand(std::int64_t frame) {
    VideoChange change = Frame(frame);
    change.play = false;
    return change;
}
VideoChange Speed(double speed) {
    VideoChange change;
    change.speed = std::clamp(speed, slowestVideo, fastestVideo);
    return change;
}

// From the end it goes on from where it began.
VideoChange PauseOrGoOn(const VideoClock& clock, std::int64_t field) {
    const std::int64_t frame = clock.FrameAt(field);
    if (clock.IsRunning(field)) return Stand(frame);
    const bool isAtEnd = frame == clock.Out() || frame == clock.Frames() - 1;
    VideoChange change = Frame(isAtEnd ? clock.In() : frame);
    change.play = true;
    return change;
}

}  // namespace

std::optional<VideoChange> ChangeFor(WorkspaceAction action, const VideoMoment& moment) {
    const VideoClock& clock = moment.clock;
    const std::int64_t frame = clock.FrameAt(moment.field);
    const std::int64_t last = clock.Frames() - 1;
    const auto jump = static_cast<std::int64_t>(std::lround(jumpSeconds * moment.framesPerSecond));
    VideoChange change;
    switch (action) {
        case WorkspaceAction::Pause:
            return PauseOrGoOn(clock, moment.field);
        case WorkspaceAction::Step:
            return Stand(std::min(frame + 1, last));
        case WorkspaceAction::StepBack:
            return Stand(std::max<std::int64_t>(frame - 1, 0));
        case WorkspaceAction::Start:
            return Frame(clock.In());
        case WorkspaceAction::Loop:
            change.loop = !clock.Loops();
            return change;
        case WorkspaceAction::Jump:
            return Frame(std::min(frame + jump, last));
        case WorkspaceAction::JumpBack:
            return Frame(std::max<std::int64_t>(frame - jump, 0));
        case WorkspaceAction::Slower:
            return Speed(clock.Speed() / 2);
        case WorkspaceAction::Faster:
            return Speed(clock.Speed() * 2);
        case WorkspaceAction::MarkIn:
            change.in = frame;
            return change;
        case WorkspaceAction::MarkOut:
            change.out = frame;
            return change;
        case WorkspaceAction::NoMarks:
            change.in = 0;
            change.out = last;
            return change;
        default:
            return std::nullopt;
    }
}

}  // namespace kel
