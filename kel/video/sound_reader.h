#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <filesystem>
#include <memory>
#include <span>

#include "kel/video/sound_source.h"

namespace kel {

class SoundDecoder;
class VideoPackets;

// The sound of a video that is all there.
class SoundReader final : public SoundSource {
public:
    // Null: the file has no sound that can be played, which is no error.
    [[nodiscard]] static std::unique_ptr<SoundReader> Open(const std::filesystem::path& file);
    // The same for packets of sound, wherever they are kept.
    //   unit   of their times
    //   begin  of the pictures, in seconds of theirs
    [[nodiscard]] static std::unique_ptr<SoundReader> Open(std::unique_ptr<VideoPackets> packets, AVRational unit,
                                                           double begin);
    explicit SoundReader(std::unique_ptr<SoundDecoder> decoder);
    ~SoundReader() override;
    SoundReader(const SoundReader&) = delete;
    SoundReader& operator=(const SoundReader&) = delete;
    SoundReader(SoundReader&&) = delete;
    SoundReader& operator=(SoundReader&&) = delete;

    void Seek(double seconds) override;
    std::size_t Read(std::span<float> samples) override;

private:
    std::unique_ptr<SoundDecoder> m_decoder;
};

// The sound of a file.
class FileTrack final : public SoundTrack {
public:
    explicit FileTrack(std::filesystem::path file) : m_file(std::move(file)) {}
    [[nodiscard]] std::unique_ptr<SoundSource> Open() const override { return SoundReader::Open(m_file); }
    [[nodiscard]] bool IsLive() const override { return false; }

private:
    std::filesystem::path m_file;
};

}  // namespace kel
