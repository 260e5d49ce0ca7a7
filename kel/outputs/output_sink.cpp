#include "kel/outputs/output_sink.h"

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/outputs/numbered_pictures_sink.h"
#include "kel/outputs/output_format.h"
#include "kel/outputs/picture_sink.h"
#include "kel/outputs/video_sink.h"

namespace kel {
namespace {

const OutputFormat& FormatFor(const std::filesystem::path& file) {
    if (const OutputFormat* format = FormatOfOutput(file)) return *format;
    if (file.string().find("://") != std::string::npos)
        throw cli::Error(file.string(), {},
                         "is no file; what is sent live goes to the address of --live, --live-overlay, --live-fill and "
                         "--live-key, or --live-fill-key");
    const std::string ending = file.extension().string();
    std::vector<std::string> known;
    for (const OutputFormat& format : OutputFormats())
        if (IsFileOutput(format)) known.emplace_back(format.ending);
    throw cli::Error(file.string(), {},
                     "neither a picture nor a film ends in " + cli::Quoted(ending) + cli::NearestHint(ending, known));
}

void CheckAlpha(const std::filesystem::path& file, const OutputFormat& format) {
    if (format.hasAlpha) return;
    throw cli::Error(file.string(), {},
                     file.extension().string() + " has no alpha; the strokes alone need " +
                         OutputEndings(IsAlphaOutput, "or") + ", or else --fill and --key");
}

}  // namespace

std::unique_ptr<OutputSink> MakeSink(View view, const std::string& path) {
    const OutputFormat& format = FormatFor(path);
    if (view == View::Overlay || view == View::Canvas) CheckAlpha(path, format);
    if (format.medium == OutputMedium::Video) return std::make_unique<VideoSink>(view, path, format);
    if (IsNumberedName(path)) return std::make_unique<NumberedPicturesSink>(view, path);
    return std::make_unique<PictureSink>(view, path);
}

bool IsNumberedName(const std::string& path) {
    return std::filesystem::path(path).filename().string().find('%') != std::string::npos;
}

}  // namespace kel
