#include "kel/video/video_clock.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

// Of a frame: 30000 / 1001 frames in 60000 / 1001 fields is a half that comes out a little less.
constexpr double roundingError = 1e-6;

}  // namespace

std::int64_t VideoClock::FrameAt(std::int64_t field) const {
    if (!m_plays) return m_changeFrame;
    const double passed = static_cast<double>(field - m_changeField) * m_framesPerField;
    const std::int64_t frame = m_changeFrame + static_cast<std::int64_t>(std::floor(passed + roundingError));
    return m_loop ? frame % m_frames : std::min(frame, m_frames - 1);
}

bool VideoClock::IsRunning(std::int64_t field) const { return m_plays && (m_loop || FrameAt(field) < m_frames - 1); }

void VideoClock::Change(const VideoChange& change, std::int64_t field) {
    m_changeFrame = std::clamp<std::int64_t>(change.frame.value_or(FrameAt(field)), 0, m_frames - 1);
    m_changeField = field;
    m_plays = change.play.value_or(m_plays);
    m_loop = change.loop.value_or(m_loop);
}

}  // namespace kel
