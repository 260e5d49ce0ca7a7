#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "kel/live/live_input.h"
#include "kel/live/live_news.h"
#include "kel/live/packet_ring.h"
#include "kel/live/stream_times.h"

namespace kel {

// Reads live pictures into a ring on a thread of its own, and opens them again when they stop coming.
class LiveReader {
public:
    // Borrows the ring and the news.
    LiveReader(const LiveName& name, PacketRing& ring, LiveNews& news);
    ~LiveReader();  // ends what is being opened or read at once
    LiveReader(const LiveReader&) = delete;
    LiveReader& operator=(const LiveReader&) = delete;
    LiveReader(LiveReader&&) = delete;
    LiveReader& operator=(LiveReader&&) = delete;

    struct State {
        bool isThere = false;     // pictures come
        bool isHopeless = false;  // it was never there and never will be: a device or a screen, or a wrong address
        std::string reason;       // why they do not
    };
    [[nodiscard]] State Now() const;
    [[nodiscard]] double DeclaredFramesPerSecond() const { return m_framesPerSecond; }  // 0: it does not say

private:
    void Run();
    int ReadAll(LiveInput& input);
    void TakePacket(const LiveInput& input, const AVPacket& packet);
    void NoteThere(const LiveInput& input);
    void NoteLost(int result);

    const LiveName m_name;
    PacketRing& m_ring;
    LiveNews& m_news;
    StreamTimes m_times;  // of the thread, as the next one is
    LiveCodec m_codec;
    bool m_wasThere = false;
    std::atomic<double> m_framesPerSecond = 0;
    std::atomic<bool> m_ends = false;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    State m_state;         // guarded by m_mutex
    std::thread m_thread;  // last: it uses all of the above
};

}  // namespace kel
