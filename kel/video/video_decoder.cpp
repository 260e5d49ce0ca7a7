#include "kel/video/video_decoder.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include "cli/error.h"
#include "kel/video/video_reader.h"

namespace kel {
namespace {

constexpr unsigned mostThreads = 4;  // each holds frames of its own

bool FormatHasAlpha(int format) {
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    return description != nullptr && (description->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
}

}  // namespace

VideoDecoder::VideoDecoder(std::unique_ptr<VideoPackets> packets)
    : m_packets(std::move(packets)), m_index(IndexVideo(*m_packets)), m_packet(NewPacket()), m_frame(NewFrame()) {
    if (!DecodeFrom(From::Start, m_index.times.front())) m_packets->Refuse("the first frame is damaged");
    m_width = m_frame->width;
    m_height = m_frame->height;
    m_hasAlpha = FormatHasAlpha(m_frame->format);
    m_orientation = m_packets->Orientation();
    if (std::max(m_width, m_height) > picture_io::largestPictureSide)
        m_packets->Refuse("has frames that are too large");
}

void VideoDecoder::OpenCodec() {
    const AVCodecParameters& parameters = m_packets->Codec();
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr)
        m_packets->Refuse("is coded in a way that cannot be read: " +
                          std::string(avcodec_get_name(parameters.codec_id)));
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!m_codec) throw std::bad_alloc();
    int result = avcodec_parameters_to_context(m_codec.get(), &parameters);
    m_codec->max_pixels = VideoReader::largestVideoPixels;
    m_codec->thread_count = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads));
    m_codec->flags |= AV_CODEC_FLAG_UNALIGNED;  // or else a crop at the left is rounded
    if (result >= 0) result = avcodec_open2(m_codec.get(), codec, nullptr);
    if (result < 0) m_packets->Refuse("cannot be decoded: " + AvReason(result));
}

// m_frame is that frame then.
void VideoDecoder::DecodeFrame(std::int64_t index) {
    const std::int64_t time = m_index.times[static_cast<std::size_t>(index)];
    const From way = BestWay(time);
    // A container may miss the key frame, and what is decoded behind it may lack what it refers to.
    if (m_time != time && !DecodeFrom(way, time) && (way == From::Start || !DecodeFrom(From::Start, time)))
        m_packets->Refuse("frame " + std::to_string(index) + " is damaged");
}

picture_io::Picture VideoDecoder::Read(std::int64_t index) {
    DecodeFrame(index);
    picture_io::Picture picture(m_width, m_height);
    ConvertInto(RowOrder::Down, picture);
    return Upright(std::move(picture), m_orientation);
}

void VideoDecoder::FitInto(std::int32_t width, std::int32_t height) {
    m_width = width;
    m_height = height;
    m_isFitted = true;
}

// m_frame, into a picture of the video's size.
void VideoDecoder::ConvertInto(RowOrder order, picture_io::Picture& picture) {
    try {
        if (m_isFitted)
            m_converter.FitInto(*m_frame, order, picture);
        else
            m_converter.ConvertInto(*m_frame, order, picture);
    } catch (const cli::Error& error) {
        m_packets->Refuse(error.what());
    }
}

void VideoDecoder::ReadUp(std::int64_t index, picture_io::Picture& picture) {
    if (!m_orientation.IsUpright()) {
        picture = picture_io::Flipped(Read(index));
        return;
    }
    DecodeFrame(index);
    if (picture.width != m_width || picture.height != m_height) picture = picture_io::Picture(m_width, m_height);
    ConvertInto(RowOrder::Up, picture);
}

// Going on to decode is quicker than to seek, unless the key frame lies far ahead.
VideoDecoder::From VideoDecoder::BestWay(std::int64_t time) const {
    constexpr std::ptrdiff_t farAhead = 16;  // frames
    if (!m_time || *m_time > time) return From::Key;
    const auto here = std::ranges::lower_bound(m_index.times, *m_time);
    const auto key = std::ranges::lower_bound(m_index.times, m_index.KeyBefore(time));
    return key - here > farAhead ? From::Key : From::Here;
}

bool VideoDecoder::DecodeFrom(From from, std::int64_t time) {
    Go(from, time);
    return DecodeUntil(time);
}

void VideoDecoder::Go(From from, std::int64_t time) {
    if (from == From::Here) return;
    m_time.reset();
    if (from == From::Key && m_packets->Seek(m_index.KeyBefore(time))) {
        avcodec_flush_buffers(m_codec.get());
        return;
    }
    m_packets->Rewind();
    OpenCodec();
}

// True: m_frame is the one of this time.
bool VideoDecoder::DecodeUntil(std::int64_t time) {
    while (NextFrame()) {
        const std::int64_t shown = m_frame->pts == AV_NOPTS_VALUE ? m_frame->best_effort_timestamp : m_frame->pts;
        m_time = shown;
        if (shown >= time) return shown == time;
    }
    m_time.reset();
    return false;
}

bool VideoDecoder::NextFrame() {
    constexpr int mostFailures = 64;  // in a row, more than the decoder can have in hand
    for (int failures = 0; failures < mostFailures;) {
        const int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result >= 0) return true;
        if (result == AVERROR_EOF) return false;
        if (result == AVERROR(EAGAIN)) {
            Feed();
            failures = 0;
        } else {
            ++failures;  // a frame that could not be decoded; the next one may be
        }
    }
    return false;
}

// A packet that cannot be decoded is passed over; whoever wants its frame finds that it is not there.
void VideoDecoder::Feed() {
    const bool isThere = m_packets->Read(*m_packet);
    if (isThere && m_packet->pts == AV_NOPTS_VALUE) m_packet->pts = m_packet->dts;
    avcodec_send_packet(m_codec.get(), isThere ? m_packet.get() : nullptr);
}

}  // namespace kel
