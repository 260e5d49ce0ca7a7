#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "kel/live/live_decoder.h"
#include "kel/live/live_name.h"
#include "kel/live/live_reader.h"
#include "kel/live/packet_ring.h"
#include "kel/video/sound_source.h"
#include "kel/video/video_reader.h"

namespace kel {

// Live pictures, opened because an operator named them: read and decoded on threads of their own, opened again when
// they stop. All functions are called on one thread, that of whoever shows them.
//
// Whatever comes, from whomever: pictures that cannot be decoded are passed over, times go on, and a picture of another
// size is fitted into that of the first.
class LiveSource {
public:
    explicit LiveSource(const LiveName& name, const PacketRing::Limits& replay = {});
    ~LiveSource();  // ends what is being opened or read at once
    LiveSource(const LiveSource&) = delete;
    LiveSource& operator=(const LiveSource&) = delete;
    LiveSource(LiveSource&&) = delete;
    LiveSource& operator=(LiveSource&&) = delete;

    [[nodiscard]] const LiveName& Name() const { return m_name; }

    // Waits so long for the first picture; true: it is there. Throws Error when it never will be.
    bool WaitForPicture(std::chrono::milliseconds atMost);
    // Of the first picture, once it is there.
    [[nodiscard]] std::int32_t Width() const { return m_decoder.PictureSize().width; }
    [[nodiscard]] std::int32_t Height() const { return m_decoder.PictureSize().height; }
    [[nodiscard]] double FramesPerSecond() const;  // above 0; as the source declares it

    // As LiveDecoder's.
    bool Take(picture_io::Picture& upwards) { return m_decoder.Take(upwards); }
    bool TakeExactly(picture_io::Picture& upwards) { return m_decoder.TakeExactly(upwards); }
    // What is heard with the picture taken last.
    [[nodiscard]] SoundMoment Heard() const;
    void SetConversion(VideoConversion conversion) { m_decoder.SetConversion(conversion); }

    [[nodiscard]] bool IsThere() const { return m_reader.Now().isThere; }
    [[nodiscard]] std::string Reason() const { return m_reader.Now().reason; }  // why not
    [[nodiscard]] std::vector<std::string> TakeNews() { return m_news->Take(); }
    // The last seconds as a video of the size of the live pictures, and as they came. Throws Error when nothing is kept
    // yet, or none of it can be shown.
    struct Replay {
        PacketRing::Held held;
        VideoReader video;
        std::shared_ptr<const SoundTrack> sound;  // by the video's time
        std::int32_t width = 0;                   // pixels, of the first frame as it came
        std::int32_t height = 0;
    };
    [[nodiscard]] Replay HoldReplay() const;
    // What is kept for that.
    [[nodiscard]] const PacketRing& Ring() const { return *m_ring; }

private:
    // Ends the ring before the threads that wait for it.
    struct RingEnd {
        PacketRing& ring;
        ~RingEnd() { ring.End(); }
    };

    LiveName m_name;
    std::shared_ptr<LiveNews> m_news = std::make_shared<LiveNews>();
    std::shared_ptr<PacketRing> m_ring;
    std::shared_ptr<const SoundTrack> m_track;
    LiveDecoder m_decoder;
    RingEnd m_end{*m_ring};
    LiveReader m_reader;
};

}  // namespace kel
