#include "kel/session/video_on_container.h"

#include <algorithm>
#include <utility>

#include "cli/error.h"

namespace kel {
namespace {

VideoClock ClockOf(const VideoReader& video, double fieldsPerSecond) {
    const double framesPerField = video.FramesPerSecond() / fieldsPerSecond;
    std::vector<double> starts = video.UnevenStarts();
    if (starts.empty()) return {video.FrameCount(), framesPerField};
    return {std::move(starts), framesPerField};
}

}  // namespace

VideoShow::VideoShow(VideoReader video, ObjectId container, double fieldsPerSecond,
                     std::shared_ptr<const SoundTrack> track)
    : m_container(container),
      m_frames(std::move(video)),
      m_framesPerSecond(m_frames.Reader().FramesPerSecond()),
      m_clock(ClockOf(m_frames.Reader(), fieldsPerSecond)),
      m_track(std::move(track)) {}

// Faster and slower than it was taken there is none.
SoundMoment VideoShow::Heard(std::int64_t field) const {
    return {m_track, m_clock.StartOf(m_clock.FrameAt(field)) / m_framesPerSecond,
            m_clock.IsRunning(field) && m_clock.Speed() == 1};
}

// As many different ones as are decoded ahead, at the present speed, in the present loop.
std::vector<std::int64_t> VideoShow::ComingFrames(std::int64_t field) const {
    constexpr std::size_t most = 3;
    constexpr int mostFields = 64;  // of slow motion over frames that come slowly
    std::vector<std::int64_t> coming;
    const std::int64_t now = m_clock.FrameAt(field);
    for (int later = 1; later <= mostFields && coming.size() < most; ++later) {
        const std::int64_t frame = m_clock.FrameAt(field + later);
        if (frame != now && std::ranges::find(coming, frame) == coming.end()) coming.push_back(frame);
    }
    // One that stands still is stepped through, most often onwards.
    if (coming.empty() && now + 1 < m_clock.Frames()) coming.push_back(now + 1);
    return coming;
}

void VideoShow::Show(Host& host, std::int64_t field) {
    const std::int64_t frame = m_clock.FrameAt(field);
    if (frame != m_shown) (void)Show(host, frame, ComingFrames(field));
}

bool VideoShow::ShowFrame(Host& host, std::int64_t frame) {
    std::vector<std::int64_t> coming;
    for (std::int64_t next = frame + 1; next < std::min(frame + 4, m_clock.Frames()); ++next) coming.push_back(next);
    return Show(host, frame, coming);
}

bool VideoShow::Show(Host& host, std::int64_t frame, const std::vector<std::int64_t>& coming) {
    if (frame == m_shown) return false;
    m_shown = frame;
    Put(host, m_frames.Take(frame, coming));
    return true;
}

void VideoShow::Put(Host& host, picture_io::Picture picture) {
    host.ExchangePicture(m_container, picture, !m_frames.Reader().HasAlpha());
    m_frames.GiveBack(std::move(picture));
}

void VideoShow::SetConversion(VideoConversion conversion) {
    m_conversion = conversion;
    m_frames.SetConversion(conversion);
}

bool VideoShow::ShowExactly(Host& host, std::int64_t field) {
    if (m_conversion == VideoConversion::Exact) return false;
    m_frames.SetConversion(VideoConversion::Exact);
    picture_io::Picture picture = m_frames.Take(m_clock.FrameAt(field), {});
    m_frames.SetConversion(m_conversion);
    Put(host, std::move(picture));
    return true;
}

}  // namespace kel
