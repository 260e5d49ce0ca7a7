#pragma once

#include "chalkpane/brush/spline_iterator.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace chalkpane {

constexpr std::int32_t stepsAtOnce = 4;

// The weights by sample instead of by step. What stands behind the last step is read with it and not looked at.
using WeightRow = std::array<float, splineSteps + stepsAtOnce>;
inline constexpr std::array<WeightRow, 4> weightRows = [] {
    std::array<WeightRow, 4> rows{};
    for (std::size_t step = 0; step < splineWeights.ofStep.size(); ++step)
        for (std::size_t sample = 0; sample < 4; ++sample) rows[sample][step] = splineWeights.ofStep[step][sample];
    return rows;
}();

// Four steps of a stroke's curve at once, each in doubles, in the order of sums of `SplineIterator::PointAt`.
class FourSteps {
public:
    struct Places {
        __m256d x;
        __m256d y;
    };

    [[gnu::target("avx2")]] FourSteps(const SplineSamples& xs, const SplineSamples& ys) {
        for (std::size_t i = 0; i < 4; ++i) {
            xs_[i] = _mm256_set1_pd(xs[i]);
            ys_[i] = _mm256_set1_pd(ys[i]);
        }
    }

    // Of the steps `step` .. `step` + 3.
    [[nodiscard, gnu::target("avx2")]] Places From(std::int32_t step) const {
        __m256d w[4];
        for (std::size_t i = 0; i < 4; ++i) w[i] = _mm256_cvtps_pd(_mm_loadu_ps(weightRows[i].data() + step));
        return {Blend(w, xs_), Blend(w, ys_)};
    }

private:
    [[nodiscard, gnu::target("avx2")]] static __m256d Blend(const __m256d (&w)[4], const __m256d (&samples)[4]) {
        const __m256d firstTwo = _mm256_add_pd(_mm256_mul_pd(w[0], samples[0]), _mm256_mul_pd(w[1], samples[1]));
        const __m256d firstThree = _mm256_add_pd(firstTwo, _mm256_mul_pd(w[2], samples[2]));
        return _mm256_add_pd(firstThree, _mm256_mul_pd(w[3], samples[3]));
    }

    __m256d xs_[4];
    __m256d ys_[4];
};

[[gnu::target("avx2")]] inline __m256d SquaredDistances(const FourSteps::Places& places, __m256d x, __m256d y) {
    const __m256d dx = _mm256_sub_pd(places.x, x);
    const __m256d dy = _mm256_sub_pd(places.y, y);
    return _mm256_add_pd(_mm256_mul_pd(dx, dx), _mm256_mul_pd(dy, dy));
}

[[gnu::target("avx2")]] inline double LastOfFour(__m256d values) {
    const __m128d upper = _mm256_extractf128_pd(values, 1);
    return _mm_cvtsd_f64(_mm_unpackhi_pd(upper, upper));
}

}  // namespace chalkpane

#endif
