#include "kel/window/sound_device.h"

#include "kel/video/stereo_resampler.h"

namespace kel {
namespace {

constexpr double bytesOfSecond = StereoResampler::channels * sizeof(float) * StereoResampler::samplesPerSecond;

}  // namespace

SoundDevice::SoundDevice() {
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return;
    m_isOpen = true;
    SDL_AudioSpec wanted{};
    wanted.freq = StereoResampler::samplesPerSecond;
    wanted.format = AUDIO_F32SYS;
    wanted.channels = static_cast<Uint8>(StereoResampler::channels);
    wanted.samples = 1024;
    m_id = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
}

SoundDevice::~SoundDevice() {
    if (m_id != 0) SDL_CloseAudioDevice(m_id);
    if (m_isOpen) SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

double SoundDevice::Queued() const { return static_cast<double>(SDL_GetQueuedAudioSize(m_id)) / bytesOfSecond; }

void SoundDevice::Queue(std::span<const float> samples) {
    SDL_QueueAudio(m_id, samples.data(), static_cast<Uint32>(samples.size_bytes()));
}

void SoundDevice::Silence() {
    SDL_PauseAudioDevice(m_id, 1);
    SDL_ClearQueuedAudio(m_id);
}

}  // namespace kel
