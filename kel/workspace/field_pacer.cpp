#include "kel/workspace/field_pacer.h"

namespace kel {
namespace {

constexpr auto warningTime = std::chrono::seconds(3);

}  // namespace

void SecondRate::Add(Clock::time_point now, int times) {
    if (!m_hasBegun) m_second = now;
    m_hasBegun = true;
    const auto passed = (now - m_second) / std::chrono::seconds(1);
    if (passed > 0) {
        m_before = passed == 1 ? m_count : 0;
        m_count = 0;
        m_second += passed * std::chrono::seconds(1);
    }
    m_count += times;
}

int SecondRate::Of(Clock::time_point now) const {
    const auto passed = m_hasBegun ? (now - m_second) / std::chrono::seconds(1) : 0;
    return passed == 0 ? m_before : passed == 1 ? m_count : 0;
}

FieldPacer::FieldPacer(double fieldsPerSecond, Clock::time_point start)
    : m_period(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / fieldsPerSecond))),
      m_next(start) {}

int FieldPacer::Due(Clock::time_point now) {
    if (now < m_next) return 0;
    const auto due = (now - m_next) / m_period + 1;
    m_next += due * m_period;
    if (due > 1) {
        m_missed += due - 1;
        m_lastMiss = now;
    }
    const int run = due > mostAtOnce ? mostAtOnce : static_cast<int>(due);
    m_givenUp += due - run;
    m_rate.Add(now, run);
    return run;
}

bool FieldPacer::HasMissedLately(Clock::time_point now) const { return m_missed > 0 && now - m_lastMiss < warningTime; }

}  // namespace kel
