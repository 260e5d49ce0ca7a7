#pragma once

#include <SDL.h>

#include <span>

namespace kel {

// A device that sound can be queued on, as kel/video/stereo_resampler.h makes it; silent until it is let go.
class SoundDevice {
public:
    SoundDevice();
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;
    SoundDevice(SoundDevice&&) = delete;
    SoundDevice& operator=(SoundDevice&&) = delete;

    [[nodiscard]] bool IsThere() const { return m_id != 0; }
    [[nodiscard]] double Queued() const;  // seconds
    void Queue(std::span<const float> samples);
    void Play() { SDL_PauseAudioDevice(m_id, 0); }
    void Silence();  // and forgets what is queued

private:
    SDL_AudioDeviceID m_id = 0;  // 0: there is none
    bool m_isOpen = false;
};

}  // namespace kel
