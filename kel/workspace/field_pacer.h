#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

namespace kel {

// Says when fields are due, and whether they were kept. It is told the time and asks no clock.
class FieldPacer {
public:
    using Clock = std::chrono::steady_clock;

    // The first field is due at `start`.
    FieldPacer(double fieldsPerSecond, Clock::time_point start);

    // How many fields are due at `now`, each counted once. All but the last of them are late, and no picture of them is
    // shown: they count as missed. Beyond mostAtOnce they are given up, so that a machine that slept goes on from now.
    [[nodiscard]] int Due(Clock::time_point now);
    static constexpr int mostAtOnce = 10;

    [[nodiscard]] Clock::time_point Next() const { return m_next; }
    [[nodiscard]] double Rate(Clock::time_point now) const;  // fields in the second before `now`
    [[nodiscard]] std::int64_t Missed() const { return m_missed; }
    // True for some seconds after a field was missed.
    [[nodiscard]] bool HasMissedLately(Clock::time_point now) const;

private:
    struct Run {
        Clock::time_point time;
        int fields = 0;
    };

    Clock::duration m_period;
    Clock::time_point m_next;
    std::deque<Run> m_lately;  // of the last second
    std::int64_t m_missed = 0;
    Clock::time_point m_lastMiss;
};

}  // namespace kel
