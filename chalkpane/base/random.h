#pragma once

#include <atomic>
#include <cstdint>

namespace chalkpane {

// The engine's one small random generator: state = state * 214013 + 2531011 in 32 wrapping bits, of which the answer
// is bits 16 .. 30. The same numbers come on every platform, so speckle and noise are repeatable.
// Safe to call from several workers; the order in which they draw is then theirs.
namespace detail {
inline std::atomic<std::uint32_t> randomState{1};
constexpr std::uint32_t NextRandomState(std::uint32_t state) { return state * 214013u + 2531011u; }
}  // namespace detail

// 0 .. 32767.
inline std::int32_t Random() {
    std::uint32_t state = detail::randomState.load(std::memory_order_relaxed);
    while (
        !detail::randomState.compare_exchange_weak(state, detail::NextRandomState(state), std::memory_order_relaxed)) {
    }
    return static_cast<std::int32_t>((detail::NextRandomState(state) >> 16) & 0x7fff);
}

// What `SeedRandom` takes to go on from here.
inline std::uint32_t RandomState() { return detail::randomState.load(std::memory_order_relaxed); }

inline void SeedRandom(std::uint32_t seed) { detail::randomState.store(seed, std::memory_order_relaxed); }

}  // namespace chalkpane
