#include "chalkpane/brush/spline_search.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace chalkpane {

namespace {

constexpr std::int32_t stepsAtOnce = 4;

// The weights by sample instead of by step. What stands behind the last step is read with it and not looked at.
using WeightRow = std::array<float, splineSteps + stepsAtOnce>;
constexpr std::array<WeightRow, 4> weightRows = [] {
    std::array<WeightRow, 4> rows{};
    for (std::size_t step = 0; step < splineWeights.ofStep.size(); ++step)
        for (std::size_t sample = 0; sample < 4; ++sample) rows[sample][step] = splineWeights.ofStep[step][sample];
    return rows;
}();

// Four steps of the curve, each in doubles, in the order of sums of the plain form.
class FourSteps {
public:
    [[gnu::target("avx2")]] FourSteps(const SplineSamples& xs, const SplineSamples& ys, float x, float y)
        : x_(_mm256_set1_pd(x)), y_(_mm256_set1_pd(y)) {
        for (std::size_t i = 0; i < 4; ++i) {
            xs_[i] = _mm256_set1_pd(xs[i]);
            ys_[i] = _mm256_set1_pd(ys[i]);
        }
    }

    [[nodiscard, gnu::target("avx2")]] __m256d SquaredDistances(std::int32_t step) const {
        __m256d w[4];
        for (std::size_t i = 0; i < 4; ++i) w[i] = _mm256_cvtps_pd(_mm_loadu_ps(weightRows[i].data() + step));
        const __m256d dx = _mm256_sub_pd(Blend(w, xs_), x_);
        const __m256d dy = _mm256_sub_pd(Blend(w, ys_), y_);
        return _mm256_add_pd(_mm256_mul_pd(dx, dx), _mm256_mul_pd(dy, dy));
    }

private:
    [[nodiscard, gnu::target("avx2")]] static __m256d Blend(const __m256d (&w)[4], const __m256d (&samples)[4]) {
        const __m256d firstTwo = _mm256_add_pd(_mm256_mul_pd(w[0], samples[0]), _mm256_mul_pd(w[1], samples[1]));
        const __m256d firstThree = _mm256_add_pd(firstTwo, _mm256_mul_pd(w[2], samples[2]));
        return _mm256_add_pd(firstThree, _mm256_mul_pd(w[3], samples[3]));
    }

    __m256d xs_[4];
    __m256d ys_[4];
    __m256d x_;
    __m256d y_;
};

[[gnu::target("avx2")]] inline double LastOf(__m256d values) {
    const __m128d upper = _mm256_extractf128_pd(values, 1);
    return _mm_cvtsd_f64(_mm_unpackhi_pd(upper, upper));
}

}  // namespace

[[gnu::target("avx2")]] std::int32_t SplineSearchAvx2::FirstBeyond(const SplineSearch& search, std::int32_t step,
                                                                   float x, float y) {
    const FourSteps curve(search.xs_, search.ys_, x, y);
    const __m256d limit = _mm256_set1_pd(search.squaredLimit_);
    const double worthIt = search.surely_ - 2 * stepsAtOnce * search.bounds_.perStep;
    const double squaredWorthIt = worthIt > 0.0 ? worthIt * worthIt : -1.0;
    while (step < SplineIterator::steps) {
        const __m256d distances = curve.SquaredDistances(step);
        const auto beyond = static_cast<unsigned>(_mm256_movemask_pd(_mm256_cmp_pd(distances, limit, _CMP_GT_OQ)));
        if (beyond != 0) return std::min(step + std::countr_zero(beyond), SplineIterator::steps);
        const double last = LastOf(distances);
        step += stepsAtOnce;
        if (!(last <= squaredWorthIt)) continue;
        const double spare = (search.surely_ - std::sqrt(last)) / search.bounds_.perStep;
        if (!(spare < SplineIterator::steps)) break;
        step += static_cast<std::int32_t>(spare) - 1;
    }
    return SplineIterator::steps;
}

}  // namespace chalkpane

#endif
