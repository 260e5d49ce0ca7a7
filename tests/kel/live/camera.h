#pragma once

#include <arpa/inet.h>
#include <doctest/doctest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "kel/video/av_objects.h"

namespace kel::testing {

// Waits until it is so, looking again and again; fails the test after minutes. No machine is too slow.
template <typename Condition>
void Await(const std::string& what, Condition isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(3);
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end) FAIL("never: " << what);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

// A port of this machine, bound; nobody else has it as long as this is there.
class BoundPort {
public:
    explicit BoundPort(int kind) : m_socket(socket(AF_INET, kind | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        REQUIRE_EQ(bind(m_socket, reinterpret_cast<sockaddr*>(&address), length), 0);
        REQUIRE_EQ(getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length), 0);
        m_port = ntohs(address.sin_port);
    }
    ~BoundPort() { close(m_socket); }
    BoundPort(const BoundPort&) = delete;
    BoundPort& operator=(const BoundPort&) = delete;
    BoundPort(BoundPort&&) = delete;
    BoundPort& operator=(BoundPort&&) = delete;
    [[nodiscard]] int Number() const { return m_port; }
    [[nodiscard]] int Socket() const { return m_socket; }

private:
    int m_socket;
    int m_port = 0;
};

[[nodiscard]] inline int FreePort(int kind = SOCK_STREAM) { return BoundPort(kind).Number(); }

// A camera that sends plain grey pictures, 50 a second, to an address of this machine, from when somebody listens.
class Camera {
public:
    struct Settings {
        std::string address;  // as the sender has it
        std::string format = "mpegts";
        std::string codec = "mpeg2video";
        int width = 64;  // pixels
        int height = 48;
        int grey = 128;          // 16 to 235, of video
        bool isDamaged = false;  // bytes of every packet are wrong
        std::int16_t level = 0;  // of the sound, which does not change; 0: there is none
    };
    explicit Camera(Settings settings) : m_settings(std::move(settings)), m_thread([this] { Send(); }) {}
    ~Camera() {
        m_ends = true;
        m_thread.join();
    }
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;
    Camera(Camera&&) = delete;
    Camera& operator=(Camera&&) = delete;

    // From now on.
    void SetGrey(int grey) { m_grey = grey; }
    void SetDamaged(bool isDamaged) { m_isDamaged = isDamaged; }
    [[nodiscard]] int Sent() const { return m_sent; }  // pictures

private:
    struct FreeOutput {
        void operator()(AVFormatContext* output) const {
            avio_closep(&output->pb);
            avformat_free_context(output);
        }
    };

    struct WriteEnd {
        void operator()(AVFormatContext* output) const { av_write_trailer(output); }
    };

    static int IsOver(void* self) { return static_cast<Camera*>(self)->m_ends ? 1 : 0; }

