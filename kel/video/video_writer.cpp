#include "kel/video/video_writer.h"

#include "kel/video/video_encoder.h"

namespace kel {

bool IsVideoName(const std::filesystem::path& file) { return FormatOfVideo(file) != nullptr; }

bool KeepsAlpha(const std::filesystem::path& film) { return FormatOfVideo(film)->withAlpha != AV_PIX_FMT_NONE; }

VideoWriter::VideoWriter(const std::filesystem::path& file, const VideoSettings& settings)
    : m_encoder(std::make_unique<VideoEncoder>(file, settings)) {}
VideoWriter::~VideoWriter() = default;
VideoWriter::VideoWriter(VideoWriter&&) noexcept = default;
VideoWriter& VideoWriter::operator=(VideoWriter&&) noexcept = default;

void VideoWriter::Write(const picture_io::Picture& picture) { m_encoder->Write(picture); }
void VideoWriter::Close() { m_encoder->Close(); }
void VideoWriter::Commit() { m_encoder->Commit(); }

}  // namespace kel
