#include "apps/chalkpane/filtering/video_output.h"

#include <string>
#include <utility>
#include <vector>

#include "apps/chalkpane/filtering/picture_image.h"
#include "cli/error.h"
#include "cli/word_list.h"
#include "kel/video/video_format.h"

namespace chalkpane::app {

VideoOutput::VideoOutput(std::filesystem::path file, double framesPerSecond, bool hasAlpha)
    : m_file(std::move(file)),
      m_framesPerSecond(framesPerSecond),
      m_hasAlpha(hasAlpha && kel::FormatOfVideo(m_file)->hasAlpha) {}

// A video has 8 bits a channel.
void VideoOutput::Write(std::unique_ptr<Image> image) {
    RequireNoLoss();
    SetAlphaForm(*image, AlphaForm::Straight);
    if (image->GetDepth() != Depth::Eight) image = image->Convert(Rect(), Depth::Eight);
    const auto picture = std::get<picture_io::Picture>(PictureOf(*image));
    if (!m_writer)
        m_writer.emplace(m_file, kel::VideoSettings{picture.width, picture.height, m_framesPerSecond, m_hasAlpha});
    m_writer->Write(picture);
}

void VideoOutput::Commit() {
    m_writer->Close();
    m_writer->Commit();
}

bool IsVideoName(const std::filesystem::path& file) { return kel::FormatOfVideo(file) != nullptr; }

void RequireVideoName(const std::filesystem::path& file) {
    if (IsVideoName(file)) return;
    std::vector<std::string> endings;
    for (const kel::VideoFormat& format : kel::VideoFormats()) endings.emplace_back(format.ending);
    throw cli::Error(file.string(), {}, "a film goes into a film; films end in " + cli::WordList(endings, "or"));
}

}  // namespace chalkpane::app
