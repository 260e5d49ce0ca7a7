#pragma once

#include <string>

#include "kel/live/packet_ring.h"
#include "kel/video/video_packets.h"

namespace kel {

// What a ring held at a moment, as a video that is read from memory.
class HeldPackets final : public VideoPackets {
public:
    //   name             for messages
    //   framesPerSecond  as the stream declares it; 0: it does not
    HeldPackets(std::string name, PacketRing::Held held, double framesPerSecond);

    bool Read(AVPacket& packet) override;
    bool Seek(std::int64_t time) override;
    void Rewind() override { m_next = 0; }
    [[nodiscard]] const AVCodecParameters& Codec() const override { return *m_held.codec; }
    [[nodiscard]] double SecondsPerUnit() const override { return av_q2d(liveUnit); }
    [[nodiscard]] double DeclaredFramesPerSecond() const override { return m_framesPerSecond; }
    [[nodiscard]] PictureOrientation Orientation() const override { return {}; }
    [[nodiscard]] bool IsCutOff() const override { return false; }
    [[nodiscard]] std::string Name() const override { return m_name; }

private:
    std::string m_name;
    PacketRing::Held m_held;
    double m_framesPerSecond;
    std::size_t m_next = 0;
};

}  // namespace kel
