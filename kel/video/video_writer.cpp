#include "kel/video/video_writer.h"

#include "kel/video/video_encoder.h"

namespace kel {

VideoWriter::VideoWriter(const std::filesystem::path& file, const VideoSettings& settings)
    : m_encoder(std::make_unique<VideoEncoder>(file, settings)) {}
VideoWriter::~VideoWriter() = default;
VideoWriter::VideoWriter(VideoWriter&&) noexcept = default;
VideoWriter& VideoWriter::operator=(VideoWriter&&) noexcept = default;

void VideoWriter::Write(const picture_io::Picture& picture) { m_encoder->Write(picture); }
void VideoWriter::WriteChanged(const picture_io::Picture& picture, const PicturePart& changed) {
    m_encoder->WriteChanged(picture, changed);
}
void VideoWriter::Repeat() { m_encoder->Repeat(); }
void VideoWriter::Close() { m_encoder->Close(); }
void VideoWriter::Commit() { m_encoder->Commit(); }

}  // namespace kel
