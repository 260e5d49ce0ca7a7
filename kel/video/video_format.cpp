#include "kel/video/video_format.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace kel {
namespace {

constexpr std::array formats{
    VideoFormat{".mov", "mov", "qtrle", AV_PIX_FMT_RGB24, AV_PIX_FMT_ARGB, 25, 1, {}},
    VideoFormat{
        ".mkv", "matroska", "ffv1", AV_PIX_FMT_0RGB32, AV_PIX_FMT_RGB32, 1, 2, {{{"level", "3"}, {"slicecrc", "1"}}}},
    VideoFormat{".mp4",
                "mp4",
                "libx264",
                AV_PIX_FMT_YUV420P,
                AV_PIX_FMT_NONE,
                50,
                1,
                {{{"preset", "veryfast"}, {"crf", "16"}}}},
    VideoFormat{".webm",
                "webm",
                "libvpx-vp9",
                AV_PIX_FMT_YUV420P,
                AV_PIX_FMT_NONE,
                50,
                1,
                {{{"deadline", "realtime"}, {"cpu-used", "6"}, {"crf", "16"}, {"b", "0"}}}},
};

}  // namespace

const VideoFormat* FormatOfVideo(const std::filesystem::path& file) {
    std::string ending = file.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char letter) { return std::tolower(letter); });
    const auto* const found =
        std::ranges::find(formats, ending, [](const VideoFormat& format) { return std::string(format.ending); });
    return found == formats.end() ? nullptr : found;
}

}  // namespace kel
