#pragma once

#include <array>
#include <filesystem>

#include "kel/video/av_objects.h"

namespace kel {

struct CodecOption {
    const char* name = nullptr;
    const char* value = nullptr;
};

// One way to write a film, chosen by the ending of its name.
struct VideoFormat {
    const char* ending;
    const char* container;
    const char* codec;
    AVPixelFormat opaque;
    AVPixelFormat withAlpha;  // AV_PIX_FMT_NONE: alpha cannot be kept
    int keyEvery;             // frames
    int smallestSide;         // pixels; the codec gives smaller pictures back wrong
    std::array<CodecOption, 4> options;
};

// Null: no film ends like that.
[[nodiscard]] const VideoFormat* FormatOfVideo(const std::filesystem::path& file);

}  // namespace kel
