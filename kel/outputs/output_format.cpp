#include "kel/outputs/output_format.h"

#include <vector>

#include "cli/file_ending.h"
#include "cli/word_list.h"
#include "kel/outputs/live_address.h"
#include "kel/video/video_format.h"
#include "picture_io/picture_format.h"

namespace kel {
namespace {

std::vector<OutputFormat> AllFormats() {
    // Compressing a picture takes several times as long as a field, so none is live.
    constexpr bool isLive = false;
    std::vector<OutputFormat> all;
    for (const picture_io::FormatRow& picture : picture_io::PictureFormats()) {
        if (!picture.hasColour) continue;  // a field has colours
        for (const std::string_view ending : picture.endings)
            all.push_back({ending, picture.name, OutputMedium::Picture, picture.hasAlpha, isLive});
    }
    for (const VideoFormat& video : VideoFormats())
        all.push_back({video.ending, video.name, OutputMedium::Video, video.hasAlpha, video.isLive});
    for (const LiveScheme& scheme : LiveSchemes())
        all.push_back(
            {scheme.beginning, scheme.UsualFormat().name, OutputMedium::Stream, scheme.UsualFormat().hasAlpha, true});
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
        if (IsFileOutput(format) && ending == format.ending) return &format;
    return nullptr;
}

std::string OutputEndings(bool (*which)(const OutputFormat&), const char* beforeLast) {
    std::vector<std::string> endings;
    for (const OutputFormat& format : OutputFormats())
        if (which(format)) endings.emplace_back(format.ending);
    return cli::WordList(endings, beforeLast);
}

bool IsFileOutput(const OutputFormat& format) { return format.medium != OutputMedium::Stream; }
bool IsStreamOutput(const OutputFormat& format) { return format.medium == OutputMedium::Stream; }
bool IsAlphaStreamOutput(const OutputFormat& format) { return IsStreamOutput(format) && format.hasAlpha; }
bool IsPictureOutput(const OutputFormat& format) { return format.medium == OutputMedium::Picture; }
bool IsVideoOutput(const OutputFormat& format) { return format.medium == OutputMedium::Video; }
bool IsAlphaOutput(const OutputFormat& format) { return IsFileOutput(format) && format.hasAlpha; }
bool IsAlphaVideoOutput(const OutputFormat& format) { return IsVideoOutput(format) && format.hasAlpha; }
bool IsAlphaPictureOutput(const OutputFormat& format) { return IsPictureOutput(format) && format.hasAlpha; }

}  // namespace kel
