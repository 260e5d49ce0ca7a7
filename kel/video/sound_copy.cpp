#include "kel/video/sound_copy.h"

#include <algorithm>
#include <limits>

#include "kel/video/video_file.h"

namespace kel {

SoundCopy::SoundCopy(const std::filesystem::path& source, AVFormatContext& output)
    : m_output(output), m_packet(NewPacket()) {
    if (source.empty()) return;
    int result = 0;
    m_input = OpenVideoInput(source, result);
    if (!m_input || avformat_find_stream_info(m_input.get(), nullptr) < 0) {
        m_input.reset();
        return;
    }
    m_begin = PicturesBeginIn(*m_input);
    AddStreams();
    if (m_streams.empty()) m_input.reset();
}

void SoundCopy::AddStreams() {
    for (unsigned index = 0; index < m_input->nb_streams; ++index) {
        AVStream& stream = *m_input->streams[index];
        const AVCodecParameters& codec = *stream.codecpar;
        const bool isHeld = codec.codec_type == AVMEDIA_TYPE_AUDIO &&
                            avformat_query_codec(m_output.oformat, codec.codec_id, FF_COMPLIANCE_NORMAL) == 1;
        if (!isHeld) {
            stream.discard = AVDISCARD_ALL;
            continue;
        }
        AVStream* added = avformat_new_stream(&m_output, nullptr);
        if (added == nullptr || avcodec_parameters_copy(added->codecpar, &codec) < 0) throw std::bad_alloc();
        added->codecpar->codec_tag = 0;  // each container has its own names
        added->time_base = stream.time_base;
        m_streams.push_back({static_cast<int>(index), added->index});
    }
}

bool SoundCopy::ReadNext() {
    while (m_input && !m_hasPacket) {
        av_packet_unref(m_packet.get());
        if (av_read_frame(m_input.get(), m_packet.get()) < 0) {
            m_input.reset();
            return false;
        }
        const auto copied = std::ranges::find(m_streams, m_packet->stream_index, &CopiedStream::from);
        if (copied == m_streams.end() || TimeOf(*m_packet) == AV_NOPTS_VALUE) continue;
        const AVRational unit = m_input->streams[copied->from]->time_base;
        const auto shift = static_cast<std::int64_t>(m_begin / av_q2d(unit));
        m_packet->pts = TimeOf(*m_packet) - shift;
        m_packet->dts = m_packet->pts;
        // What is before the first picture would push that back in containers without times below zero.
        if (m_packet->pts < 0 && (m_output.oformat->flags & AVFMT_TS_NEGATIVE) == 0) continue;
        av_packet_rescale_ts(m_packet.get(), unit, m_output.streams[copied->to]->time_base);
        m_packet->stream_index = copied->to;
        m_packet->pos = -1;
        m_hasPacket = true;
    }
    return m_hasPacket;
}

int SoundCopy::WriteUntil(double seconds) {
    while (ReadNext()) {
        const AVRational unit = m_output.streams[m_packet->stream_index]->time_base;
        if (static_cast<double>(m_packet->pts) * av_q2d(unit) >= seconds) return 0;
        m_hasPacket = false;
        const int result = av_interleaved_write_frame(&m_output, m_packet.get());
        if (result < 0) return result;
    }
    return 0;
}

}  // namespace kel
