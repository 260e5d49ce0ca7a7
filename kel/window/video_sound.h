#pragma once

#include <memory>

#include "kel/video/sound_source.h"

namespace kel {

// Plays the sound of a video beside its pictures, which lead: where the two drift apart the sound starts anew. A
// machine without a way to play sound, and a video without any, are silent.
class VideoSound {
public:
    explicit VideoSound(std::shared_ptr<const SoundTrack> track);  // not null
    ~VideoSound();
    VideoSound(const VideoSound&) = delete;
    VideoSound& operator=(const VideoSound&) = delete;
    VideoSound(VideoSound&&) = delete;
    VideoSound& operator=(VideoSound&&) = delete;

    [[nodiscard]] const std::shared_ptr<const SoundTrack>& Track() const { return m_track; }
    // To be told of every field, by moments of its track. Returns at once.
    void Follow(const SoundMoment& moment);

    [[nodiscard]] bool IsThere() const;
    [[nodiscard]] bool IsMuted() const;
    void SetMuted(bool isMuted);

private:
    struct Device;
    void Silence();
    void Fill();

    std::shared_ptr<const SoundTrack> m_track;
    std::unique_ptr<Device> m_device;  // null: silent
};

}  // namespace kel
