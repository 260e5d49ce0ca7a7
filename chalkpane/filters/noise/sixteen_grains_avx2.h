#pragma once

#include <immintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/filters/noise/grain_starts.h"

namespace chalkpane {

// The words of eight generators. The third is kept with bit 15 turned over, which makes a signed number of its lower
// half that is smaller by 32768.
struct EightGrains {
    __m256i a, b, c;
};

[[gnu::target("avx2")]] inline __m256i LowerHalfTurned(__m256i c) {
    return _mm256_xor_si256(c, _mm256_set1_epi32(0x8000));
}

[[gnu::target("avx2")]] inline __m256i Next(EightGrains& words) {
    const __m256i product = _mm256_mullo_epi32(words.a, words.b);
    words.a = words.b;
    words.b = product;
    // The upper half and the lower half times 30903.
    const __m256i parts = _mm256_madd_epi16(words.c, _mm256_set1_epi32(0x10000 | GrainJump::multiplier));
    const __m256i c = _mm256_add_epi32(parts, _mm256_set1_epi32(GrainJump::multiplier * 32768));
    words.c = LowerHalfTurned(c);
    return _mm256_add_epi32(c, product);
}

// base^exponent * other^otherExponent, bit by bit from the top.
[[gnu::target("avx2")]] inline __m256i GrainPowers(std::uint32_t base, std::uint32_t other, __m256i exponent,
                                                   __m256i otherExponent) {
    const __m256i one = _mm256_set1_epi32(1);
    const __m256i factors = _mm256_setr_epi32(1, static_cast<std::int32_t>(base), static_cast<std::int32_t>(other),
                                              static_cast<std::int32_t>(base * other), 0, 0, 0, 0);
    __m256i power = one;
    for (int bit = 29; bit >= 0; --bit) {
        const __m256i low = _mm256_and_si256(_mm256_srli_epi32(exponent, bit), one);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi32(otherExponent, bit), one);
        const __m256i which = _mm256_or_si256(low, _mm256_slli_epi32(high, 1));
        power = _mm256_mullo_epi32(_mm256_mullo_epi32(power, power), _mm256_permutevar8x32_epi32(factors, which));
    }
    return power;
}

// The words of sixteen generators, for files that need AVX2.
struct SixteenGrains {
    EightGrains lower, upper;

    // Each at its start, seen from `first`.
    [[gnu::target("avx2")]] static SixteenGrains Of(const GrainRandom& first, const GrainStarts& starts) {
        alignas(32) std::array<std::uint32_t, GrainStarts::count> c;
        for (std::size_t i = 0; i < c.size(); ++i) c[i] = GrainJump::Product(first.C(), starts.factors[i]);
        return {EightOf(first, starts, c, 0), EightOf(first, starts, c, 8)};
    }

private:
    [[gnu::target("avx2")]] static EightGrains EightOf(const GrainRandom& first, const GrainStarts& starts,
                                                       const std::array<std::uint32_t, GrainStarts::count>& c,
                                                       std::size_t at) {
        const auto load = [at](const auto& words) __attribute__((target("avx2"))) {
            return _mm256_load_si256(reinterpret_cast<const __m256i*>(&words[at]));
        };
        const __m256i exponent = load(starts.before);
        const __m256i otherExponent = load(starts.at);
        return {GrainPowers(first.A(), first.B(), exponent, otherExponent),
                GrainPowers(first.A(), first.B(), otherExponent, _mm256_add_epi32(exponent, otherExponent)),
                LowerHalfTurned(load(c))};
    }
};

}  // namespace chalkpane
