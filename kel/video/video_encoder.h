#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "cli/staged_file.h"
#include "kel/video/animation_packets.h"
#include "kel/video/av_objects.h"
#include "kel/video/picture_packer.h"
#include "kel/video/sound_copy.h"
#include "kel/video/video_codec.h"
#include "kel/video/video_writer.h"

namespace kel {

// What VideoWriter is made of.
class VideoEncoder {
public:
    VideoEncoder(const std::filesystem::path& file, const VideoSettings& settings);

    void Write(const picture_io::Picture& picture);
    void WriteChanged(const picture_io::Picture& picture, const PicturePart& changed);
    void Repeat();
    void Close();
    void Commit() { m_file.Commit(); }

private:
    // Closes the file when it ends.
    struct CloseOutput {
        void operator()(AVFormatContext* output) const;
    };

    void OpenCodec(const VideoSettings& settings);
    void OpenFile();
    void CheckSize(const picture_io::Picture& picture) const;
    [[nodiscard]] double SecondsWritten() const;
    void Encode(const AVFrame* frame);
    void WritePacket();
    // Throws when the step failed, or any write to the file so far.
    void Check(int result) const;

    cli::StagedFile m_file;
    const VideoCodec& m_codecSettings;  // of the table
    VideoSettings m_settings;
    std::unique_ptr<AVFormatContext, CloseOutput> m_output;
    std::optional<SoundCopy> m_sound;  // ends before the output
    AvCodec m_codec;
    AvFrame m_frame;
    AvPacket m_packet;
    AvPacket m_last;  // as the encoder gave it; of a stateless codec only
    PicturePacker m_packer;
    std::optional<AnimationPackets> m_animation;  // there once such a packet was made
    std::int64_t m_count = 0;                     // frames
};

}  // namespace kel
