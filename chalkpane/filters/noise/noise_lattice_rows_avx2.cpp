#include "chalkpane/filters/noise/noise_lattice.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace chalkpane {

namespace {

// Eight places at once, with the operations of the plain version in its order.

struct Whole {
    __m256i number;
    __m256 fraction;
};

// As an integer rounded down, and what is left; places without one count from 0.
[[gnu::target("avx2")]] inline Whole Split(__m256 place) {
    const __m256 magnitude = _mm256_andnot_ps(_mm256_set1_ps(-0.0F), place);
    const __m256 inRange = _mm256_cmp_ps(magnitude, _mm256_set1_ps(2147483648.0F), _CMP_LT_OQ);
    const __m256i number = _mm256_and_si256(_mm256_cvttps_epi32(_mm256_floor_ps(place)), _mm256_castps_si256(inRange));
    return {number, _mm256_sub_ps(place, _mm256_cvtepi32_ps(number))};
}

// (3 - 2 f) f f
[[gnu::target("avx2")]] inline __m256 Smooth(__m256 f) {
    const __m256 slope = _mm256_sub_ps(_mm256_set1_ps(3.0F), _mm256_mul_ps(_mm256_set1_ps(2.0F), f));
    return _mm256_mul_ps(_mm256_mul_ps(slope, f), f);
}

[[gnu::target("avx2")]] inline __m256 Dot(__m256 x, __m256 y, __m256 dx, __m256 dy) {
    return _mm256_add_ps(_mm256_mul_ps(x, dx), _mm256_mul_ps(y, dy));
}

// from + share * (to - from)
[[gnu::target("avx2")]] inline __m256 Between(__m256 from, __m256 to, __m256 share) {
    return _mm256_add_ps(from, _mm256_mul_ps(share, _mm256_sub_ps(to, from)));
}

// The gradients at the lower and the upper of two neighbouring corners.
struct Gradients {
    __m256 lowerX, lowerY, upperX, upperY;
};

[[gnu::target("avx2")]] inline Gradients LoadGradients(const float (*corners)[4], __m256i places) {
    alignas(32) std::int32_t at[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(at), places);
    const __m256 rows[4] = {
        _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_load_ps(corners[at[0]])), _mm_load_ps(corners[at[4]]), 1),
        _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_load_ps(corners[at[1]])), _mm_load_ps(corners[at[5]]), 1),
        _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_load_ps(corners[at[2]])), _mm_load_ps(corners[at[6]]), 1),
        _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_load_ps(corners[at[3]])), _mm_load_ps(corners[at[7]]), 1)};
    const __m256d lower01 = _mm256_castps_pd(_mm256_unpacklo_ps(rows[0], rows[1]));
    const __m256d lower23 = _mm256_castps_pd(_mm256_unpacklo_ps(rows[2], rows[3]));
    const __m256d upper01 = _mm256_castps_pd(_mm256_unpackhi_ps(rows[0], rows[1]));
    const __m256d upper23 = _mm256_castps_pd(_mm256_unpackhi_ps(rows[2], rows[3]));
    return {
        _mm256_castpd_ps(_mm256_unpacklo_pd(lower01, lower23)), _mm256_castpd_ps(_mm256_unpackhi_pd(lower01, lower23)),
        _mm256_castpd_ps(_mm256_unpacklo_pd(upper01, upper23)), _mm256_castpd_ps(_mm256_unpackhi_pd(upper01, upper23))};
}

}  // namespace

// The tables of the lattice in the form that eight places at once are looked up in.
struct NoiseLattice::Eight {
    const NoiseLattice& lattice;

    // Entry number & 255 of the permutation in the lower half of each lane, the next one in the upper half.
    [[gnu::target("avx2")]] [[nodiscard]] __m256i Pairs(__m256i number) const {
        const __m256i place = _mm256_and_si256(number, _mm256_set1_epi32(255));
        return _mm256_i32gather_epi32(lattice.m_pairs.data(), place, 4);
    }
    [[gnu::target("avx2")]] static __m256i Lower(__m256i pairs) {
        return _mm256_and_si256(pairs, _mm256_set1_epi32(0xffff));
    }
    [[gnu::target("avx2")]] static __m256i Upper(__m256i pairs) { return _mm256_srli_epi32(pairs, 16); }

