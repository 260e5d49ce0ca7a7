#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <thread>

#include "kel/live/live_news.h"
#include "kel/live/packet_ring.h"
#include "kel/video/picture_converter.h"

namespace kel {

// Decodes what comes into a ring on a thread of its own and keeps the newest picture. The first one gives the size of
// all; others are fitted into it.
class LiveDecoder {
public:
    // Borrows the ring and the news. The ring's end is the thread's.
    LiveDecoder(PacketRing& ring, LiveNews& news);
    ~LiveDecoder();  // the ring has ended by then
    LiveDecoder(const LiveDecoder&) = delete;
    LiveDecoder& operator=(const LiveDecoder&) = delete;
    LiveDecoder(LiveDecoder&&) = delete;
    LiveDecoder& operator=(LiveDecoder&&) = delete;

    struct Size {
        std::int32_t width = 0;  // pixels; 0: no picture has come yet
        std::int32_t height = 0;
        double framesPerSecond = 0;  // as the pictures themselves say; 0: they do not
    };
    [[nodiscard]] Size PictureSize() const;
    // Waits so long for the first picture. True: it is there.
    bool WaitForPicture(std::chrono::milliseconds atMost);

    // The newest picture, bottom row first, for another one whose memory is used again. False: it was taken before.
    bool Take(picture_io::Picture& upwards);
    // When the one taken last is shown, in the ring's time; nothing: none was.
    [[nodiscard]] std::optional<double> ShownSeconds() const;
    // The one taken last, made exactly; false: none was.
    bool TakeExactly(picture_io::Picture& upwards);
    void SetConversion(VideoConversion conversion) { m_conversion = conversion; }

private:
    void Run();
    void Open(const AVCodecParameters& parameters);
    void DecodeOrTell(const PacketRing::Next& next);
    void Decode(const PacketRing::Next& next);
    void Publish();
    void NoteSize();
    void MakeRoom();

    PacketRing& m_ring;
    LiveNews& m_news;
    std::atomic<VideoConversion> m_conversion = VideoConversion::Exact;
    LiveCodec m_parameters;  // of the thread, as all that follows up to the mutex
    AvCodec m_codec;
    AvFrame m_frame;
    PictureConverter m_converter;
    picture_io::Picture m_back;
    std::chrono::steady_clock::time_point m_published;
    std::int32_t m_frameWidth = 0;
    std::int32_t m_frameHeight = 0;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    Size m_size;  // guarded by m_mutex, as is all below
    picture_io::Picture m_ready;
    AvFrame m_readyFrame;
    AvFrame m_shownFrame;
    bool m_isNew = false;
    std::thread m_thread;  // last: it uses all of the above
};

}  // namespace kel
