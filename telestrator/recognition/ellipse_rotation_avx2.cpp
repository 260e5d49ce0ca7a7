#include "telestrator/recognition/ellipse_rotation.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>

namespace chalkpane {
namespace {

constexpr std::size_t lanes = 4;

// Both ways to a rotated coordinate, by the angle functions and by plain products with the rotation's cosine and sine,
// err by less than 2e-15 of the point's distance: each angle by half a unit in its last place twice, which is 9e-16,
// and the functions, products and sums by 1.1e-16 a step.
constexpr double margin = 1e-14;

struct Narrowed {
    __m128 floats;
    __m128 sure;  // all bits set where every number as near as the margin is the same float
};

[[gnu::target("avx2")]] inline Narrowed Narrow(__m256d numbers, __m256d margins) {
    const __m128 low = _mm256_cvtpd_ps(_mm256_sub_pd(numbers, margins));
    const __m128 high = _mm256_cvtpd_ps(_mm256_add_pd(numbers, margins));
    return {low, _mm_cmpeq_ps(low, high)};
}

struct Extremes {
    __m128 low;
    __m128 high;

    [[gnu::target("avx2")]] explicit Extremes(const Limits& limits)
        : low(_mm_set1_ps(limits.low)), high(_mm_set1_ps(limits.high)) {}
    // Where a value is NaN the extremes stay.
    [[gnu::target("avx2")]] void Extend(__m128 values) {
        low = _mm_min_ps(values, low);
        high = _mm_max_ps(values, high);
    }
    [[nodiscard, gnu::target("avx2")]] Limits AsLimits() const {
        std::array<float, lanes> lows;
        std::array<float, lanes> highs;
        _mm_storeu_ps(lows.data(), low);
        _mm_storeu_ps(highs.data(), high);
        return {*std::ranges::min_element(lows), *std::ranges::max_element(highs)};
    }
};

[[gnu::target("avx2")]] inline __m256d LiesOnFour(const float* xs, const float* ys, const EllipseFit& fit,
                                                  double tolerance) {
    const __m256d x = _mm256_sub_pd(_mm256_cvtps_pd(_mm_loadu_ps(xs)), _mm256_set1_pd(fit.centre.x));
    const __m256d y = _mm256_sub_pd(_mm256_cvtps_pd(_mm_loadu_ps(ys)), _mm256_set1_pd(fit.centre.y));
    const __m256d part = _mm256_div_pd(_mm256_mul_pd(x, x), _mm256_set1_pd(fit.halfWidth * fit.halfWidth));
    const __m256d height = _mm256_sqrt_pd(_mm256_div_pd(_mm256_mul_pd(y, y), _mm256_sub_pd(_mm256_set1_pd(1.0), part)));
    const __m256d off = _mm256_andnot_pd(_mm256_set1_pd(-0.0), _mm256_sub_pd(_mm256_set1_pd(fit.halfHeight), height));
    return _mm256_cmp_pd(off, _mm256_set1_pd(tolerance), _CMP_LT_OQ);
}

}  // namespace

// By plain products, which are rounded to floats just as the angle functions' numbers are, but for those few next to
// the middle between two floats: those go by the functions.
[[gnu::target("avx2")]] Box RotatePointsAvx2(const SeenPoints& points, double angle, const RotatedPoints& rotated,
                                             Box box) {
    const __m256d cosine = _mm256_set1_pd(std::cos(angle));
    const __m256d sine = _mm256_set1_pd(std::sin(angle));
    Extremes extremesX(box.x);
    Extremes extremesY(box.y);
    const std::size_t count = rotated.xs.size();
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const __m256d x = _mm256_loadu_pd(&points.xs[i]);
        const __m256d y = _mm256_loadu_pd(&points.ys[i]);
        const __m256d margins = _mm256_mul_pd(_mm256_loadu_pd(&points.radii[i]), _mm256_set1_pd(margin));
        const Narrowed alongX = Narrow(_mm256_sub_pd(_mm256_mul_pd(x, cosine), _mm256_mul_pd(y, sine)), margins);
        const Narrowed alongY = Narrow(_mm256_add_pd(_mm256_mul_pd(x, sine), _mm256_mul_pd(y, cosine)), margins);
        _mm_storeu_ps(&rotated.xs[i], alongX.floats);
        _mm_storeu_ps(&rotated.ys[i], alongY.floats);
        const auto sure = static_cast<unsigned>(_mm_movemask_ps(_mm_and_ps(alongX.sure, alongY.sure)));
        for (unsigned unsure = ~sure & 15U; unsure != 0; unsure &= unsure - 1)
            RotateOne(points, angle, rotated, i + static_cast<std::size_t>(std::countr_zero(unsure)));
        extremesX.Extend(_mm_loadu_ps(&rotated.xs[i]));
        extremesY.Extend(_mm_loadu_ps(&rotated.ys[i]));
    }
    box = {extremesX.AsLimits(), extremesY.AsLimits()};
    for (; i < count; ++i) {
        RotateOne(points, angle, rotated, i);
        box.x.Extend(rotated.xs[i]);
        box.y.Extend(rotated.ys[i]);
    }
    return box;
}

[[gnu::target("avx2")]] std::int32_t CountPointsOnEllipseAvx2(const RotatedPoints& rotated, const EllipseFit& fit,
                                                              double tolerance) {
    const std::size_t count = rotated.xs.size();
    std::int32_t found = 0;
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const __m256d lie = LiesOnFour(&rotated.xs[i], &rotated.ys[i], fit, tolerance);
        found += std::popcount(static_cast<unsigned>(_mm256_movemask_pd(lie)));
    }
    for (; i < count; ++i) found += LiesOn(fit, rotated.xs[i], rotated.ys[i], tolerance) ? 1 : 0;
    return found;
}

}  // namespace chalkpane

#endif
