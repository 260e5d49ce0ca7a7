#include "kel/live/sound_frames.h"

#include <algorithm>
#include <array>
#include <new>

namespace kel {
namespace {

constexpr int headerOfAac = 7;           // bytes
constexpr int samplesOfAacBlock = 1024;  // of which a frame has one to four
constexpr int largestFrame = 1 << 16;    // bytes; no codec's frame of sound is larger

// In the order of their numbers in an AAC header.
constexpr std::array aacRates{96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};

// Others are left as they come: they can be heard, and what they are is said nowhere that is read here.
constexpr std::array cutCodecs{AV_CODEC_ID_AAC, AV_CODEC_ID_MP1, AV_CODEC_ID_MP2, AV_CODEC_ID_MP3, AV_CODEC_ID_AC3};

AVCodecParserContext* ParserFor(AVCodecID codec) {
    return std::ranges::find(cutCodecs, codec) == cutCodecs.end() ? nullptr : av_parser_init(codec);
}

}  // namespace

SoundFrames::SoundFrames(const AVCodecParameters& stream)
    : m_codec(avcodec_alloc_context3(nullptr)),
      m_parser(ParserFor(stream.codec_id)),
      m_described(avcodec_parameters_alloc()) {
    if (!m_codec || !m_described || avcodec_parameters_to_context(m_codec.get(), &stream) < 0 ||
        avcodec_parameters_copy(m_described.get(), &stream) < 0)
        throw std::bad_alloc();
}

// A parser knows most of it; of AAC the header does.
SoundFrames::Said SoundFrames::SaidBy(const AVPacket& frame) const {
    if (m_codec->codec_id != AV_CODEC_ID_AAC)
        return {m_codec->sample_rate, m_codec->ch_layout.nb_channels, m_parser->duration};
    const std::uint8_t* const bytes = frame.data;
    if (frame.size <= headerOfAac || bytes[0] != 0xFF || (bytes[1] & 0xF0U) != 0xF0U) return {};
    const std::size_t rate = bytes[2] >> 2U & 0xFU;
    const int channels = static_cast<int>((bytes[2] & 1U) << 2U | bytes[3] >> 6U);
    if (rate >= aacRates.size()) return {};
    // The seventh arrangement is the one of eight loudspeakers; of none the frame's own words would have to be read.
    return {aacRates[rate], channels == 7 ? 8 : channels, samplesOfAacBlock * static_cast<int>((bytes[6] & 3U) + 1)};
}

// False: it cannot be described, so that it would be of no use.
bool SoundFrames::Describe(const Said& said) {
    if (said.samplesPerSecond <= 0 || said.channels <= 0 || said.samples <= 0) return false;
    if (said == m_said && m_described->sample_rate > 0) return true;
    m_described->sample_rate = said.samplesPerSecond;
    av_channel_layout_uninit(&m_described->ch_layout);
    av_channel_layout_default(&m_described->ch_layout, said.channels);
    av_freep(&m_described->extradata);
    m_described->extradata_size = 0;
    m_filter.reset();
    m_said = said;
    if (m_described->codec_id != AV_CODEC_ID_AAC) return true;
    AVBSFContext* made = nullptr;
    const AVBitStreamFilter* const kind = av_bsf_get_by_name("aac_adtstoasc");
    if (kind == nullptr) return false;
    if (av_bsf_alloc(kind, &made) < 0) throw std::bad_alloc();
    m_filter.reset(made);
    if (avcodec_parameters_copy(made->par_in, m_described.get()) < 0) throw std::bad_alloc();
    return av_bsf_init(made) >= 0;
}

bool SoundFrames::TakeHeaderOff(AVPacket& frame) {
    if (!m_filter) return true;
    if (av_bsf_send_packet(m_filter.get(), &frame) < 0 || av_bsf_receive_packet(m_filter.get(), &frame) < 0)
        return false;
    std::size_t size = 0;
    const std::uint8_t* const said = av_packet_get_side_data(&frame, AV_PKT_DATA_NEW_EXTRADATA, &size);
    if (said == nullptr) return m_described->extradata_size > 0;
    av_freep(&m_described->extradata);
    m_described->extradata_size = 0;
    m_described->extradata = static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (m_described->extradata == nullptr) throw std::bad_alloc();
    std::copy_n(said, size, m_described->extradata);
    m_described->extradata_size = static_cast<int>(size);
    av_packet_free_side_data(&frame);
    return true;
}

void SoundFrames::Take(AVPacket& frame, AVRational unit, const Taker& taker) {
    if (m_parser->pts != AV_NOPTS_VALUE) m_next = m_parser->pts;
    const Said said = SaidBy(frame);
    if (m_next == AV_NOPTS_VALUE || !Describe(said)) return;
    frame.pts = frame.dts = m_next;
    m_next += av_rescale_q(said.samples, {1, said.samplesPerSecond}, unit);
    if (!TakeHeaderOff(frame)) return;
    frame.flags |= AV_PKT_FLAG_KEY;  // each can be decoded by itself
    taker(*m_described, frame);
}

void SoundFrames::Cut(const AVPacket& packet, AVRational unit, const Taker& taker) {
    if (!m_parser) return taker(*m_described, packet);
    m_padded.assign(static_cast<std::size_t>(packet.size) + AV_INPUT_BUFFER_PADDING_SIZE, 0);
    std::copy_n(packet.data, packet.size, m_padded.begin());
    std::int64_t time = packet.pts;
    for (int done = 0; done < packet.size;) {
        std::uint8_t* data = nullptr;
        int size = 0;
        const int taken = av_parser_parse2(m_parser.get(), m_codec.get(), &data, &size, m_padded.data() + done,
                                           packet.size - done, time, time, 0);
        time = AV_NOPTS_VALUE;  // that of the first frame that begins in the packet
        if (taken < 0 || (taken == 0 && size == 0)) return;
        done += taken;
        if (size <= 0 || size > largestFrame) continue;
        const AvPacket frame = NewPacket();
        if (av_new_packet(frame.get(), size) < 0) throw std::bad_alloc();
        std::copy_n(data, size, frame->data);
        Take(*frame, unit, taker);
    }
}

}  // namespace kel