    [[gnu::target("avx2")]] [[nodiscard]] __m256 Noise(__m256 x, __m256 y) const {
        const auto [ix, fx] = Split(x);
        const auto [iy, fy] = Split(y);
        const __m256i columns = Pairs(ix);
        const __m256i row = _mm256_and_si256(iy, _mm256_set1_epi32(255));
        const Gradients left = LoadGradients(lattice.m_corners.data(), _mm256_add_epi32(Lower(columns), row));
        const Gradients right = LoadGradients(lattice.m_corners.data(), _mm256_add_epi32(Upper(columns), row));
        const __m256 one = _mm256_set1_ps(1.0F);
        const __m256 fx1 = _mm256_sub_ps(fx, one);
        const __m256 fy1 = _mm256_sub_ps(fy, one);
        const __m256 sx = Smooth(fx);
        const __m256 near =
            Between(Dot(left.lowerX, left.lowerY, fx, fy), Dot(right.lowerX, right.lowerY, fx1, fy), sx);
        const __m256 far =
            Between(Dot(left.upperX, left.upperY, fx, fy1), Dot(right.upperX, right.upperY, fx1, fy1), sx);
        return Between(near, far, Smooth(fy));
    }

    [[gnu::target("avx2")]] void Turbulence(__m256 x, __m256 y, float* sumX, float* sumY) const {
        const Turns turns;
        const __m256 s1 = _mm256_set1_ps(turns.s1);
        const __m256 c1 = _mm256_set1_ps(turns.c1);
        const __m256 s2 = _mm256_set1_ps(turns.s2);
        const __m256 c2 = _mm256_set1_ps(turns.c2);
        __m256 sumsX = _mm256_setzero_ps();
        __m256 sumsY = _mm256_setzero_ps();
        float weight = 1.0F;
        for (std::size_t octave = 0; octave < 3; ++octave) {
            const __m256 weights = _mm256_set1_ps(weight);
            sumsX = _mm256_add_ps(sumsX, _mm256_mul_ps(weights, Noise(x, y)));
            const __m256 place = _mm256_add_ps(_mm256_mul_ps(x, _mm256_set1_ps(3.17F)), _mm256_set1_ps(190.0F));
            const __m256i pairs = Pairs(Split(place).number);
            const __m256 u = _mm256_add_ps(Dot(c2, s2, x, y), _mm256_cvtepi32_ps(Lower(pairs)));
            const __m256 v = _mm256_add_ps(_mm256_sub_ps(_mm256_mul_ps(c2, y), _mm256_mul_ps(s2, x)),
                                           _mm256_cvtepi32_ps(Upper(pairs)));
            sumsY = _mm256_add_ps(sumsY, _mm256_mul_ps(weights, Noise(u, v)));
            weight *= 0.35F;
            const auto moveX = static_cast<float>(lattice.m_permutation[octave]);
            const auto moveY = static_cast<float>(lattice.m_permutation[32 + octave]);
            y = _mm256_add_ps(_mm256_sub_ps(_mm256_mul_ps(c1, v), _mm256_mul_ps(s1, x)), _mm256_set1_ps(moveY));
            x = _mm256_add_ps(Dot(c1, s1, u, v), _mm256_set1_ps(moveX));
        }
        _mm256_storeu_ps(sumX, sumsX);
        _mm256_storeu_ps(sumY, sumsY);
    }

    [[gnu::target("avx2")]] std::size_t NoiseRow(std::span<const float> x, float y, float* noise) const {
        std::size_t i = 0;
        for (; i + 8 <= x.size(); i += 8)
            _mm256_storeu_ps(noise + i, Noise(_mm256_loadu_ps(x.data() + i), _mm256_set1_ps(y)));
        return i;
    }
    [[gnu::target("avx2")]] std::size_t TurbulenceRow(std::span<const float> x, float y, float* sumX,
                                                      float* sumY) const {
        std::size_t i = 0;
        for (; i + 8 <= x.size(); i += 8)
            Turbulence(_mm256_loadu_ps(x.data() + i), _mm256_set1_ps(y), sumX + i, sumY + i);
        return i;
    }
};

std::size_t NoiseLattice::NoiseRowAvx2(std::span<const float> x, float y, std::span<float> noise) const {
    return Eight{*this}.NoiseRow(x, y, noise.data());
}

std::size_t NoiseLattice::TurbulenceRowAvx2(std::span<const float> x, float y, std::span<float> sumX,
                                            std::span<float> sumY) const {
    return Eight{*this}.TurbulenceRow(x, y, sumX.data(), sumY.data());
}

}  // namespace chalkpane

#endif
