#include "kel/outputs/video_sink.h"

namespace kel {

void VideoSink::Open(const SinkSettings& settings) {
    settings.files->AnnounceOther(m_path);
    const bool hasAlpha = m_view == View::Overlay;
    const bool carriesVideo = m_view == View::Rendered;
    m_writer.emplace(m_path, VideoSettings{settings.size.width, settings.size.height, settings.fieldsPerSecond,
                                           hasAlpha, carriesVideo ? settings.source : std::filesystem::path()});
}

void VideoSink::TakeField(const OutputField& field) {
    const SharedPicture& picture = field.Of(m_view);
    if (field.changed)
        m_writer->WriteChanged(*picture, *field.changed);
    else if (picture == m_last)
        m_writer->Repeat();
    else
        m_writer->Write(*picture);
    m_last = picture;
}

}  // namespace kel
