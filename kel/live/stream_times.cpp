#include "kel/live/stream_times.h"

#include <algorithm>

namespace kel {
namespace {

constexpr std::int64_t second = 1'000'000;
constexpr std::int64_t farthestJump = 10 * second;
constexpr std::int64_t longestReordering = 2 * second;
// Two clocks that differ by hours are no reason to overflow; a year is.
constexpr std::int64_t farthestTime = second * 3600 * 24 * 365 * 100;

std::int64_t Clamped(std::int64_t time) { return std::clamp(time, -farthestTime, farthestTime); }

}  // namespace

StreamTimes::Times StreamTimes::Next(std::optional<std::int64_t> decoded, std::optional<std::int64_t> shown,
                                     std::int64_t arrived) {
    const std::int64_t said = Clamped(decoded ? *decoded : shown.value_or(arrived));
    const std::int64_t reordering =
        decoded && shown ? std::clamp<std::int64_t>(Clamped(*shown) - said, 0, longestReordering) : 0;
    if (m_last < 0) {
        m_offset = -said;
    } else {
        const std::int64_t step = said + m_offset - m_last;
        // Where it jumps, as much has gone by as between the two packets' arrivals.
        if (m_isBroken || step < -second || step > farthestJump)
            m_offset = m_last + std::clamp<std::int64_t>(arrived - m_lastArrival, 1, farthestJump) - said;
    }
    m_isBroken = false;
    m_lastArrival = arrived;
    m_last = std::max(said + m_offset, m_last + 1);
    return {m_last, m_last + reordering};
}

std::optional<std::int64_t> StreamTimes::At(std::int64_t said) const {
    const std::int64_t time = Clamped(said) + m_offset;
    if (m_last < 0 || m_isBroken || time < m_last - farthestJump || time > m_last + farthestJump) return std::nullopt;
    return time;
}

}  // namespace kel
