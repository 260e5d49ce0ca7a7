#include "kel/video/stream_writer.h"

#include "kel/video/stream_encoder.h"

namespace kel {

StreamWriter::StreamWriter(const StreamFormat& format, const VideoSettings& settings, StreamOutput& output, Sound sound)
    : m_encoder(std::make_unique<StreamEncoder>(format, settings, output, sound)) {}
StreamWriter::~StreamWriter() = default;

bool StreamWriter::Write(const picture_io::Picture& picture, std::int64_t number) {
    return m_encoder->Write(picture, number);
}
bool StreamWriter::Repeat(std::int64_t number) { return m_encoder->Repeat(number); }
bool StreamWriter::WriteSound(const StreamSound::Piece& piece) { return m_encoder->WriteSound(piece); }
bool StreamWriter::End() { return m_encoder->End(); }

}  // namespace kel
