#include "kel/video/stream_format.h"

#include <algorithm>
#include <array>

#include "kel/video/video_codec.h"

namespace kel {
namespace {

// A reader may come at any time, so each begins with a key frame soon: all of FFV1's and raw pictures are.
constexpr VideoCodec streamedH264{"mpegts",
                                  "libx264",
                                  AV_PIX_FMT_YUV420P,
                                  AV_PIX_FMT_NONE,
                                  25,
                                  1,
                                  false,
                                  {{{"preset", "superfast"}, {"tune", "zerolatency"}, {"crf", "18"}}}};
constexpr VideoCodec streamedFfv1{
    "nut", "ffv1", AV_PIX_FMT_0RGB32, AV_PIX_FMT_RGB32, 1, 2, true, {{{"level", "3"}, {"slicecrc", "1"}}}};
constexpr VideoCodec rawPictures{"nut", "rawvideo", AV_PIX_FMT_BGR0, AV_PIX_FMT_BGRA, 1, 1, true, {}};

constexpr bool keepsPixels = true;
constexpr bool keepsAlpha = true;

constexpr std::array streamFormats{
    StreamFormat{"h264", "MPEG-TS", "H.264", !keepsPixels, !keepsAlpha, &streamedH264, "aac"},
    StreamFormat{"ffv1", "NUT", "FFV1", keepsPixels, keepsAlpha, &streamedFfv1, "pcm_s16le"},
    StreamFormat{"raw", "NUT", "raw BGRA", keepsPixels, keepsAlpha, &rawPictures, "pcm_s16le"},
};

}  // namespace

std::span<const StreamFormat> StreamFormats() { return streamFormats; }

const StreamFormat* FormatOfStream(std::string_view word) {
    const auto* const found = std::ranges::find(streamFormats, word, &StreamFormat::word);
    return found == streamFormats.end() ? nullptr : found;
}

}  // namespace kel
