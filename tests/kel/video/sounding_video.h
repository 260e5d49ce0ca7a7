#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "kel/video/av_objects.h"

namespace kel::testing {

// What is heard in the n-th second, 0 being the first: this level in both channels.
[[nodiscard]] inline std::int16_t LevelOfSecond(int second) { return static_cast<std::int16_t>(1000 * (second + 1)); }

// Writes the video once more into a Matroska file, with so many seconds of sound in levels that tell the second:
// 48000 samples a second, two channels, not compressed.
inline void WriteWithSound(const std::filesystem::path& video, const std::filesystem::path& file, int seconds) {
    const auto check = [](int result) {
        if (result < 0) throw std::runtime_error("libav*: " + AvReason(result));
    };
    AVFormatContext* opened = nullptr;
    check(avformat_open_input(&opened, video.c_str(), nullptr, nullptr));
    const AvInput input(opened);
    check(avformat_find_stream_info(input.get(), nullptr));
    AVFormatContext* output = nullptr;
    check(avformat_alloc_output_context2(&output, nullptr, "matroska", nullptr));
    AVStream* pictures = avformat_new_stream(output, nullptr);
    check(avcodec_parameters_copy(pictures->codecpar, input->streams[0]->codecpar));
    pictures->codecpar->codec_tag = 0;
    AVStream* sound = avformat_new_stream(output, nullptr);
    sound->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
    sound->codecpar->codec_id = AV_CODEC_ID_PCM_S16LE;
    sound->codecpar->sample_rate = 48000;
    sound->codecpar->format = AV_SAMPLE_FMT_S16;
    sound->codecpar->ch_layout = AV_CHANNEL_LAYOUT_STEREO;
    sound->time_base = {1, 48000};
    check(avio_open(&output->pb, file.c_str(), AVIO_FLAG_WRITE));
    check(avformat_write_header(output, nullptr));
    const AvPacket packet = NewPacket();
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        av_packet_rescale_ts(packet.get(), input->streams[0]->time_base, pictures->time_base);
        packet->stream_index = 0;
        check(av_interleaved_write_frame(output, packet.get()));
    }
    constexpr int perPacket = 960;  // samples: 20 ms
    for (int at = 0; at < seconds * 48000; at += perPacket) {
        check(av_new_packet(packet.get(), perPacket * 4));
        for (int i = 0; i < perPacket * 2; ++i) {
            const auto level = static_cast<std::uint16_t>(LevelOfSecond(at / 48000));
            packet->data[2 * i] = static_cast<std::uint8_t>(level & 0xFFU);
            packet->data[2 * i + 1] = static_cast<std::uint8_t>(level >> 8U);
        }
        packet->stream_index = 1;
        packet->pts = packet->dts = at;
        packet->duration = perPacket;
        packet->flags |= AV_PKT_FLAG_KEY;
        av_packet_rescale_ts(packet.get(), {1, 48000}, sound->time_base);
        check(av_interleaved_write_frame(output, packet.get()));
    }
    check(av_write_trailer(output));
    avio_closep(&output->pb);
    avformat_free_context(output);
}

}  // namespace kel::testing
