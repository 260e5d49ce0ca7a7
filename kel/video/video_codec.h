#pragma once

#include <array>

#include "kel/video/av_objects.h"

namespace kel {

struct CodecOption {
    const char* name = nullptr;
    const char* value = nullptr;
};

// What libav* is told of a VideoFormat.
struct VideoCodec {
    const char* container;
    const char* encoder;
    AVPixelFormat opaque;
    AVPixelFormat withAlpha;  // AV_PIX_FMT_NONE: alpha cannot be kept
    int keyEvery;             // frames
    int smallestSide;         // pixels; the codec gives smaller pictures back wrong
    bool isStateless;         // the same picture gives the same packet, at once
    std::array<CodecOption, 4> options;
};

}  // namespace kel
