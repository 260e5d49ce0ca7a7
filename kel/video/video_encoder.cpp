#include "kel/video/video_encoder.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "cli/error.h"
#include "cli/word_list.h"
#include "kel/video/colour_matrix.h"
#include "kel/video/video_file.h"
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

// 29.97 and its like stand for a thousandth less than a whole number.
AVRational RateOf(double framesPerSecond) {
    constexpr double nearness = 0.001;
    constexpr int finest = 100000;
    const double whole = std::round(framesPerSecond * 1.001);
    if (std::abs(framesPerSecond - whole) > nearness && std::abs(framesPerSecond * 1.001 - whole) < nearness)
        return {static_cast<int>(whole) * 1000, 1001};
    return av_d2q(framesPerSecond, finest);
}

// Two by two pixels share one colour in YUV420P.
std::int32_t SideFor(AVPixelFormat format, std::int32_t side) {
    return format == AV_PIX_FMT_YUV420P ? side + side % 2 : side;
}

// FFV1 cuts pictures into parts that are coded side by side; a part of no pixels would come back as nonsense.
int SlicesFor(std::int32_t width, std::int32_t height) {
    constexpr std::int32_t large = 16;
    return std::min(width, height) < large ? 1 : 4;
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
      m_frame(NewFrame()),
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
    const AVCodec* codec = avcodec_find_encoder_by_name(m_codecSettings.encoder);
    if (codec == nullptr)
        Refuse(m_file.File(), "cannot be written: there is no encoder " + std::string(m_codecSettings.encoder));
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!m_codec) throw std::bad_alloc();
    m_codec->pix_fmt = settings.alpha ? m_codecSettings.withAlpha : m_codecSettings.opaque;
    m_codec->width = SideFor(m_codec->pix_fmt, settings.width);
    m_codec->height = SideFor(m_codec->pix_fmt, settings.height);
    m_codec->framerate = RateOf(settings.framesPerSecond);
    m_codec->time_base = av_inv_q(m_codec->framerate);
    m_codec->gop_size = m_codecSettings.keyEvery;
    if (codec->id == AV_CODEC_ID_FFV1) m_codec->slices = SlicesFor(m_codec->width, m_codec->height);
    m_codec->flags |= AV_CODEC_FLAG_BITEXACT;
    if (m_codec->pix_fmt == AV_PIX_FMT_YUV420P) TagColours(settings);
    if ((m_output->oformat->flags & AVFMT_GLOBALHEADER) != 0) m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    for (const CodecOption& option : m_codecSettings.options)
        if (option.name != nullptr) Check(av_opt_set(m_codec.get(), option.name, option.value, AV_OPT_SEARCH_CHILDREN));
    Check(avcodec_open2(m_codec.get(), codec, nullptr));
    m_frame->format = m_codec->pix_fmt;
    m_frame->width = m_codec->width;
    m_frame->height = m_codec->height;
    m_frame->colorspace = m_codec->colorspace;
    m_frame->color_range = m_codec->color_range;
    if (av_frame_get_buffer(m_frame.get(), 0) < 0) throw std::bad_alloc();
}

// Those of the source as far as it says them; pictures are then made with its matrix.
void VideoEncoder::TagColours(const VideoSettings& settings) {
    const bool isHigh = UsualMatrix(m_codec->width, m_codec->height) == AVCOL_SPC_BT709;
    m_codec->colorspace = isHigh ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    m_codec->color_primaries = isHigh ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    m_codec->color_trc = isHigh ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    m_codec->color_range = AVCOL_RANGE_MPEG;
    if (settings.source.empty()) return;
    const VideoFile source(settings.source);
    const AVCodecParameters& tags = source.Codec();
    if (IsYuvMatrix(tags.color_space)) m_codec->colorspace = tags.color_space;
    if (tags.color_primaries != AVCOL_PRI_UNSPECIFIED) m_codec->color_primaries = tags.color_primaries;
    if (tags.color_trc != AVCOL_TRC_UNSPECIFIED) m_codec->color_trc = tags.color_trc;
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
