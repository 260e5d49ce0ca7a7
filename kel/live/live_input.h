#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include "kel/live/key_finder.h"
#include "kel/live/live_name.h"
#include "kel/video/av_objects.h"

namespace kel {

// Live pictures being opened and read, packet by packet, by one thread; any other may end a call at once by setting the
// flag that it was made with.
class LiveInput {
public:
    // How long nothing may come before the other side counts as gone.
    static constexpr auto longestSilence = std::chrono::seconds(5);

    // ends: borrowed. Nothing is opened yet.
    LiveInput(const LiveName& name, const std::atomic<bool>& ends);

    // A negative result says why not; AVERROR_EXIT when the flag ended it.
    int Open();
    // The next packet of the pictures or of their sound; the same results, and AVERROR_EOF at the end.
    int Read(AVPacket& packet);
    [[nodiscard]] const AVStream& Pictures() const { return *m_input->streams[m_stream]; }  // after Read
    // The stream of a packet that was just read, if that is the sound's; null: it is the pictures'.
    [[nodiscard]] const AVStream* SoundOf(const AVPacket& packet) const {
        return packet.stream_index == m_sound ? m_input->streams[m_sound] : nullptr;
    }

    // What comes is cut as it was sent, and not as a file has it.
    [[nodiscard]] bool IsUncut() const { return (m_input->flags & AVFMT_FLAG_NOPARSE) != 0; }

private:
    static int IsOver(void* self);
    void Allow(std::chrono::steady_clock::duration time) { m_deadline = std::chrono::steady_clock::now() + time; }
    [[nodiscard]] AVDictionary* Options() const;
    [[nodiscard]] int Told(int result) const;
    bool Choose(const AVPacket& packet);
    void MarkKey(AVPacket& packet);

    const LiveName m_name;
    const std::atomic<bool>& m_ends;
    std::chrono::steady_clock::time_point m_deadline;
    int m_stream = -1;         // none chosen yet
    int m_sound = -1;          // likewise
    bool m_hasPicture = true;  // and no sound, what was read last
    std::optional<KeyFinder> m_keys;
    AVCodecID m_keysCodec = AV_CODEC_ID_NONE;
    AvInput m_input;  // last: it calls back
};

}  // namespace kel
