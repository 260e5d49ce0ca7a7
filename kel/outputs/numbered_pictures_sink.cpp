#include "kel/outputs/numbered_pictures_sink.h"

namespace kel {

void NumberedPicturesSink::Open(const SinkSettings& settings) {
    m_files = settings.files;
    for (; m_announced < settings.fields; ++m_announced) m_files->Announce(m_name.At(m_announced));
}

void NumberedPicturesSink::TakeField(const OutputField& field) {
    for (; m_announced <= field.number; ++m_announced) m_files->Announce(m_name.At(m_announced));
    m_files->Stage(*field.Of(m_view), m_name.At(field.number));
}

}  // namespace kel
