#include "kel/video/stream_sound.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

constexpr double longestGap = 1.0;     // seconds of fields left out, through which the sound goes on
constexpr double longestWait = 0.7;    // seconds that live sound may be later than its pictures
constexpr double nearPictures = 0.06;  // seconds: live pictures come as unevenly as that
constexpr double farPictures = 0.3;    // seconds: no unevenness
constexpr int mostPicturesApart = 5;   // in a row

std::int64_t StreamSamples(double seconds) { return std::llround(seconds * SoundSource::samplesPerSecond); }
double StreamSeconds(std::int64_t samples) { return static_cast<double>(samples) / SoundSource::samplesPerSecond; }

}  // namespace

bool StreamSound::IsThere(const SoundMoment& moment) {
    const bool isOther = moment.track != m_track;
    if (isOther) {
        m_track = moment.track;
        m_source.reset();
        m_isPlaying = false;
    }
    if (m_track && !m_source && (isOther || m_track->IsLive())) m_source = m_track->Open();
    return m_source != nullptr;
}

void StreamSound::Silence(std::int64_t until) {
    if (until <= m_at) return;
    m_samples.resize(m_samples.size() + SoundSource::channels * static_cast<std::size_t>(until - m_at), 0.0F);
    m_at = until;
}

// A picture is shown for as long as fields take until the next one, so only a new one says how far the two are apart.
bool StreamSound::IsApart(const SoundMoment& moment, std::int64_t from, double tolerance) {
    if (moment.seconds == m_lastSeconds) return false;
    const double distance = std::abs(StreamSeconds(m_sourceAt + (from - m_at)) - moment.seconds);
    m_apart = distance > tolerance ? m_apart + 1 : 0;
    return distance > std::max(farPictures, tolerance) || m_apart >= mostPicturesApart;
}

// The source goes to where it is heard from m_at on, so that the moment is heard at `from`.
void StreamSound::Follow(const SoundMoment& moment, std::int64_t from) {
    if (!m_isPlaying) Silence(from);
    m_sourceAt = StreamSamples(moment.seconds) - (from - m_at);
    if (m_sourceAt < 0) {
        Silence(m_at - m_sourceAt);
        m_sourceAt = 0;
    }
    m_source->Seek(StreamSeconds(m_sourceAt));
    m_apart = 0;
    m_isPlaying = true;
}

void StreamSound::Read(std::int64_t from, std::int64_t until) {
    if (until <= m_at) return;
    const auto wanted = static_cast<std::size_t>(until - m_at);
    const std::size_t before = m_samples.size();
    m_samples.resize(before + SoundSource::channels * wanted);
    const std::size_t count = m_source->Read(std::span(m_samples).subspan(before));
    m_samples.resize(before + SoundSource::channels * count);
    m_at += static_cast<std::int64_t>(count);
    m_sourceAt += static_cast<std::int64_t>(count);
    if (count == wanted) return;
    const std::int64_t latest = m_track->IsLive() ? from - StreamSamples(longestWait) : until;
    if (latest <= m_at) return;
    m_sourceAt += latest - m_at;
    Silence(latest);
    if (m_track->IsLive()) m_source->Seek(StreamSeconds(m_sourceAt));
}

StreamSound::Piece StreamSound::Take(const SoundMoment& moment, double from, double to) {
    m_samples.clear();
    const std::int64_t begin = StreamSamples(from);
    const std::int64_t end = StreamSamples(to);
    if (m_at < 0 || begin - m_at > StreamSamples(longestGap + 2 * (to - from))) {
        m_at = begin;
        m_isPlaying = false;
    }
    const std::int64_t first = m_at;
    if (!IsThere(moment) || !moment.isRunning) {
        m_isPlaying = false;
        Silence(end);
    } else {
        if (!m_isPlaying || IsApart(moment, begin, std::max(nearPictures, 2 * (to - from)))) Follow(moment, begin);
        Read(begin, end);
    }
    m_lastSeconds = moment.seconds;
    return {first, m_samples};
}

}  // namespace kel
