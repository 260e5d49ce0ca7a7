#include "kel/workspace/pen_times.h"

#include <algorithm>

namespace kel {
namespace {

constexpr std::size_t mostTimes = 10'000;  // of a stroke

}  // namespace

void PenTimes::Press(Clock::time_point now) {
    m_times.clear();
    m_since = now;
    m_waits = true;
}

void PenTimes::Move(Clock::time_point now) {
    if (m_waits) return;
    m_since = now;
    m_waits = true;
}

void PenTimes::Shown(Clock::time_point now) {
    if (m_waits && m_times.size() < mostTimes) m_times.push_back(now - m_since);
    m_waits = false;
}

PenTimes::Clock::duration PenTimes::OfLastStroke() const {
    if (m_times.empty()) return Clock::duration::zero();
    std::vector<Clock::duration> sorted = m_times;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::ranges::nth_element(sorted, middle);
    return *middle;
}

}  // namespace kel
