#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace picture_io {

// The objects of libav* with their owners, for the files that call those libraries alone.

struct FreeAvObject {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

using AvCodec = std::unique_ptr<AVCodecContext, FreeAvObject>;
using AvFrame = std::unique_ptr<AVFrame, FreeAvObject>;
using AvPacket = std::unique_ptr<AVPacket, FreeAvObject>;
using AvScaler = std::unique_ptr<SwsContext, FreeAvObject>;

}  // namespace picture_io
