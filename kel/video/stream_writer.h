#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kel/video/stream_format.h"
#include "kel/video/stream_output.h"
#include "kel/video/stream_sound.h"
#include "kel/video/video_writer.h"
#include "picture_io/picture.h"

namespace kel {

class StreamEncoder;

// A stream to one reader, picture by picture, from the first byte that this reader gets. One thread at a time.
//
// What cannot be encoded throws Error; a reader that is gone is no error.
class StreamWriter {
public:
    enum class Sound : bool { None, Beside };
    //   output  borrowed; has a reader
    StreamWriter(const StreamFormat& format, const VideoSettings& settings, StreamOutput& output,
                 Sound sound = Sound::None);
    ~StreamWriter();
    StreamWriter(const StreamWriter&) = delete;
    StreamWriter& operator=(const StreamWriter&) = delete;
    StreamWriter(StreamWriter&&) = delete;
    StreamWriter& operator=(StreamWriter&&) = delete;

    // The next picture, of the stream's size.
    //   number  its time in frames, above that of the one before
    // False: the reader is gone.
    [[nodiscard]] bool Write(const picture_io::Picture& picture, std::int64_t number);
    // The picture before once more, of which there is one.
    [[nodiscard]] bool Repeat(std::int64_t number);
    // What is heard beside the pictures, in a stream that has sound; false as above.
    [[nodiscard]] bool WriteSound(const StreamSound::Piece& piece);
    // What belongs to the end; false as above.
    [[nodiscard]] bool End();

private:
    std::unique_ptr<StreamEncoder> m_encoder;
};

}  // namespace kel
