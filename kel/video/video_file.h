#pragma once

#include <cstdint>
#include <filesystem>

#include "kel/video/av_objects.h"
#include "kel/video/video_packets.h"

namespace kel {

// An opened video: its container and the one stream, of pictures or of sound, that is looked at, packet by packet.
// Times are in the stream's own unit. Everything throws Error with the file's name and the reason.
class VideoFile final : public VideoPackets {
public:
    enum class Stream { Pictures, Sound };
    explicit VideoFile(const std::filesystem::path& file, Stream which = Stream::Pictures);

    // The next packet of the stream; false at the end. Throws also where the file breaks off.
    bool Read(AVPacket& packet) override;
    // Goes to the last key frame at or before `time`, as far as the container knows; false: it cannot.
    bool Seek(std::int64_t time) override;
    // Starts again with the first packet.
    void Rewind() override;

    [[nodiscard]] const AVCodecParameters& Codec() const override;
    [[nodiscard]] double SecondsPerUnit() const override;
    [[nodiscard]] AVRational TimeBase() const;
    [[nodiscard]] double PicturesBegin() const;  // seconds; the first frame's time as the container has it
    [[nodiscard]] double DeclaredFramesPerSecond() const override;  // 0: the container does not say

    // How its frames are brought upright.
    [[nodiscard]] PictureOrientation Orientation() const override { return OrientationOf(Looked()); }

    // The container says that there is more than the file has. What it says only bit by bit shows when it is read.
    [[nodiscard]] bool IsCutOff() const override;

    [[nodiscard]] std::string Name() const override { return m_file.string(); }

private:
    void Open();
    [[nodiscard]] const AVStream& Looked() const;

    std::filesystem::path m_file;
    Stream m_which = Stream::Pictures;
    AvInput m_input;
    int m_stream = 0;
};

// Formats and protocols that lead on to other files or to the network stay closed: a video is one file. Null: it cannot
// be opened, and `result` says why.
[[nodiscard]] AvInput OpenVideoInput(const std::filesystem::path& file, int& result);

// When the first frame is shown, in seconds, as the container has it.
[[nodiscard]] double PicturesBeginIn(const AVFormatContext& input);

// The time at which a packet's picture is shown; AV_NOPTS_VALUE when it has none.
[[nodiscard]] std::int64_t TimeOf(const AVPacket& packet);

}  // namespace kel
