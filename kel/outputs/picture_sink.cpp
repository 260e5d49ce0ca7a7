#include "kel/outputs/picture_sink.h"

namespace kel {

void PictureSink::Open(const SinkSettings& settings) {
    m_files = settings.files;
    m_files->Announce(m_path);
}

}  // namespace kel
