#include "kel/session/video_on_container.h"

#include <utility>

#include "cli/error.h"

namespace kel {

VideoShow::VideoShow(const std::filesystem::path& file, ObjectId container, double fieldsPerSecond)
    : m_container(container),
      m_reader(file),
      m_framesPerSecond(m_reader.FramesPerSecond()),
      m_clock(m_reader.FrameCount(), m_framesPerSecond / fieldsPerSecond) {}

bool VideoShow::ShowFrame(Host& host, std::int64_t frame) {
    if (frame == m_shown) return false;
    m_shown = frame;
    const picture_io::Picture picture = TakeFrame(frame);
    Prefetch(frame + 1 < m_clock.Frames() ? frame + 1 : 0);
    host.SetPicture(m_container, picture);
    return true;
}

picture_io::Picture VideoShow::TakeFrame(std::int64_t frame) {
    if (m_coming.valid()) {
        if (m_comingFrame == frame) return m_coming.get();
        m_coming.wait();  // the reader is free again, and nobody wants that frame
        m_coming = {};
    }
    return m_reader.ReadFrame(frame);
}

void VideoShow::Prefetch(std::int64_t frame) {
    m_comingFrame = frame;
    m_coming = std::async(std::launch::async, [this, frame] { return m_reader.ReadFrame(frame); });
}

}  // namespace kel
