#include "kel/video/video_encoder.h"

#include <algorithm>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "cli/word_list.h"
#include "kel/video/encoder_opening.h"
#include "kel/video/video_format.h"

namespace kel {
namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& reason) {
    throw cli::Error(file.string(), {}, reason);
}

// Of all formats, or of those that keep alpha: ".mov, .mkv, .mp4 or .webm".
std::string VideoEndings(bool withAlpha, const char* beforeLast) {
    std::vector<std::string> endings;
    for (const VideoFormat& format : VideoFormats())
        if (format.hasAlpha || !withAlpha) endings.emplace_back(format.ending);
    return cli::WordList(endings, beforeLast);
}

const VideoFormat& FormatFor(const std::filesystem::path& file, const VideoSettings& settings) {
    const VideoFormat* format = FormatOfVideo(file);
    if (format == nullptr) Refuse(file, "films end in " + VideoEndings(false, "or"));
    if (settings.alpha && !format->hasAlpha)
        Refuse(file, std::string(format->ending) + " films have no alpha; " + VideoEndings(true, "and") + " have");
    const int smallestSide = format->codec->smallestSide;
    if (std::min(settings.width, settings.height) < smallestSide)
        Refuse(file, std::string(format->ending) + " films have sides of at least " + std::to_string(smallestSide) +
                         " pixels");
    if (!(settings.framesPerSecond > 0)) Refuse(file, "a film needs a rate of frames above 0");
    return *format;
}

}  // namespace

void VideoEncoder::CloseOutput::operator()(AVFormatContext* output) const {
    avio_closep(&output->pb);
    avformat_free_context(output);
}

VideoEncoder::VideoEncoder(const std::filesystem::path& file, const VideoSettings& settings)
    : m_file(file),
      m_codecSettings(*FormatFor(file, settings).codec),
      m_settings(settings),
      m_packet(NewPacket()),
      m_last(NewPacket()) {
    SilenceAv();
    AVFormatContext* output = nullptr;
    Check(avformat_alloc_output_context2(&output, nullptr, m_codecSettings.container, nullptr));
    m_output.reset(output);
    OpenCodec(settings);
    OpenFile();
}

void VideoEncoder::OpenCodec(const VideoSettings& settings) {
    const bool hasGlobalHeader = (m_output->oformat->flags & AVFMT_GLOBALHEADER) != 0;
    OpenedEncoder opened = OpenEncoder(m_file.File(), m_codecSettings, settings,
                                       hasGlobalHeader ? HeaderPlace::Container : HeaderPlace::Packets);
    m_codec = std::move(opened.codec);
    m_frame = std::move(opened.frame);
}

void VideoEncoder::OpenFile() {
    AVStream* stream = avformat_new_stream(m_output.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_from_context(stream->codecpar, m_codec.get()));
    stream->time_base = m_codec->time_base;
    stream->avg_frame_rate = m_codec->framerate;
    m_sound.emplace(m_settings.source, *m_output);
    m_output->flags |= AVFMT_FLAG_BITEXACT;  // no date and no names: the same pictures give the same file
    Check(avio_open(&m_output->pb, ("file:" + m_file.Temporary().string()).c_str(), AVIO_FLAG_WRITE));
    Check(avformat_write_header(m_output.get(), nullptr));
}

void VideoEncoder::CheckSize(const picture_io::Picture& picture) const {
    if (picture.width != m_settings.width || picture.height != m_settings.height)
        Refuse(m_file.File(), "a film's pictures are all of one size");
}

void VideoEncoder::WriteChanged(const picture_io::Picture& picture, const PicturePart& changed) {
    const bool isAnimation = m_codec->codec_id == AV_CODEC_ID_QTRLE && m_codec->pix_fmt == AV_PIX_FMT_ARGB;
    if (!isAnimation) return changed.IsEmpty() && m_count > 0 ? Repeat() : Write(picture);
    CheckSize(picture);
    if (!m_animation) m_animation.emplace(m_codecSettings.keyEvery);
    const std::span<const std::uint8_t> bytes = m_animation->Make(picture, changed);
    if (av_new_packet(m_packet.get(), static_cast<int>(bytes.size())) < 0) throw std::bad_alloc();
    std::ranges::copy(bytes, m_packet->data);
    if (m_animation->IsKey()) m_packet->flags |= AV_PKT_FLAG_KEY;
    m_packet->pts = m_packet->dts = m_count++;
    WritePacket();
}

void VideoEncoder::Write(const picture_io::Picture& picture) {
    CheckSize(picture);
    Check(av_frame_make_writable(m_frame.get()));  // the encoder may still hold the last one
    m_packer.Pack(picture, *m_frame);
    m_frame->pts = m_count++;
    Encode(m_frame.get());
}

void VideoEncoder::Repeat() {
    m_frame->pts = m_count++;
    if (!m_codecSettings.isStateless || m_last->size == 0) return Encode(m_frame.get());
    Check(av_packet_ref(m_packet.get(), m_last.get()));
    m_packet->pts = m_frame->pts;
    m_packet->dts = m_frame->pts;
    WritePacket();
}

void VideoEncoder::Encode(const AVFrame* frame) {
    Check(avcodec_send_frame(m_codec.get(), frame));
    for (;;) {
        const int result = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        Check(result);
        if (m_codecSettings.isStateless) {
            av_packet_unref(m_last.get());
            Check(av_packet_ref(m_last.get(), m_packet.get()));
        }
        WritePacket();
    }
}

// Sound is written as far as the pictures go that were given to the encoder.
double VideoEncoder::SecondsWritten() const { return static_cast<double>(m_count) * av_q2d(m_codec->time_base); }

void VideoEncoder::WritePacket() {
    const AVStream& stream = *m_output->streams[0];
    if (m_packet->duration == 0) m_packet->duration = 1;
    av_packet_rescale_ts(m_packet.get(), m_codec->time_base, stream.time_base);
    m_packet->stream_index = 0;
    Check(m_sound->WriteUntil(SecondsWritten()));
    Check(av_interleaved_write_frame(m_output.get(), m_packet.get()));
}

void VideoEncoder::Close() {
    if (m_count == 0) Refuse(m_file.File(), "cannot be written: a film needs at least one picture");
    Encode(nullptr);
    Check(m_sound->WriteUntil(SecondsWritten()));
    Check(av_write_trailer(m_output.get()));
    avio_flush(m_output->pb);
    Check(0);
    Check(avio_closep(&m_output->pb));  // a full disk may show only now
}

void VideoEncoder::Check(int result) const {
    // Writing is buffered, so a failed write is noted in the file and not in what the call gives back.
    if (result >= 0 && m_output && m_output->pb != nullptr) result = m_output->pb->error;
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0) Refuse(m_file.File(), "cannot be written: " + AvReason(result));
}

}  // namespace kel
