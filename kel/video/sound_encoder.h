#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "kel/video/av_objects.h"

namespace kel {

// Encodes sound as SoundSource has it, packet by packet, as soon as there is enough for one.
class SoundEncoder {
public:
    // Gets packets with times in samples; false: no more are wanted.
    using Taker = std::function<bool(AVPacket&)>;

    //   name     for messages
    //   encoder  of those that take float or 16-bit samples
    SoundEncoder(std::string name, const char* encoder);

    [[nodiscard]] const AVCodecContext& Codec() const { return *m_codec; }
    // False: the taker wants no more. Throws Error for what cannot be encoded.
    //   first  the time of the samples, not before the end of those before
    bool Take(std::int64_t first, std::span<const float> samples, const Taker& taker);

private:
    bool EncodeWhole(const Taker& taker);
    bool Encode(std::span<const float> samples, const Taker& taker);
    [[nodiscard]] AvFrame FrameOf(std::span<const float> samples) const;
    void Check(int result) const;

    std::string m_name;
    AvCodec m_codec;
    AvPacket m_packet;
    std::vector<float> m_waiting;  // less than a packet takes
    std::int64_t m_first = 0;      // when they are heard
};

}  // namespace kel
