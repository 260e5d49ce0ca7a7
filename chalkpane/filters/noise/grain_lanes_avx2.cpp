#include "chalkpane/filters/noise/grain_lanes.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace chalkpane {
namespace {

// The words of eight generators. The third is kept with bit 15 turned over, which makes a signed number of its lower
// half that is smaller by 32768.
struct Eight {
    __m256i a, b, c;
};

[[gnu::target("avx2")]] inline __m256i LowerHalfTurned(__m256i c) {
    return _mm256_xor_si256(c, _mm256_set1_epi32(0x8000));
}

[[gnu::target("avx2")]] inline __m256i Next(Eight& words) {
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
[[gnu::target("avx2")]] inline __m256i Powers(std::uint32_t base, std::uint32_t other, __m256i exponent,
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

[[gnu::target("avx2")]] inline __m256i Load(const std::uint32_t* numbers) {
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(numbers));
}

// Eight numbers of each of eight lanes become eight lanes of eight numbers, `step` apart.
[[gnu::target("avx2")]] inline void StoreTransposed(const __m256i (&rows)[8], std::size_t step, std::int32_t* out) {
    __m256i pairs[8];
    for (std::size_t i = 0; i < 8; i += 2) {
        pairs[i] = _mm256_unpacklo_epi32(rows[i], rows[i + 1]);
        pairs[i + 1] = _mm256_unpackhi_epi32(rows[i], rows[i + 1]);
    }
    __m256i fours[8];
    for (std::size_t i = 0; i < 8; i += 4) {
        for (std::size_t k = 0; k < 2; ++k) {
            fours[i + 2 * k] = _mm256_unpacklo_epi64(pairs[i + k], pairs[i + 2 + k]);
            fours[i + 2 * k + 1] = _mm256_unpackhi_epi64(pairs[i + k], pairs[i + 2 + k]);
        }
    }
    for (std::size_t lane = 0; lane < 4; ++lane) {
        auto* const lower = reinterpret_cast<__m256i*>(out + lane * step);
        auto* const upper = reinterpret_cast<__m256i*>(out + (lane + 4) * step);
        _mm256_storeu_si256(lower, _mm256_permute2x128_si256(fours[lane], fours[lane + 4], 0x20));
        _mm256_storeu_si256(upper, _mm256_permute2x128_si256(fours[lane], fours[lane + 4], 0x31));
    }
}

// One stretch of all sixteen generators.
template <std::size_t noises, std::size_t sums>
[[gnu::target("avx2")]] void DrawStretch(Eight lower, Eight upper, std::size_t stretch, GrainLanes::Numbers& numbers) {
    const __m256i bits = _mm256_set1_epi32(0x7fff);
    for (std::size_t pixel = 0; pixel < stretch; pixel += 8) {
        __m256i lowers[noises][8];
        __m256i uppers[noises][8];
        for (std::size_t i = 0; i < 8; ++i) {
            Next(lower);
            Next(upper);
            for (std::size_t noise = 0; noise < noises; ++noise) {
                __m256i lowerSum = _mm256_setzero_si256();
                __m256i upperSum = _mm256_setzero_si256();
                for (std::size_t draw = 0; draw < sums; ++draw) {
                    lowerSum = _mm256_add_epi32(lowerSum, _mm256_and_si256(Next(lower), bits));
                    upperSum = _mm256_add_epi32(upperSum, _mm256_and_si256(Next(upper), bits));
                }
                lowers[noise][i] = lowerSum;
                uppers[noise][i] = upperSum;
            }
        }
        for (std::size_t noise = 0; noise < noises; ++noise) {
            StoreTransposed(lowers[noise], stretch, numbers[noise].data() + pixel);
            StoreTransposed(uppers[noise], stretch, numbers[noise].data() + pixel + 8 * stretch);
        }
    }
}

}  // namespace

struct GrainLanes::Words {
    Eight lower, upper;
};

[[gnu::target("avx2")]] GrainLanes::Words GrainLanes::StartsAvx2(const GrainRandom& start) const {
    alignas(32) std::array<std::uint32_t, lanes> c;
    for (std::size_t lane = 0; lane < lanes; ++lane) c[lane] = GrainJump::Product(start.C(), m_factors[lane]);
    const auto eight = [&](std::size_t first) __attribute__((target("avx2"))) {
        const __m256i before = Load(&m_before[first]);
        const __m256i at = Load(&m_at[first]);
        return Eight{Powers(start.A(), start.B(), before, at),
                     Powers(start.A(), start.B(), at, _mm256_add_epi32(before, at)), LowerHalfTurned(Load(&c[first]))};
    };
    return {eight(0), eight(8)};
}

[[gnu::target("avx2")]] void GrainLanes::DrawAvx2(const GrainRandom& start, Numbers& numbers) const {
    const auto [lower, upper] = StartsAvx2(start);
    const bool one = m_draws.sums == 1;
    if (m_draws.noises == 1)
        (one ? DrawStretch<1, 1> : DrawStretch<1, 6>)(lower, upper, m_stretch, numbers);
    else
        (one ? DrawStretch<3, 1> : DrawStretch<3, 6>)(lower, upper, m_stretch, numbers);
}

}  // namespace chalkpane

#endif
