#include "kel/outputs/output_format.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "cli/file_ending.h"
#include "cli/word_list.h"
#include "kel/video/video_format.h"

namespace kel {
namespace {

// Compressing a PNG takes several times as long as a field, so no picture is live.
constexpr std::array pictureFormats{
    OutputFormat{".png", "PNG", OutputMedium::Picture, true, true, false},
    OutputFormat{".jpg", "JPEG", OutputMedium::Picture, false, false, false},
    OutputFormat{".jpeg", "JPEG", OutputMedium::Picture, false, false, false},
};

std::vector<OutputFormat> AllFormats() {
    std::vector<OutputFormat> all(pictureFormats.begin(), pictureFormats.end());
    for (const VideoFormat& video : VideoFormats())
        all.push_back({video.ending, video.name, OutputMedium::Video, video.isExact, video.hasAlpha, video.isLive});
    return all;
}

}  // namespace

std::span<const OutputFormat> OutputFormats() {
    static const std::vector<OutputFormat> formats = AllFormats();
    return formats;
}

const OutputFormat* FormatOfOutput(const std::filesystem::path& file) {
    const std::string ending = cli::EndingOf(file);
    for (const OutputFormat& format : OutputFormats())
        if (ending == format.ending) return &format;
    return nullptr;
}

std::string OutputEndings(bool (*which)(const OutputFormat&), const char* beforeLast) {
    std::vector<std::string> endings;
    for (const OutputFormat& format : OutputFormats())
        if (which(format)) endings.emplace_back(format.ending);
    return cli::WordList(endings, beforeLast);
}

bool IsAnyOutput(const OutputFormat& /*format*/) { return true; }
bool IsPictureOutput(const OutputFormat& format) { return format.medium == OutputMedium::Picture; }
bool IsVideoOutput(const OutputFormat& format) { return format.medium == OutputMedium::Video; }
bool IsAlphaOutput(const OutputFormat& format) { return format.hasAlpha; }
bool IsAlphaVideoOutput(const OutputFormat& format) { return IsVideoOutput(format) && format.hasAlpha; }
bool IsAlphaPictureOutput(const OutputFormat& format) { return IsPictureOutput(format) && format.hasAlpha; }

}  // namespace kel
