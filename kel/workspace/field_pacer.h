#pragma once

#include <chrono>
#include <cstdint>

namespace kel {

// How often something happens in a whole second, counted from when it first did.
class SecondRate {
public:
    using Clock = std::chrono::steady_clock;

    void Add(Clock::time_point now, int times = 1);
    // In the last second that is over by now; 0 before there is one.
    [[nodiscard]] int Of(Clock::time_point now) const;

private:
    Clock::time_point m_second;  // when the one that is counted began
    int m_count = 0;
    int m_before = 0;  // in the second before it
    bool m_hasBegun = false;
};

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
    [[nodiscard]] int Rate(Clock::time_point now) const { return m_rate.Of(now); }  // fields in the last whole second
    [[nodiscard]] std::int64_t Missed() const { return m_missed; }
    // Fields beyond mostAtOnce, so far.
    [[nodiscard]] std::int64_t GivenUp() const { return m_givenUp; }
    // True for some seconds after a field was missed.
    [[nodiscard]] bool HasMissedLately(Clock::time_point now) const;

private:
    Clock::duration m_period;
    Clock::time_point m_next;
    SecondRate m_rate;
    std::int64_t m_missed = 0;
    std::int64_t m_givenUp = 0;
    Clock::time_point m_lastMiss;
};

}  // namespace kel
