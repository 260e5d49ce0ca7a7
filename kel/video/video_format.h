#pragma once

#include <filesystem>
#include <span>

namespace kel {

struct VideoCodec;  // kel/video/video_codec.h

// One way to write a video, chosen by the ending of its name. VideoFormats is the only list of them: messages, help
// texts and checks are made from it.
struct VideoFormat {
    const char* ending;  // in lower case, such as ".mov"
    const char* name;    // of the codec, as people call it
    bool isExact;        // every pixel comes back as it was
    bool hasAlpha;       // alpha can be kept
    bool isLive;         // one processor core writes 1280 x 720 pixels 50 times a second
    const VideoCodec* codec;
};

[[nodiscard]] std::span<const VideoFormat> VideoFormats();

// Null: no video ends like that.
[[nodiscard]] const VideoFormat* FormatOfVideo(const std::filesystem::path& file);

}  // namespace kel
