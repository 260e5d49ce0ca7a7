#include "kel/workspace/field_pacer.h"

namespace kel {
namespace {

constexpr auto warningTime = std::chrono::seconds(3);

}  // namespace

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
    m_lately.push_back({now, run});
    while (m_lately.front().time <= now - std::chrono::seconds(1)) m_lately.pop_front();
    return run;
}

double FieldPacer::Rate(Clock::time_point now) const {
    int fields = 0;
    for (const Run& run : m_lately)
        if (run.time > now - std::chrono::seconds(1)) fields += run.fields;
    return fields;
}

bool FieldPacer::HasMissedLately(Clock::time_point now) const { return m_missed > 0 && now - m_lastMiss < warningTime; }

}  // namespace kel
