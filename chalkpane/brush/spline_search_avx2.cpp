#include "chalkpane/brush/four_steps_avx2.h"
#include "chalkpane/brush/spline_search.h"

#if defined(__x86_64__)
#include <algorithm>
#include <bit>
#include <cmath>

namespace chalkpane {

[[gnu::target("avx2")]] std::int32_t SplineSearchAvx2::FirstBeyond(const SplineSearch& search, std::int32_t step,
                                                                   float x, float y) {
    const FourSteps curve(search.xs_, search.ys_);
    const __m256d fromX = _mm256_set1_pd(x);
    const __m256d fromY = _mm256_set1_pd(y);
    const __m256d limit = _mm256_set1_pd(search.squaredLimit_);
    const double worthIt = search.surely_ - 2 * stepsAtOnce * search.bounds_.perStep;
    const double squaredWorthIt = worthIt > 0.0 ? worthIt * worthIt : -1.0;
    while (step < SplineIterator::steps) {
        const __m256d distances = SquaredDistances(curve.From(step), fromX, fromY);
        const auto beyond = static_cast<unsigned>(_mm256_movemask_pd(_mm256_cmp_pd(distances, limit, _CMP_GT_OQ)));
        if (beyond != 0) return std::min(step + std::countr_zero(beyond), SplineIterator::steps);
        const double last = LastOfFour(distances);
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
