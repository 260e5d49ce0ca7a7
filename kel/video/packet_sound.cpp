#include "kel/video/packet_sound.h"

#include <new>

namespace kel {

PacketSound::PacketSound(const AVCodecParameters& parameters) : m_frame(NewFrame()) {
    const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) return;
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!m_codec) throw std::bad_alloc();
    if (avcodec_parameters_to_context(m_codec.get(), &parameters) < 0 ||
        avcodec_open2(m_codec.get(), codec, nullptr) < 0)
        m_codec.reset();
}

void PacketSound::Decode(const AVPacket& packet, std::vector<float>& samples) {
    constexpr int mostBytes = 1 << 20;
    if (!m_codec || packet.size > mostBytes || avcodec_send_packet(m_codec.get(), &packet) < 0) return;
    while (avcodec_receive_frame(m_codec.get(), m_frame.get()) >= 0) (void)m_resampler.Append(*m_frame, samples);
}

}  // namespace kel
