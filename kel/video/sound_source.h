#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace kel {

// What is heard of something, by its own time: two channels of float samples, left and right in turn. One thread at a
// time.
class SoundSource {
public:
    static constexpr int samplesPerSecond = 48000;
    static constexpr std::size_t channels = 2;

    SoundSource() = default;
    virtual ~SoundSource() = default;
    SoundSource(const SoundSource&) = delete;
    SoundSource& operator=(const SoundSource&) = delete;
    SoundSource(SoundSource&&) = delete;
    SoundSource& operator=(SoundSource&&) = delete;

    // Goes to a time, counted as the pictures' is; before the sound's begin there is silence.
    virtual void Seek(double seconds) = 0;
    // The samples that come next. Returns how many of each channel are there; fewer than asked for: the sound is over,
    // or has not come yet. What is damaged is passed over.
    virtual std::size_t Read(std::span<float> samples) = 0;
};

// Something that can be heard, which anybody may open on a thread of their own.
class SoundTrack {
public:
    SoundTrack() = default;
    virtual ~SoundTrack() = default;
    SoundTrack(const SoundTrack&) = delete;
    SoundTrack& operator=(const SoundTrack&) = delete;
    SoundTrack(SoundTrack&&) = delete;
    SoundTrack& operator=(SoundTrack&&) = delete;

    // Null: it has no sound that can be played, or none yet.
    [[nodiscard]] virtual std::unique_ptr<SoundSource> Open() const = 0;
    // What is not there may still come.
    [[nodiscard]] virtual bool IsLive() const = 0;
};

// A field's moment of what it shows, as sound is to follow it.
struct SoundMoment {
    std::shared_ptr<const SoundTrack> track = nullptr;  // null: nothing is heard
    double seconds = 0;                                 // of the track, for the picture that is shown
    bool isRunning = false;                             // onwards, at the speed at which it was taken
};

}  // namespace kel
