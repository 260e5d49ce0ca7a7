#include "kel/live/stream_times.h"

#include <algorithm>

namespace kel {
namespace {

constexpr std::int64_t second = 1'000'000;
constexpr std::int64_t farthestJump = 10 * second;
constexpr std::int64_t longestReordering = 2 * second;
// Clocks differ by hours, and by years where they were never set. What is beyond a century no clock has said: a reader
// of a container has counted on from a time that there was not.
constexpr std::int64_t farthestTime = second * 3600 * 24 * 365 * 100;

std::optional<std::int64_t> Credible(std::optional<std::int64_t> time) {
    return time && *time >= -farthestTime && *time <= farthestTime ? time : std::nullopt;
}

}  // namespace

StreamTimes::Times StreamTimes::Next(std::optional<std::int64_t> decoded, std::optional<std::int64_t> shown,
                                     std::int64_t arrived) {
    decoded = Credible(decoded);
    shown = Credible(shown);
    const std::int64_t said = decoded ? *decoded : shown.value_or(arrived);
    const std::int64_t reordering =
        decoded && shown ? std::clamp<std::int64_t>(*shown - said, 0, longestReordering) : 0;
    // The clock of arrivals is another one than the stream's.
    const bool isByArrival = !decoded && !shown;
    if (isByArrival != m_isByArrival) Break();
    m_isByArrival = isByArrival;
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
    if (!Credible(said) || m_last < 0 || m_isBroken) return std::nullopt;
    const std::int64_t time = said + m_offset;
    if (time < m_last - farthestJump || time > m_last + farthestJump) return std::nullopt;
    return time;
}

}  // namespace kel
