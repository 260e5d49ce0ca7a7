#pragma once

#include <vector>

#include "kel/video/stereo_resampler.h"

namespace kel {

// Decodes sound packet by packet, as it comes. What is damaged, or too large for sound, is passed over.
class PacketSound {
public:
    // What cannot be decoded at all stays silent. Throws std::bad_alloc.
    explicit PacketSound(const AVCodecParameters& parameters);

    // Appends the packet's samples, as StereoResampler makes them.
    void Decode(const AVPacket& packet, std::vector<float>& samples);

private:
    AvCodec m_codec;  // null: it cannot be decoded
    AvFrame m_frame;
    StereoResampler m_resampler;
};

}  // namespace kel
