#pragma once

#include <cstdint>

namespace chalkpane {

// So many draws of a GrainRandom as one step. The first two words are products of their two seeds, whose exponents run
// through the Fibonacci numbers: after n draws they are a^F(n-1) b^F(n) and a^F(n) b^F(n+1). The third word is
// multiplied by 30903 at each draw, modulo 30903 * 65536 - 1.
struct GrainJump {
    static constexpr std::uint32_t multiplier = 30903;
    static constexpr std::uint32_t modulus = multiplier * 65536u - 1;

    std::uint32_t before = 1;  // F(n-1); odd numbers to the power of 2^30 are 1, so exponents may wrap
    std::uint32_t at = 0;      // F(n)
    std::uint32_t factor = 1;  // of the third word

    [[nodiscard]] static constexpr std::uint32_t Product(std::uint32_t a, std::uint32_t b) {
        return static_cast<std::uint32_t>(std::uint64_t{a} * b % modulus);
    }
    [[nodiscard]] constexpr GrainJump Then(const GrainJump& next) const {
        return {before * next.before + at * next.at, before * next.at + at * (next.before + next.at),
                Product(factor, next.factor)};
    }
    // So many times.
    [[nodiscard]] constexpr GrainJump Repeated(std::uint64_t times) const {
        GrainJump all;
        for (GrainJump power = *this; times != 0; times >>= 1) {
            if ((times & 1u) != 0) all = all.Then(power);
            power = power.Then(power);
        }
        return all;
    }
    [[nodiscard]] static constexpr GrainJump Of(std::uint64_t draws) {
        return GrainJump{0, 1, multiplier}.Repeated(draws);
    }
};

// The filters' repeatable generator: a multiplicative sequence of two words plus a multiply-with-carry word. The same
// seed gives the same picture everywhere. Each run owns its generator; nothing is shared between threads.
class GrainRandom {
public:
    explicit constexpr GrainRandom(std::uint32_t seed = 0) { Seed(seed); }
    // From the words of another.
    constexpr GrainRandom(std::uint32_t a, std::uint32_t b, std::uint32_t c) : m_a(a), m_b(b), m_c(c) {}

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

    // As many draws on as the jump has, for seeds below GrainJump::modulus - 1: the third word of others is not in its
    // cycle at first.
    constexpr void Jump(const GrainJump& jump) {
        const std::uint32_t b = Power(m_a, jump.at) * Power(m_b, jump.before + jump.at);
        m_a = Power(m_a, jump.before) * Power(m_b, jump.at);
        m_b = b;
        m_c = GrainJump::Product(m_c, jump.factor);
    }

    // The words, for who draws with several generators at once.
    [[nodiscard]] constexpr std::uint32_t A() const { return m_a; }
    [[nodiscard]] constexpr std::uint32_t B() const { return m_b; }
    [[nodiscard]] constexpr std::uint32_t C() const { return m_c; }

    // 0 .. 32767.
    constexpr std::int32_t Next15() { return static_cast<std::int32_t>(Next() & 0x7fffu); }

    // A bell curve on -1 .. 1: six draws of 15 bits, summed; 98301 is half the largest sum.
    constexpr float Gauss() {
        std::int32_t sum = 0;
        for (int draw = 0; draw < 6; ++draw) sum += Next15();
        return static_cast<float>(sum) / 98301.0F - 1.0F;
    }

private:
    static constexpr std::uint32_t Power(std::uint32_t base, std::uint32_t exponent) {
        std::uint32_t power = 1;
        for (; exponent != 0; exponent >>= 1, base *= base)
            if ((exponent & 1u) != 0) power *= base;
        return power;
    }

    std::uint32_t m_a = 0;
    std::uint32_t m_b = 0;
    std::uint32_t m_c = 0;
};

}  // namespace chalkpane
