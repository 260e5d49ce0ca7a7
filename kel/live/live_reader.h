#pragma once

#include <memory>
#include <string>
#include <thread>

#include "kel/live/live_name.h"
#include "kel/live/live_news.h"
#include "kel/live/packet_ring.h"

namespace kel {

// Reads live pictures into a ring on a thread of its own, and opens them again when they stop coming.
class LiveReader {
public:
    LiveReader(const LiveName& name, std::shared_ptr<PacketRing> ring, std::shared_ptr<LiveNews> news);
    // Ends what is being opened or read at once. What cannot be ended, such as the question where a host is, is left to
    // itself after a moment and does nothing any more when it returns.
    ~LiveReader();
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
    [[nodiscard]] double DeclaredFramesPerSecond() const;  // 0: it does not say

private:
    class Work;

    std::shared_ptr<Work> m_work;  // the thread's too
    std::thread m_thread;
};

}  // namespace kel
