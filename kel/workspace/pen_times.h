#pragma once

#include <chrono>
#include <vector>

namespace kel {

// How long it takes from what the pen does to the picture that shows it, stroke by stroke. It is told the time and asks
// no clock.
class PenTimes {
public:
    using Clock = std::chrono::steady_clock;

    void Press(Clock::time_point now);  // a stroke begins; what was measured is forgotten
    void Move(Clock::time_point now);
    // A picture in which something changed has been shown: with all that the pen had done before it.
    void Shown(Clock::time_point now);

    // The median of the last stroke so far; zero: there is nothing to tell.
    [[nodiscard]] Clock::duration OfLastStroke() const;

private:
    std::vector<Clock::duration> m_times;
    Clock::time_point m_since;  // what the pen did first and is not shown yet
    bool m_waits = false;
};

}  // namespace kel
