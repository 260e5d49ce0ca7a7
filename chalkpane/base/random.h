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
constexpr std::int32_t RandomOfState(std::uint32_t state) { return static_cast<std::int32_t>((state >> 16) & 0x7fff); }

// The state so many draws on. One step is a * state + c; two are one with a * a and a * c + c, and so on by doubling.
constexpr std::uint32_t JumpedRandomState(std::uint32_t state, std::uint32_t draws) {
    std::uint32_t a = 214013u;
    std::uint32_t c = 2531011u;
    for (; draws != 0; draws >>= 1) {
        if ((draws & 1u) != 0) state = state * a + c;
        c = a * c + c;
        a = a * a;
    }
    return state;
}
}  // namespace detail

// 0 .. 32767.
inline std::int32_t Random() {
    std::uint32_t state = detail::randomState.load(std::memory_order_relaxed);
    while (
        !detail::randomState.compare_exchange_weak(state, detail::NextRandomState(state), std::memory_order_relaxed)) {
    }
    return detail::RandomOfState(detail::NextRandomState(state));
}

// Takes the next `draws` numbers at once: the state before them, from which the caller makes them by NextRandomState
// and RandomOfState. To all others they are drawn.
inline std::uint32_t TakeRandom(std::uint32_t draws) {
    std::uint32_t state = detail::randomState.load(std::memory_order_relaxed);
    while (!detail::randomState.compare_exchange_weak(state, detail::JumpedRandomState(state, draws),
                                                      std::memory_order_relaxed)) {
    }
    return state;
}

// What `SeedRandom` takes to go on from here.
inline std::uint32_t RandomState() { return detail::randomState.load(std::memory_order_relaxed); }

inline void SeedRandom(std::uint32_t seed) { detail::randomState.store(seed, std::memory_order_relaxed); }

}  // namespace chalkpane
