#pragma once

#include <cstdint>

namespace chalkpane {

// The filters' repeatable generator: a multiplicative sequence of two words plus a multiply-with-carry word. The same
// seed gives the same picture everywhere. Each run owns its generator; nothing is shared between threads.
class GrainRandom {
public:
    explicit constexpr GrainRandom(std::uint32_t seed = 0) { Seed(seed); }

    constexpr void Seed(std::uint32_t seed) {
        m_c = (seed & 0x7fffffffu) | 1u;
        m_a = seed * 8u + 3u;
        m_b = seed * 2u + 1u;
    }

    // All 32 bits.
    constexpr std::uint32_t Next() {
        const std::uint32_t product = m_a * m_b;
        m_a = m_b;
        m_b = product;
        m_c = (m_c >> 16) + (m_c & 0xffffu) * 30903u;
        return m_c + product;
    }

    // 0 .. 32767.
    constexpr std::int32_t Next15() { return static_cast<std::int32_t>(Next() & 0x7fffu); }

    // A bell curve on -1 .. 1: six draws of 15 bits, summed; 98301 is half the largest sum.
    constexpr float Gauss() {
        std::int32_t sum = 0;
        for (int draw = 0; draw < 6; ++draw) sum += Next15();
        return static_cast<float>(sum) / 98301.0F - 1.0F;
    }

private:
    std::uint32_t m_a = 0;
    std::uint32_t m_b = 0;
    std::uint32_t m_c = 0;
};

}  // namespace chalkpane
