#pragma once

#include <cstdint>
#include <string>

#include "cli/error.h"
#include "kel/video/av_objects.h"
#include "kel/video/picture_orientation.h"

namespace kel {

// One stream of a video, packet by packet, wherever it is kept. Times are in the stream's own unit. Everything throws
// Error with the video's name and the reason.
class VideoPackets {
public:
    VideoPackets() = default;
    virtual ~VideoPackets() = default;
    VideoPackets(const VideoPackets&) = delete;
    VideoPackets& operator=(const VideoPackets&) = delete;
    VideoPackets(VideoPackets&&) = delete;
    VideoPackets& operator=(VideoPackets&&) = delete;

    // The next packet of the stream; false at the end. Throws also where the video breaks off.
    virtual bool Read(AVPacket& packet) = 0;
    // Goes to the last key frame at or before `time`, as far as it is known; false: it cannot.
    virtual bool Seek(std::int64_t time) = 0;
    // Starts again with the first packet.
    virtual void Rewind() = 0;

    [[nodiscard]] virtual const AVCodecParameters& Codec() const = 0;
    [[nodiscard]] virtual double SecondsPerUnit() const = 0;
    [[nodiscard]] virtual double DeclaredFramesPerSecond() const = 0;  // 0: it is not said
    // How its frames are brought upright.
    [[nodiscard]] virtual PictureOrientation Orientation() const = 0;
    // There should be more than there is. What is said only bit by bit shows when it is read.
    [[nodiscard]] virtual bool IsCutOff() const = 0;

    [[nodiscard]] virtual std::string Name() const = 0;  // for messages
    [[noreturn]] void Refuse(const std::string& reason) const { throw cli::Error(Name(), {}, reason); }
};

}  // namespace kel
