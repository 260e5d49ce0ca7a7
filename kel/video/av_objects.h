#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace kel {

// The objects of libav* with their owners, for the files of this folder alone.

struct FreeAvObject {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
struct CloseAvInput {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};

using AvInput = std::unique_ptr<AVFormatContext, CloseAvInput>;
using AvCodec = std::unique_ptr<AVCodecContext, FreeAvObject>;
using AvFrame = std::unique_ptr<AVFrame, FreeAvObject>;
using AvPacket = std::unique_ptr<AVPacket, FreeAvObject>;
using AvScaler = std::unique_ptr<SwsContext, FreeAvObject>;

// Throw std::bad_alloc when there is no memory.
[[nodiscard]] AvFrame NewFrame();
[[nodiscard]] AvPacket NewPacket();

// What a negative result of libav* means, without an end of line.
[[nodiscard]] std::string AvReason(int result);

// libav* tells about files on standard error; here an Error tells. Safe to repeat.
void SilenceAv();

}  // namespace kel