    // Null: it was ended before anybody listened.
    std::unique_ptr<AVFormatContext, FreeOutput> OpenOutput() {
        for (;;) {
            AVFormatContext* made = nullptr;
            avformat_alloc_output_context2(&made, nullptr, m_settings.format.c_str(), nullptr);
            std::unique_ptr<AVFormatContext, FreeOutput> output(made);
            const AVIOInterruptCB isOver{&IsOver, this};
            output->flags |= AVFMT_FLAG_FLUSH_PACKETS;
            if (avio_open2(&output->pb, m_settings.address.c_str(), AVIO_FLAG_WRITE, &isOver, nullptr) >= 0)
                return output;
            if (m_ends) return nullptr;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    AvCodec OpenCodec() const {
        const AVCodec* codec = avcodec_find_encoder_by_name(m_settings.codec.c_str());
        AvCodec context(avcodec_alloc_context3(codec));
        context->width = m_settings.width;
        context->height = m_settings.height;
        context->time_base = {1, 50};
        context->framerate = {50, 1};
        context->pix_fmt = AV_PIX_FMT_YUV420P;
        context->gop_size = 5;
        context->max_b_frames = 0;
        context->flags |= AV_CODEC_FLAG_QSCALE;
        context->global_quality = 2 * FF_QP2LAMBDA;
        if (m_settings.codec == "libx264") {
            av_opt_set(context->priv_data, "preset", "ultrafast", 0);
            av_opt_set(context->priv_data, "tune", "zerolatency", 0);
        }
        avcodec_open2(context.get(), codec, nullptr);
        return context;
    }

    void Paint(AVFrame& frame) const {
        av_frame_make_writable(&frame);
        for (int y = 0; y < frame.height; ++y)
            std::fill_n(frame.data[0] + y * frame.linesize[0], frame.width, static_cast<std::uint8_t>(m_grey.load()));
        for (const int plane : {1, 2})
            for (int y = 0; y < frame.height / 2; ++y)
                std::fill_n(frame.data[plane] + y * frame.linesize[plane], frame.width / 2, std::uint8_t{128});
    }

    static void Damage(AVPacket& packet) {
        av_packet_make_writable(&packet);
        for (int i = 5; i < packet.size; i += 7) packet.data[i] ^= static_cast<std::uint8_t>(i * 37);
    }

    static void AddSound(AVFormatContext& output) {
        AVStream* stream = avformat_new_stream(&output, nullptr);
        stream->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
        stream->codecpar->codec_id = AV_CODEC_ID_PCM_S16LE;
        stream->codecpar->format = AV_SAMPLE_FMT_S16;
        stream->codecpar->sample_rate = 48000;
        stream->codecpar->ch_layout = AV_CHANNEL_LAYOUT_STEREO;
        stream->time_base = {1, 48000};
    }

    // As long as a picture.
    void SendSound(AVFormatContext& output, std::int64_t picture) const {
        if (m_settings.level == 0) return;
        constexpr int samples = 48000 / 50;  // of each channel
        const AvPacket packet = NewPacket();
        av_new_packet(packet.get(), samples * 4);
        for (int i = 0; i < packet->size; ++i)
            packet->data[i] = static_cast<std::uint8_t>(m_settings.level >> (i % 2 == 0 ? 0 : 8));
        packet->stream_index = 1;
        packet->pts = packet->dts = picture * samples;
        packet->duration = samples;
        packet->flags |= AV_PKT_FLAG_KEY;
        av_packet_rescale_ts(packet.get(), {1, 48000}, output.streams[1]->time_base);
        av_write_frame(&output, packet.get());
    }

    void Send() {
        const auto output = OpenOutput();
        if (!output) return;
        const AvCodec codec = OpenCodec();
        AVStream* stream = avformat_new_stream(output.get(), nullptr);
        avcodec_parameters_from_context(stream->codecpar, codec.get());
        stream->time_base = codec->time_base;
        stream->avg_frame_rate = codec->framerate;
        if (m_settings.level != 0) AddSound(*output);
        if (avformat_write_header(output.get(), nullptr) < 0) return;
        // The memory for RTP's packets goes with its end, which is none to see. The others are cut off.
        const std::unique_ptr<AVFormatContext, WriteEnd> end(m_settings.format == "rtp" ? output.get() : nullptr);
        const AvFrame frame = NewFrame();
        frame->format = AV_PIX_FMT_YUV420P;
        frame->width = m_settings.width;
        frame->height = m_settings.height;
        av_frame_get_buffer(frame.get(), 0);
        const AvPacket packet = NewPacket();
        for (std::int64_t time = 0; !m_ends; ++time) {
            Paint(*frame);
            frame->pts = time;
            avcodec_send_frame(codec.get(), frame.get());
            while (avcodec_receive_packet(codec.get(), packet.get()) >= 0) {
                if (m_isDamaged) Damage(*packet);
                av_packet_rescale_ts(packet.get(), codec->time_base, stream->time_base);
                if (av_write_frame(output.get(), packet.get()) < 0) return;
            }
            SendSound(*output, time);
            ++m_sent;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    Settings m_settings;
    std::atomic<int> m_grey = m_settings.grey;
    std::atomic<bool> m_isDamaged = m_settings.isDamaged;
    std::atomic<int> m_sent = 0;
    std::atomic<bool> m_ends = false;
    std::thread m_thread;  // last: it uses all of the above
};

// What a picture shows of a camera's grey: video's 16 to 235 are 0 to 255.
[[nodiscard]] constexpr int ShownGrey(int grey) { return (grey - 16) * 255 / 219; }

}  // namespace kel::testing
