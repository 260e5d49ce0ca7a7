#pragma once

#include <cstdint>
#include <optional>

namespace kel {

// What happens to a video that plays: what is not said stays as it is.
struct VideoChange {
    std::optional<std::int64_t> frame;  // counted from 0
    std::optional<bool> play;           // false: the video stands still
    std::optional<bool> loop;           // true: the first frame follows the last, which otherwise stays
};

// Which frame of a video each field shows. From field 0 on it plays from its first frame, without a loop.
class VideoClock {
public:
    // frames: of the video, at least 1.  framesPerField: the video's frames per second over the fields per second,
    // above
    // 0
    VideoClock(std::int64_t frames, double framesPerField) : m_frames(frames), m_framesPerField(framesPerField) {}

    // From the last change on; `field` is not before it.
    [[nodiscard]] std::int64_t FrameAt(std::int64_t field) const;
    // True: it plays on towards a frame that is not shown yet.
    [[nodiscard]] bool IsRunning(std::int64_t field) const;
    [[nodiscard]] bool Loops() const { return m_loop; }
    [[nodiscard]] std::int64_t Frames() const { return m_frames; }

    // Happens in `field`, whose frame is the new one already. A frame beyond the video is its first or its last.
    void Change(const VideoChange& change, std::int64_t field);

private:
    std::int64_t m_frames;
    double m_framesPerField;
    std::int64_t m_changeField = 0;
    std::int64_t m_changeFrame = 0;
    bool m_plays = true;
    bool m_loop = false;
};

}  // namespace kel
