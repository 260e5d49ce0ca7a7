#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace kel {

// What happens to a video that plays: what is not said stays as it is.
struct VideoChange {
    std::optional<std::int64_t> frame;    // counted from 0
    std::optional<bool> play;             // false: the video stands still
    std::optional<bool> loop;             // true: the first frame follows the last, which otherwise stays
    std::optional<double> speed = {};     // slowestVideo .. fastestVideo; 1: as it was taken
    std::optional<std::int64_t> in = {};  // the first frame of what is played; behind the last one that becomes the end
    std::optional<std::int64_t> out = {};  // the last one; before the first one that becomes the start
};
constexpr double slowestVideo = 0.125;
constexpr double fastestVideo = 4;

// Which frame of a video each field shows. From field 0 on it plays from its first frame, without a loop.
class VideoClock {
public:
    // frames: of the video, at least 1.  framesPerField: the video's frames per second over the fields per second,
    // above 0
    VideoClock(std::int64_t frames, double framesPerField)
        : m_frames(frames), m_framesPerField(framesPerField), m_last(frames - 1) {}
    // Frames that come unevenly. starts: when each of them is shown, from 0 on, in mean lengths of a frame
    VideoClock(std::vector<double> starts, double framesPerField)
        : VideoClock(static_cast<std::int64_t>(starts.size()), framesPerField) {
        m_starts = std::move(starts);
    }

    // From the last change on; `field` is not before it.
    [[nodiscard]] std::int64_t FrameAt(std::int64_t field) const;
    // When a frame is shown, in mean lengths of a frame; also of the one behind the last.
    [[nodiscard]] double StartOf(std::int64_t frame) const;
    // True: it plays on towards a frame that is not shown yet.
    [[nodiscard]] bool IsRunning(std::int64_t field) const;
    [[nodiscard]] bool Loops() const { return m_loop; }
    [[nodiscard]] std::int64_t Frames() const { return m_frames; }
    [[nodiscard]] double Speed() const { return m_speed; }
    [[nodiscard]] std::int64_t In() const { return m_first; }
    [[nodiscard]] std::int64_t Out() const { return m_last; }

    // Happens in `field`, whose frame is the new one already. A frame beyond the video is its first or its last.
    void Change(const VideoChange& change, std::int64_t field);

private:
    void ChangePoints(const VideoChange& change);
    [[nodiscard]] std::int64_t FrameWithin(double start) const;
    [[nodiscard]] std::int64_t Last() const;

    std::int64_t m_frames;
    double m_framesPerField;
    std::vector<double> m_starts;  // empty: frames come evenly
    std::int64_t m_changeField = 0;
    std::int64_t m_changeFrame = 0;
    double m_speed = 1;
    std::int64_t m_first = 0;
    std::int64_t m_last;
    bool m_plays = true;
    bool m_loop = false;
};

}  // namespace kel
