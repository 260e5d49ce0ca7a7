#include "kel/live/live_input.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

#include <new>
#include <string_view>
#include <thread>

namespace kel {
namespace {

constexpr auto longestOpening = std::chrono::seconds(10);
constexpr auto anyTime = std::chrono::hours(24 * 365);

// What is looked at before pictures are shown: up to a second of what comes, and no more bytes than fit into one at
// the rates that cameras have. Decoders find out the rest by themselves.
constexpr int probedMicroseconds = 500'000;
constexpr int probedBytes = 1'000'000;

}  // namespace

LiveInput::LiveInput(const LiveName& name, const std::atomic<bool>& ends) : m_name(name), m_ends(ends) {
    SilenceAv();
    static const bool areDevicesThere = (avdevice_register_all(), true);
    (void)areDevicesThere;
}

int LiveInput::IsOver(void* self) {
    const auto& input = *static_cast<const LiveInput*>(self);
    return input.m_ends || std::chrono::steady_clock::now() > input.m_deadline ? 1 : 0;
}

// A call that was cut short because nothing came says so.
int LiveInput::Told(int result) const {
    if (result != AVERROR_EXIT || m_ends) return result;
    return AVERROR(ETIMEDOUT);
}

AVDictionary* LiveInput::Options() const {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", m_name.protocols.c_str(), 0);
    av_dict_set(&options, "format_whitelist", m_name.formats.c_str(), 0);
    av_dict_set_int(&options, "probesize", probedBytes, 0);
    av_dict_set_int(&options, "analyzeduration", probedMicroseconds, 0);
    av_dict_set(&options, "rtsp_flags", "prefer_tcp", 0);
    if (!m_name.size.empty()) av_dict_set(&options, "video_size", m_name.size.c_str(), 0);
    if (!m_name.windowId.empty())
        av_dict_set_int(&options, "window_id", static_cast<std::int64_t>(std::stoull(m_name.windowId, nullptr, 0)), 0);
    if (m_name.kind == LiveName::Kind::Screen) av_dict_set(&options, "framerate", "25", 0);
    // Nothing is lost on the way within one machine, so nothing need be waited for to come again. Whoever names a
    // latency in the address gets that.
    if (m_name.isNear && m_name.url.find("latency=") == std::string::npos) av_dict_set(&options, "latency", "20000", 0);
    return options;
}

int LiveInput::Open() {
    AVFormatContext* input = avformat_alloc_context();
    if (input == nullptr) throw std::bad_alloc();
    input->interrupt_callback = {&IsOver, this};
    // A device that gives nothing is asked again, or else nobody could end the call.
    if (m_name.kind == LiveName::Kind::Device) input->flags |= AVFMT_FLAG_NONBLOCK;
    Allow(m_name.isAwaited ? std::chrono::steady_clock::duration(anyTime) : longestOpening);
    AVDictionary* options = Options();
    const AVInputFormat* format = m_name.inputFormat.empty()
                                      ? nullptr
                                      : av_find_input_format(m_name.inputFormat == "x11grab" ? "x11grab" : "v4l2");
    const bool isMissing = !m_name.inputFormat.empty() && format == nullptr;
    if (isMissing) avformat_free_context(input);
    // Frees the context where it fails.
    const int result =
        isMissing ? AVERROR_DEMUXER_NOT_FOUND : avformat_open_input(&input, m_name.url.c_str(), format, &options);
    av_dict_free(&options);
    if (result < 0) return Told(result);
    m_input.reset(input);
    m_stream = m_sound = -1;
    m_hasPicture = true;
    // Looking for the end of a picture in the beginning of the next one shows each a picture later. In this container
    // a packet is one already.
    if (std::string_view(input->iformat->name) == "mpegts") input->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    return 0;
}

// The first pictures that come are those that are shown, and the first sound beside them is theirs. Streams may be
// found only while they are read.
bool LiveInput::Choose(const AVPacket& packet) {
    const AVStream& stream = *m_input->streams[packet.stream_index];
    if (m_stream >= 0) {
        if (m_sound < 0 && stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) m_sound = packet.stream_index;
        return packet.stream_index == m_stream || packet.stream_index == m_sound;
    }
    const bool isPictures =
        stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
    if (isPictures) m_stream = packet.stream_index;
    return isPictures;
}

// What a parser of the library would have said.
void LiveInput::MarkKey(AVPacket& packet) {
    if ((m_input->flags & AVFMT_FLAG_NOPARSE) == 0) return;
    const AVCodecID codec = Pictures().codecpar->codec_id;
    if (!m_keys || m_keysCodec != codec) m_keys.emplace(codec);
    m_keysCodec = codec;
    m_keys->Mark(packet);
}

int LiveInput::Read(AVPacket& packet) {
    // Sound alone, or nothing that is whole, is silence too.
    if (m_hasPicture) Allow(longestSilence);
    for (;;) {
        av_packet_unref(&packet);
        if (IsOver(this) != 0) return Told(AVERROR_EXIT);
        const int result = av_read_frame(m_input.get(), &packet);
        if (result == AVERROR(EAGAIN)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            continue;
        }
        if (result < 0) return Told(result);
        if (packet.size == 0 || !Choose(packet)) continue;
        m_hasPicture = SoundOf(packet) == nullptr;
        if (m_hasPicture) MarkKey(packet);
        return 0;
    }
}

}  // namespace kel
