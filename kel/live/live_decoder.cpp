#include "kel/live/live_decoder.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <string>
#include <thread>

#include "cli/error.h"
#include "kel/video/video_reader.h"

namespace kel {
namespace {

constexpr std::int64_t mostBehind = 25;     // packets; whoever is farther behind goes on from a key
constexpr std::int64_t mostBuffered = 2;    // frames
constexpr std::int32_t largestSide = 8192;  // pixels, of a scene
constexpr auto longestUnseen = std::chrono::milliseconds(200);

// Slices alone: frames on several threads come as many frames later.
int Threads() { return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 4U)); }

}  // namespace

LiveDecoder::LiveDecoder(PacketRing& ring, LiveNews& news)
    : m_ring(ring),
      m_news(news),
      m_frame(NewFrame()),
      m_readyFrame(NewFrame()),
      m_shownFrame(NewFrame()),
      m_thread([this] { Run(); }) {}

LiveDecoder::~LiveDecoder() { m_thread.join(); }

LiveDecoder::Size LiveDecoder::PictureSize() const {
    const std::lock_guard lock(m_mutex);
    return m_size;
}

bool LiveDecoder::WaitForPicture(std::chrono::milliseconds atMost) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, atMost, [this] { return m_size.width > 0; });
}

void LiveDecoder::Open(const AVCodecParameters& parameters) {
    m_codec.reset();
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) {
        m_news.Tell("The pictures are coded in a way that cannot be read: " +
                    std::string(avcodec_get_name(parameters.codec_id)));
        return;
    }
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!m_codec) throw std::bad_alloc();
    int result = avcodec_parameters_to_context(m_codec.get(), &parameters);
    m_codec->max_pixels = VideoReader::largestVideoPixels;
    m_codec->pkt_timebase = liveUnit;
    m_codec->thread_type = FF_THREAD_SLICE;
    m_codec->thread_count = Threads();
    if (parameters.video_delay == 0) m_codec->flags |= AV_CODEC_FLAG_LOW_DELAY;
    if (result >= 0) result = avcodec_open2(m_codec.get(), codec, nullptr);
    if (result >= 0) return;
    m_codec.reset();
    m_news.Tell("The pictures cannot be decoded: " + AvReason(result));
}

void LiveDecoder::Run() {
    for (std::int64_t number = 0;;) {
        const PacketRing::Next next = m_ring.Take(number, mostBehind);
        if (!next.packet) return;
        try {
            DecodeOrTell(next);
        } catch (const std::bad_alloc&) {
            m_parameters.reset();  // begun anew with the next packet; to say so would take memory
        }
        number = next.number + 1;
    }
}

void LiveDecoder::DecodeOrTell(const PacketRing::Next& next) {
    try {
        Decode(next);
    } catch (const cli::Error& failure) {
        m_news.Tell(std::string("A picture is left out: ") + failure.what());
    }
}

// What cannot be decoded is passed over; the picture before it stays.
void LiveDecoder::Decode(const PacketRing::Next& next) {
    if (next.codec != m_parameters) {
        m_parameters = next.codec;
        Open(*m_parameters);
    } else if (next.isBehindGap && m_codec) {
        avcodec_flush_buffers(m_codec.get());
    }
    if (!m_codec) return;
    const AvPacket packet(av_packet_clone(next.packet.get()));
    if (!packet) throw std::bad_alloc();
    m_codec->skip_frame = next.waiting > mostBuffered ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    (void)avcodec_send_packet(m_codec.get(), packet.get());
    bool isNew = false;
    const AvFrame decoded = NewFrame();
    while (avcodec_receive_frame(m_codec.get(), decoded.get()) >= 0) {
        av_frame_unref(m_frame.get());
        av_frame_move_ref(m_frame.get(), decoded.get());
        isNew = true;
    }
    // Only the newest is made a picture of, unless too few would ever be seen.
    const bool isLate = next.waiting > mostBuffered && std::chrono::steady_clock::now() - m_published < longestUnseen;
    if (isNew && !isLate) Publish();
}

// Noted last, so that it is done again where memory lacked for it.
void LiveDecoder::NoteSize() {
    if (m_frame->width == m_frameWidth && m_frame->height == m_frameHeight) return;
    if (m_frameWidth == 0) {
        m_back = picture_io::Picture(m_frame->width, m_frame->height);
        const AVRational rate = m_codec->framerate;
        const std::lock_guard lock(m_mutex);
        m_size = {0, 0, rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0.0};
    } else {
        m_news.Tell("The pictures are " + std::to_string(m_frame->width) + " x " + std::to_string(m_frame->height) +
                    " now; they are fitted into " + std::to_string(m_size.width) + " x " +
                    std::to_string(m_size.height) + ".");
    }
    m_frameWidth = m_frame->width;
    m_frameHeight = m_frame->height;
}

// Memory that was given for the one before may have been of another size, or none.
void LiveDecoder::MakeRoom() {
    const bool isThere = m_back.width == m_size.width && m_back.height == m_size.height;
    if (m_size.width > 0 && !isThere) m_back = picture_io::Picture(m_size.width, m_size.height);
}

void LiveDecoder::Publish() {
    m_published = std::chrono::steady_clock::now();
    if (std::max(m_frame->width, m_frame->height) > largestSide)
        throw cli::Error("it is larger than " + std::to_string(largestSide) + " pixels");
    NoteSize();
    MakeRoom();
    m_converter.SetConversion(m_conversion);
    m_converter.FitInto(*m_frame, RowOrder::Up, m_back);
    {
        const std::lock_guard lock(m_mutex);
        m_size.width = m_back.width;
        m_size.height = m_back.height;
        std::swap(m_ready, m_back);
        m_readyFrame.swap(m_frame);
        m_isNew = true;
    }
    m_changed.notify_all();
}

bool LiveDecoder::Take(picture_io::Picture& upwards) {
    const std::lock_guard lock(m_mutex);
    if (!std::exchange(m_isNew, false)) return false;
    std::swap(m_ready, upwards);
    m_shownFrame.swap(m_readyFrame);
    return true;
}

std::optional<double> LiveDecoder::ShownSeconds() const {
    const std::lock_guard lock(m_mutex);
    const std::int64_t time = m_shownFrame->best_effort_timestamp;
    if (m_shownFrame->width == 0 || time == AV_NOPTS_VALUE) return std::nullopt;
    return static_cast<double>(time) * av_q2d(liveUnit);
}

bool LiveDecoder::TakeExactly(picture_io::Picture& upwards) {
    const std::lock_guard lock(m_mutex);
    if (m_shownFrame->width == 0) return false;
    if (upwards.width != m_size.width || upwards.height != m_size.height)
        upwards = picture_io::Picture(m_size.width, m_size.height);
    PictureConverter converter;
    converter.FitInto(*m_shownFrame, RowOrder::Up, upwards);
    return true;
}

}  // namespace kel
