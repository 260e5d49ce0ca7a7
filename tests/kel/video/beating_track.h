#pragma once

#include <cmath>
#include <memory>
#include <span>

#include "kel/video/sound_source.h"

namespace kel::testing {

// Each second of it is silent in its first half and a tone in its second.
constexpr double toneOfBeat = 1000;  // a second
[[nodiscard]] inline bool IsBeat(double seconds) { return seconds - std::floor(seconds) >= 0.5; }

class BeatingSound final : public SoundSource {
public:
    void Seek(double seconds) override { m_at = std::llround(seconds * samplesPerSecond); }
    std::size_t Read(std::span<float> samples) override {
        for (std::size_t i = 0; i < samples.size(); i += channels, ++m_at) {
            const double seconds = static_cast<double>(m_at) / samplesPerSecond;
            const double turn = std::fmod(seconds * toneOfBeat, 1.0) * 6.283185307179586;
            samples[i] = samples[i + 1] = IsBeat(seconds) ? static_cast<float>(0.5 * std::sin(turn)) : 0.0F;
        }
        return samples.size() / channels;
    }

private:
    std::int64_t m_at = 0;
};

class BeatingTrack final : public SoundTrack {
public:
    [[nodiscard]] std::unique_ptr<SoundSource> Open() const override { return std::make_unique<BeatingSound>(); }
    [[nodiscard]] bool IsLive() const override { return false; }
};

}  // namespace kel::testing
