#include "kel/video/stream_encoder.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "cli/error.h"
#include "kel/video/encoder_opening.h"

namespace kel {
namespace {

// A syncpoint's place is kept for an index at the end of the file, which a stream has not; kept all the same, a day of
// them would fill the memory.
void SetContainer(AVFormatContext& output) {
    (void)av_opt_set(&output, "write_index", "0", AV_OPT_SEARCH_CHILDREN);
    output.flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_FLUSH_PACKETS | AVFMT_FLAG_BITEXACT;
}

}  // namespace

void StreamEncoder::CloseOutput::operator()(AVFormatContext* output) const {
    if (output->pb != nullptr) av_freep(&output->pb->buffer);
    avio_context_free(&output->pb);
    avformat_free_context(output);
}

StreamEncoder::StreamEncoder(const StreamFormat& format, const VideoSettings& settings, StreamOutput& output,
                             StreamWriter::Sound sound)
    : m_wanted(*format.codec), m_reader(output), m_packet(NewPacket()), m_last(NewPacket()) {
    SilenceAv();
    if (std::min(settings.width, settings.height) < m_wanted.smallestSide)
        throw cli::Error(output.Address(), {},
                         "cannot be sent: pictures of " + std::string(format.name) + " have sides of at least " +
                             std::to_string(m_wanted.smallestSide) + " pixels");
    AVFormatContext* container = nullptr;
    Check(avformat_alloc_output_context2(&container, nullptr, m_wanted.container, nullptr));
    m_output.reset(container);
    const bool hasGlobalHeader = (container->oformat->flags & AVFMT_GLOBALHEADER) != 0;
    OpenedEncoder opened = OpenEncoder(output.Address(), m_wanted, settings,
                                       hasGlobalHeader ? HeaderPlace::Container : HeaderPlace::Packets);
    m_codec = std::move(opened.codec);
    m_frame = std::move(opened.frame);
    if (sound == StreamWriter::Sound::Beside)
        m_sound = std::make_unique<SoundEncoder>(output.Address(), format.soundEncoder);
    OpenContainer();
}

int StreamEncoder::SendBytes(void* self, std::uint8_t* bytes, int count) {
    auto& encoder = *static_cast<StreamEncoder*>(self);
    if (!encoder.m_isReaderGone)
        encoder.m_isReaderGone = !encoder.m_reader.Send({bytes, static_cast<std::size_t>(count)});
    return encoder.m_isReaderGone ? AVERROR(EPIPE) : count;
}

void StreamEncoder::AddStream(const AVCodecContext& codec) {
    AVStream* stream = avformat_new_stream(m_output.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_from_context(stream->codecpar, &codec));
    stream->time_base = codec.time_base;
    stream->avg_frame_rate = codec.framerate;
}

void StreamEncoder::OpenContainer() {
    AddStream(*m_codec);
    if (m_sound) AddStream(m_sound->Codec());
    const std::size_t bytes = m_reader.BytesAtOnce();
    auto* buffer = static_cast<unsigned char*>(av_malloc(bytes));
    if (buffer == nullptr) throw std::bad_alloc();
    m_output->pb = avio_alloc_context(buffer, static_cast<int>(bytes), 1, this, nullptr, SendBytes, nullptr);
    if (m_output->pb == nullptr) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    m_output->pb->seekable = 0;
    SetContainer(*m_output);
    (void)Check(avformat_write_header(m_output.get(), nullptr));
}

bool StreamEncoder::Write(const picture_io::Picture& picture, std::int64_t number) {
    if (m_isReaderGone) return false;
    Check(av_frame_make_writable(m_frame.get()));  // the encoder may still hold the last one
    m_packer.Pack(picture, *m_frame);
    m_frame->pts = number;
    return Encode(m_frame.get());
}

bool StreamEncoder::Repeat(std::int64_t number) {
    if (m_isReaderGone) return false;
    m_frame->pts = number;
    if (!m_wanted.isStateless || m_last->size == 0) return Encode(m_frame.get());
    Check(av_packet_ref(m_packet.get(), m_last.get()));
    m_packet->pts = m_packet->dts = number;
    return WritePacket();
}

bool StreamEncoder::Encode(const AVFrame* frame) {
    Check(avcodec_send_frame(m_codec.get(), frame));
    for (;;) {
        const int result = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return true;
        Check(result);
        if (m_wanted.isStateless) {
            av_packet_unref(m_last.get());
            Check(av_packet_ref(m_last.get(), m_packet.get()));
        }
        if (!WritePacket()) return false;
    }
}

// At once: there is nothing to wait for that it would have to be interleaved with.
bool StreamEncoder::WritePacket() {
    if (m_packet->duration == 0) m_packet->duration = 1;
    av_packet_rescale_ts(m_packet.get(), m_codec->time_base, m_output->streams[0]->time_base);
    m_packet->stream_index = 0;
    const int result = av_write_frame(m_output.get(), m_packet.get());
    av_packet_unref(m_packet.get());
    return Check(result);
}

// Sound has times of its own, which readers put together with the pictures'.
bool StreamEncoder::WriteSoundPacket(AVPacket& packet) {
    av_packet_rescale_ts(&packet, m_sound->Codec().time_base, m_output->streams[1]->time_base);
    packet.stream_index = 1;
    return Check(av_write_frame(m_output.get(), &packet));
}

bool StreamEncoder::WriteSound(const StreamSound::Piece& piece) {
    if (m_isReaderGone) return false;
    return m_sound->Take(piece.first, piece.samples, [this](AVPacket& packet) { return WriteSoundPacket(packet); });
}

bool StreamEncoder::End() {
    if (m_isReaderGone || !Encode(nullptr)) return false;
    const int result = av_write_trailer(m_output.get());
    avio_flush(m_output->pb);
    return Check(result);
}

bool StreamEncoder::Check(int result) const {
    if (m_isReaderGone) return false;
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0) throw cli::Error(m_reader.Address(), {}, "cannot be sent: " + AvReason(result));
    return true;
}

}  // namespace kel
