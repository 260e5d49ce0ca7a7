#include "kel/video/video_clock.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

// Of a frame: 30000 / 1001 frames in 60000 / 1001 fields is a half that comes out a little less.
constexpr double roundingError = 1e-6;

}  // namespace

double VideoClock::StartOf(std::int64_t frame) const {
    if (m_starts.empty()) return static_cast<double>(frame);
    const auto index = static_cast<std::size_t>(frame);
    return index < m_starts.size() ? m_starts[index] : m_starts.back() + 1;
}

std::int64_t VideoClock::FrameWithin(double start) const {
    if (m_starts.empty()) return static_cast<std::int64_t>(std::floor(start + roundingError));
    const auto after = std::ranges::upper_bound(m_starts, start + roundingError);
    return std::max<std::int64_t>(after - m_starts.begin() - 1, 0);
}

// Whoever sought a frame behind the out point plays on to the video's end.
std::int64_t VideoClock::Last() const { return m_changeFrame > m_last ? m_frames - 1 : m_last; }

std::int64_t VideoClock::FrameAt(std::int64_t field) const {
    if (!m_plays) return m_changeFrame;
    const double passed = static_cast<double>(field - m_changeField) * m_framesPerField * m_speed;
    const double end = StartOf(Last() + 1);
    // Even frames are counted from the change, so that hours add no rounding.
    double start = StartOf(m_changeFrame) + passed;
    if (start + roundingError < end) return FrameWithin(start);
    if (!m_loop) return Last();
    const double length = StartOf(m_last + 1) - StartOf(m_first);
    start = std::fmod(start + roundingError - end, length);
    return std::min(FrameWithin(StartOf(m_first) + start), m_last);
}

bool VideoClock::IsRunning(std::int64_t field) const { return m_plays && (m_loop || FrameAt(field) < Last()); }

void VideoClock::ChangePoints(const VideoChange& change) {
    if (change.in) {
        m_first = std::clamp<std::int64_t>(*change.in, 0, m_frames - 1);
        if (m_first > m_last) m_last = m_frames - 1;
    }
    if (!change.out) return;
    m_last = std::clamp<std::int64_t>(*change.out, 0, m_frames - 1);
    if (m_last < m_first) m_first = 0;
}

void VideoClock::Change(const VideoChange& change, std::int64_t field) {
    m_changeFrame = std::clamp<std::int64_t>(change.frame.value_or(FrameAt(field)), 0, m_frames - 1);
    m_changeField = field;
    m_plays = change.play.value_or(m_plays);
    m_loop = change.loop.value_or(m_loop);
    m_speed = std::clamp(change.speed.value_or(m_speed), slowestVideo, fastestVideo);
    ChangePoints(change);
}

}  // namespace kel
