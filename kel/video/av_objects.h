#pragma once

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include <memory>
#include <string>

#include "picture_io/av_objects.h"

namespace kel {

// The objects of libav* with their owners, for the files of this folder alone.

using picture_io::AvCodec;
using picture_io::AvFrame;
using picture_io::AvPacket;
using picture_io::AvScaler;

struct CloseAvInput {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};
using AvInput = std::unique_ptr<AVFormatContext, CloseAvInput>;

// Throw std::bad_alloc when there is no memory.
[[nodiscard]] AvFrame NewFrame();
[[nodiscard]] AvPacket NewPacket();

// What a negative result of libav* means, without an end of line.
[[nodiscard]] std::string AvReason(int result);

// libav* tells about files on standard error; here an Error tells. Safe to repeat.
void SilenceAv();

}  // namespace kel
