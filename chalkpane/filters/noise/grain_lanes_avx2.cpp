#include "chalkpane/filters/noise/grain_lanes.h"

#if defined(__x86_64__)
#include "chalkpane/filters/noise/sixteen_grains_avx2.h"

namespace chalkpane {
namespace {

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
[[gnu::target("avx2")]] void DrawStretch(EightGrains lower, EightGrains upper, std::size_t stretch,
                                         GrainLanes::Numbers& numbers) {
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

[[gnu::target("avx2")]] void GrainLanes::DrawAvx2(const GrainRandom& start, Numbers& numbers) const {
    const auto [lower, upper] = SixteenGrains::Of(start, m_starts);
    const bool one = m_draws.sums == 1;
    if (m_draws.noises == 1)
        (one ? DrawStretch<1, 1> : DrawStretch<1, 6>)(lower, upper, m_stretch, numbers);
    else
        (one ? DrawStretch<3, 1> : DrawStretch<3, 6>)(lower, upper, m_stretch, numbers);
}

}  // namespace chalkpane

#endif
