#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "kel/video/av_objects.h"

namespace kel {

// Takes the sound of one video over into another one as it is, packet by packet, without decoding it.
class SoundCopy {
public:
    // Adds the streams of sound that the output's container can hold, before its header is written. A source without
    // sound, or that is no video, gives none.
    SoundCopy(const std::filesystem::path& source, AVFormatContext& output);

    // Writes what is heard before that time of the output, counted from its first picture. Returns what libav* says,
    // negative when the output cannot be written.
    int WriteUntil(double seconds);

private:
    struct CopiedStream {
        int from = 0;
        int to = 0;
    };
    void AddStreams();
    bool ReadNext();

    AVFormatContext& m_output;
    AvInput m_input;  // null: nothing is copied
    std::vector<CopiedStream> m_streams;
    AvPacket m_packet;
    double m_begin = 0;        // of the source's pictures, in seconds of its own
    bool m_hasPacket = false;  // m_packet waits for its time
};

}  // namespace kel
