#include "kel/window/video_sound.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "kel/video/sound_reader.h"

namespace kel {
namespace {

constexpr double mostQueued = 0.25;  // seconds: what a busy machine may leave it alone
constexpr double mostDrift = 0.15;   // seconds, from which on lips and words are seen apart
constexpr std::size_t sampleBytes = SoundReader::channels * sizeof(float);  // of both channels

}  // namespace

struct VideoSound::Device {
    explicit Device(std::unique_ptr<SoundReader> sound) : reader(std::move(sound)) {
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return;
        isOpen = true;
        SDL_AudioSpec wanted{};
        wanted.freq = SoundReader::samplesPerSecond;
        wanted.format = AUDIO_F32SYS;
        wanted.channels = static_cast<Uint8>(SoundReader::channels);
        wanted.samples = 1024;
        id = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    }
    ~Device() {
        if (id != 0) SDL_CloseAudioDevice(id);
        if (isOpen) SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    Device(Device&&) = delete;
    Device& operator=(Device&&) = delete;

    [[nodiscard]] double Queued() const {
        return static_cast<double>(SDL_GetQueuedAudioSize(id)) / sampleBytes / SoundReader::samplesPerSecond;
    }

    std::unique_ptr<SoundReader> reader;
    SDL_AudioDeviceID id = 0;  // 0: there is none
    bool isOpen = false;
    bool isMuted = false;
    bool isPlaying = false;
    bool isOver = false;  // all there is has been queued
    double queuedTo = 0;  // seconds of the video
};

VideoSound::VideoSound(const std::filesystem::path& video) {
    auto reader = SoundReader::Open(video);
    if (!reader) return;
    m_device = std::make_unique<Device>(std::move(reader));
    if (m_device->id == 0) m_device.reset();
}

VideoSound::~VideoSound() = default;

bool VideoSound::IsThere() const { return m_device != nullptr; }

bool VideoSound::IsMuted() const { return m_device != nullptr && m_device->isMuted; }

void VideoSound::SetMuted(bool isMuted) {
    if (m_device) m_device->isMuted = isMuted;
}

void VideoSound::Silence() {
    if (!m_device->isPlaying) return;
    SDL_PauseAudioDevice(m_device->id, 1);
    SDL_ClearQueuedAudio(m_device->id);
    m_device->isPlaying = false;
}

void VideoSound::Fill() {
    std::vector<float> samples(SoundReader::channels * SoundReader::samplesPerSecond / 50);
    while (!m_device->isOver && m_device->Queued() < mostQueued) {
        const std::size_t count = m_device->reader->Read(samples);
        m_device->isOver = count * SoundReader::channels < samples.size();
        SDL_QueueAudio(m_device->id, samples.data(), static_cast<Uint32>(count * sampleBytes));
        m_device->queuedTo += static_cast<double>(count) / SoundReader::samplesPerSecond;
    }
}

void VideoSound::Follow(const SoundMoment& moment) {
    if (!m_device) return;
    if (!moment.isRunning || m_device->isMuted) return Silence();
    const double heard = m_device->queuedTo - m_device->Queued();
    const bool isApart = !m_device->isOver && std::abs(heard - moment.seconds) > mostDrift;
    const bool isBack = m_device->isOver && moment.seconds < heard - mostDrift;
    if (m_device->isPlaying && (isApart || isBack)) Silence();
    if (!m_device->isPlaying) {
        m_device->reader->Seek(moment.seconds);
        m_device->queuedTo = moment.seconds;
        m_device->isOver = false;
        m_device->isPlaying = true;
        Fill();
        SDL_PauseAudioDevice(m_device->id, 0);
        return;
    }
    Fill();
}

}  // namespace kel
