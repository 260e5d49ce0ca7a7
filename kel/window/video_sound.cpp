#include "kel/window/video_sound.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

#include "kel/window/sound_device.h"

namespace kel {
namespace {

constexpr double mostQueued = 0.25;  // seconds: what a busy machine may leave it alone
constexpr double mostDrift = 0.15;   // seconds, from which on lips and words are seen apart

}  // namespace

struct VideoSound::Device {
    explicit Device(std::unique_ptr<SoundSource> sound) : reader(std::move(sound)) {}

    SoundDevice output;
    std::unique_ptr<SoundSource> reader;
    bool isMuted = false;
    bool isPlaying = false;
    bool isOver = false;  // all there is has been queued
    double queuedTo = 0;  // seconds of the video
};

VideoSound::VideoSound(std::shared_ptr<const SoundTrack> track) : m_track(std::move(track)) {
    auto reader = m_track->Open();
    if (!reader) return;
    m_device = std::make_unique<Device>(std::move(reader));
    if (!m_device->output.IsThere()) m_device.reset();
}

VideoSound::~VideoSound() = default;

bool VideoSound::IsThere() const { return m_device != nullptr; }

bool VideoSound::IsMuted() const { return m_device != nullptr && m_device->isMuted; }

void VideoSound::SetMuted(bool isMuted) {
    if (m_device) m_device->isMuted = isMuted;
}

void VideoSound::Silence() {
    if (!m_device->isPlaying) return;
    m_device->output.Silence();
    m_device->isPlaying = false;
}

void VideoSound::Fill() {
    std::vector<float> samples(SoundSource::channels * SoundSource::samplesPerSecond / 50);
    while (!m_device->isOver && m_device->output.Queued() < mostQueued) {
        const std::size_t count = m_device->reader->Read(samples);
        m_device->isOver = count * SoundSource::channels < samples.size();
        m_device->output.Queue(std::span(samples).first(count * SoundSource::channels));
        m_device->queuedTo += static_cast<double>(count) / SoundSource::samplesPerSecond;
    }
}

void VideoSound::Follow(const SoundMoment& moment) {
    if (!m_device) return;
    if (!moment.isRunning || m_device->isMuted) return Silence();
    const double heard = m_device->queuedTo - m_device->output.Queued();
    const bool isApart = !m_device->isOver && std::abs(heard - moment.seconds) > mostDrift;
    const bool isBack = m_device->isOver && moment.seconds < heard - mostDrift;
    if (m_device->isPlaying && (isApart || isBack)) Silence();
    if (!m_device->isPlaying) {
        m_device->reader->Seek(moment.seconds);
        m_device->queuedTo = moment.seconds;
        m_device->isOver = false;
        m_device->isPlaying = true;
        Fill();
        m_device->output.Play();
        return;
    }
    Fill();
}

}  // namespace kel
