#pragma once

#include <filesystem>
#include <memory>
#include <span>

namespace kel {

class SoundDecoder;

// The sound of a video on disk, as two channels of float samples, left and right in turn. One thread at a time.
class SoundReader {
public:
    static constexpr int samplesPerSecond = 48000;
    static constexpr std::size_t channels = 2;

    // Null: the file has no sound that can be played, which is no error.
    [[nodiscard]] static std::unique_ptr<SoundReader> Open(const std::filesystem::path& file);
    explicit SoundReader(std::unique_ptr<SoundDecoder> decoder);
    ~SoundReader();
    SoundReader(const SoundReader&) = delete;
    SoundReader& operator=(const SoundReader&) = delete;
    SoundReader(SoundReader&&) = delete;
    SoundReader& operator=(SoundReader&&) = delete;

    // Goes to a time, counted from the video's first frame; before the sound's begin there is silence.
    void Seek(double seconds);
    // The samples that come next. Returns how many of each channel are there; fewer than asked for: the sound is over.
    // What is damaged is passed over.
    std::size_t Read(std::span<float> samples);

private:
    std::unique_ptr<SoundDecoder> m_decoder;
};

}  // namespace kel
