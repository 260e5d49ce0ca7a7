#include "kel/video/video_format.h"

#include <algorithm>
#include <array>

#include "cli/file_ending.h"
#include "kel/video/video_codec.h"

namespace kel {
namespace {

constexpr VideoCodec quickTimeAnimation{"mov", "qtrle", AV_PIX_FMT_RGB24, AV_PIX_FMT_ARGB, 25, 1, false, {}};
constexpr VideoCodec ffv1{
    "matroska", "ffv1", AV_PIX_FMT_0RGB32, AV_PIX_FMT_RGB32, 1, 2, true, {{{"level", "3"}, {"slicecrc", "1"}}}};
constexpr VideoCodec h264{
    "mp4", "libx264", AV_PIX_FMT_YUV420P, AV_PIX_FMT_NONE, 50, 1, false, {{{"preset", "veryfast"}, {"crf", "16"}}}};
constexpr VideoCodec vp9{"webm",
                         "libvpx-vp9",
                         AV_PIX_FMT_YUV420P,
                         AV_PIX_FMT_NONE,
                         50,
                         1,
                         false,
                         {{{"deadline", "realtime"}, {"cpu-used", "6"}, {"crf", "16"}, {"b", "0"}}}};

constexpr bool exact = true;
constexpr bool alpha = true;
constexpr bool live = true;

constexpr std::array formats{
    VideoFormat{".mov", "QuickTime Animation", exact, alpha, live, &quickTimeAnimation},
    VideoFormat{".mkv", "FFV1", exact, alpha, !live, &ffv1},
    VideoFormat{".mp4", "H.264", !exact, !alpha, live, &h264},
    VideoFormat{".webm", "VP9", !exact, !alpha, !live, &vp9},
};
static_assert(std::ranges::all_of(formats, [](const VideoFormat& format) {
    return format.hasAlpha == (format.codec->withAlpha != AV_PIX_FMT_NONE);
}));

}  // namespace

std::span<const VideoFormat> VideoFormats() { return formats; }

const VideoFormat* FormatOfVideo(const std::filesystem::path& file) {
    const std::string ending = cli::EndingOf(file);
    const auto* const found =
        std::ranges::find(formats, ending, [](const VideoFormat& format) { return std::string(format.ending); });
    return found == formats.end() ? nullptr : found;
}

}  // namespace kel
