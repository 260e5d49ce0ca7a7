#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

namespace kel {

// A video at one moment, as its sound is to follow it.
struct SoundMoment {
    double seconds = 0;      // since the video's first frame
    bool isRunning = false;  // onwards, at the speed at which it was taken
};

// Plays the sound of a video beside its pictures, which lead: where the two drift apart the sound starts anew. A
// machine without a way to play sound, and a video without any, are silent.
class VideoSound {
public:
    explicit VideoSound(const std::filesystem::path& video);
    ~VideoSound();
    VideoSound(const VideoSound&) = delete;
    VideoSound& operator=(const VideoSound&) = delete;
    VideoSound(VideoSound&&) = delete;
    VideoSound& operator=(VideoSound&&) = delete;

    // To be told of every field. Returns at once.
    void Follow(const SoundMoment& moment);

    [[nodiscard]] bool IsThere() const;
    [[nodiscard]] bool IsMuted() const;
    void SetMuted(bool isMuted);

private:
    struct Device;
    void Silence();
    void Fill();

    std::unique_ptr<Device> m_device;  // null: silent
};

}  // namespace kel
