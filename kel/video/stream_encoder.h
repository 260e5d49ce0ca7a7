#pragma once

#include <cstdint>
#include <memory>

#include "kel/video/av_objects.h"
#include "kel/video/picture_packer.h"
#include "kel/video/sound_encoder.h"
#include "kel/video/stream_format.h"
#include "kel/video/stream_output.h"
#include "kel/video/stream_writer.h"
#include "kel/video/video_codec.h"
#include "kel/video/video_writer.h"
#include "picture_io/picture.h"

namespace kel {

// What StreamWriter is made of.
class StreamEncoder {
public:
    StreamEncoder(const StreamFormat& format, const VideoSettings& settings, StreamOutput& output,
                  StreamWriter::Sound sound);

    bool Write(const picture_io::Picture& picture, std::int64_t number);
    bool Repeat(std::int64_t number);
    bool WriteSound(const StreamSound::Piece& piece);
    bool End();

private:
    // Frees the buffer of the output, too, which the library may have replaced.
    struct CloseOutput {
        void operator()(AVFormatContext* output) const;
    };

    static int SendBytes(void* self, std::uint8_t* bytes, int count);
    void OpenContainer();
    bool Encode(const AVFrame* frame);
    bool WritePacket();
    bool WriteSoundPacket(AVPacket& packet);
    void AddStream(const AVCodecContext& codec);
    // Throws for what went wrong here and not on the way to the reader.
    bool Check(int result) const;

    const VideoCodec& m_wanted;  // of the table
    StreamOutput& m_reader;
    bool m_isReaderGone = false;
    std::unique_ptr<AVFormatContext, CloseOutput> m_output;
    AvCodec m_codec;
    std::unique_ptr<SoundEncoder> m_sound;  // null: the stream has none
    AvFrame m_frame;
    AvPacket m_packet;
    AvPacket m_last;  // as the encoder gave it; of a stateless codec only
    PicturePacker m_packer;
};

}  // namespace kel
