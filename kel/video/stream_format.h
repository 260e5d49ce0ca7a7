#pragma once

#include <span>
#include <string_view>

namespace kel {

struct VideoCodec;  // kel/video/video_codec.h

// One way to send pictures live. StreamFormats is the only list of them.
struct StreamFormat {
    std::string_view word;       // as an address says it, such as "ffv1"
    std::string_view container;  // as people call it
    std::string_view name;       // of the codec, likewise
    bool isExact;                // every pixel arrives as it was, in the full range
    bool hasAlpha;
    const VideoCodec* codec;
    const char* soundEncoder;  // of libav*, for the sound that goes with it
};

[[nodiscard]] std::span<const StreamFormat> StreamFormats();

// Null: there is none of that word.
[[nodiscard]] const StreamFormat* FormatOfStream(std::string_view word);

}  // namespace kel
