#pragma once

#include <atomic>
#include <cstdint>

namespace chalkpane {

// Where memory runs out the engine leaves out what it was about to make - a dab, a mask, a filter's picture - and goes
// on, because the plug-in lives in somebody else's program. What was left out is counted, for programs that would
// rather have no result than one with gaps.
//
// Thread: any.
inline std::atomic<std::uint64_t>& MemoryLosses() {
    static std::atomic<std::uint64_t> losses{0};
    return losses;
}

// How often something was left out since the process began.
[[nodiscard]] inline std::uint64_t MemoryLossCount() { return MemoryLosses().load(std::memory_order_relaxed); }

inline void CountMemoryLoss() { MemoryLosses().fetch_add(1, std::memory_order_relaxed); }

}  // namespace chalkpane
