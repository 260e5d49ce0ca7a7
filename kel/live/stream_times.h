#pragma once

#include <cstdint>
#include <optional>

namespace kel {

// Makes times that go on and on of what a stream says, which may be nothing, or jump in either direction: clocks of
// cameras are set, counters of streams begin anew. All are microseconds; the first is 0.
class StreamTimes {
public:
    struct Times {
        std::int64_t decoded = 0;  // above that of the packet before
        std::int64_t shown = 0;    // not below `decoded`
    };
    //   decoded, shown  as the stream has them; nothing: it says none
    //   arrived         when it came, on a clock that goes on
    [[nodiscard]] Times Next(std::optional<std::int64_t> decoded, std::optional<std::int64_t> shown,
                             std::int64_t arrived);
    // Another time of the same stream, such as that of its sound, as the pictures' are made; nothing: it is far from
    // theirs.
    [[nodiscard]] std::optional<std::int64_t> At(std::int64_t said) const;
    // The next packet is of another stream: its times begin where it comes.
    void Break() { m_isBroken = true; }

private:
    std::int64_t m_offset = 0;
    std::int64_t m_last = -1;
    std::int64_t m_lastArrival = 0;
    bool m_isBroken = true;
    bool m_isByArrival = false;  // the packet before said no time
};

}  // namespace kel
