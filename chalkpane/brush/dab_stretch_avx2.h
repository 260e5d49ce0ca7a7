#pragma once

#include "chalkpane/brush/dab_stretch.h"
#include "chalkpane/brush/four_steps_avx2.h"
#include "chalkpane/brush/spline_search.h"

#if defined(__x86_64__)
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace chalkpane {

// The rectangle that holds all that were shown to it.
class GrowingRect {
public:
    [[gnu::target("avx2")]] void Hold(__m128i rect) {
        low_ = _mm_min_epi32(low_, rect);
        high_ = _mm_max_epi32(high_, rect);
    }
    [[nodiscard, gnu::target("avx2")]] Rect AsRect() const {
        return {_mm_extract_epi32(low_, 0), _mm_extract_epi32(low_, 1), _mm_extract_epi32(high_, 2),
                _mm_extract_epi32(high_, 3)};
    }

private:
    __m128i low_ = _mm_set1_epi32(std::numeric_limits<std::int32_t>::max());
    __m128i high_ = _mm_set1_epi32(std::numeric_limits<std::int32_t>::min());
};

// x and y of the first of four places whose bit is set. By branches: a line goes on as it went so far, so a processor
// guesses which one it is and does not wait for the distances.
[[gnu::target("avx2")]] inline __m128d FirstOf(const FourSteps::Places& places, unsigned bits, std::int32_t& step) {
    if ((bits & 1) != 0) return _mm_unpacklo_pd(_mm256_castpd256_pd128(places.x), _mm256_castpd256_pd128(places.y));
    if ((bits & 2) != 0) {
        step += 1;
        return _mm_unpackhi_pd(_mm256_castpd256_pd128(places.x), _mm256_castpd256_pd128(places.y));
    }
    const __m128d x = _mm256_extractf128_pd(places.x, 1);
    const __m128d y = _mm256_extractf128_pd(places.y, 1);
    if ((bits & 4) != 0) {
        step += 2;
        return _mm_unpacklo_pd(x, y);
    }
    step += 3;
    return _mm_unpackhi_pd(x, y);
}

// The number of the copy that `RoundBrushProfile::FindCopy` gives.
[[gnu::target("avx2")]] inline std::size_t CopyAt(__m128d place) {
    const __m128d whole = _mm_cvtepi32_pd(_mm_cvttpd_epi32(place));
    const __m128d fraction = _mm_sub_pd(_mm_add_pd(place, _mm_set1_pd(0.5)), whole);
    const __m128i eighths = _mm_abs_epi32(_mm_cvttpd_epi32(_mm_mul_pd(fraction, _mm_set1_pd(8.0))));
    const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eighths));
    return 8 * (both & 7) + (both >> 32 & 7);
}

[[gnu::target("avx2")]] inline unsigned Beyond(__m256d distances, __m256d limit) {
    return static_cast<unsigned>(_mm256_movemask_pd(_mm256_cmp_pd(distances, limit, _CMP_GT_OQ)));
}

constexpr std::int32_t stepsInARow = 4 * stepsAtOnce;

struct RowOfPlaces {
    alignas(32) double xs[stepsInARow];
    alignas(32) double ys[stepsInARow];
};

// A bit for each of so many steps; `distances` become those of the last four.
[[gnu::target("avx2")]] inline unsigned BeyondInARow(const FourSteps& curve, std::int32_t step, __m256d x, __m256d y,
                                                     __m256d limit, __m256d& distances, RowOfPlaces& row) {
    unsigned bits = 0;
    for (int i = 0; i < 4; ++i) {
        const FourSteps::Places places = curve.From(step + i * stepsAtOnce);
        _mm256_store_pd(row.xs + i * stepsAtOnce, places.x);
        _mm256_store_pd(row.ys + i * stepsAtOnce, places.y);
        distances = SquaredDistances(places, x, y);
        bits |= Beyond(distances, limit) << (i * stepsAtOnce);
    }
    return bits;
}

// What is left of the way to the limit, in steps that cannot cover it.
class Way {
public:
    Way(double surely, double perStep)
        : surely_(surely),
          stepsPerPixel_(0.9999999 / perStep),
          worthIt_(std::max(surely - 2 * stepsAtOnce * perStep, 0.0)) {}

    // The next step to look at after those before `step`, of which the last lies within the limit.
    [[nodiscard]] std::int32_t NextAfter(std::int32_t step, double squaredDistance) const {
        if (!(squaredDistance < worthIt_ * worthIt_)) return step;
        const double spare = (surely_ - std::sqrt(squaredDistance)) * stepsPerPixel_;
        return spare < SplineIterator::steps ? step + static_cast<std::int32_t>(spare) - 1 : SplineIterator::steps;
    }

private:
    double surely_;
    double stepsPerPixel_;
    double worthIt_;
};

struct DabStretchAvx2 {
    // As `FollowDabs`; `Dabs` has its operations for vectors:
    //
    //   bool Holds(__m128d place) const
    //   const Rect& RectOf(std::size_t copy) const
    //   bool Paint(__m128i rect, std::size_t copy) const   the rectangle as it was moved
    template <typename Dabs>
    [[gnu::target("avx2")]] static void Follow(const SplineSearch& search, const Point2& maskOffset, const Dabs& dabs,
                                               DabProgress& progress);
};

template <typename Dabs>
[[gnu::target("avx2")]] void DabStretchAvx2::Follow(const SplineSearch& search, const Point2& maskOffset,
                                                    const Dabs& dabs, DabProgress& progress) {
    const FourSteps curve(search.xs_, search.ys_);
    const __m256d limit = _mm256_set1_pd(search.squaredLimit_);
    const Way way(search.surely_, search.bounds_.perStep);
    const std::int32_t stride = search.StepsWithoutDab();
    const __m128d offset = _mm_set_pd(maskOffset.y, maskOffset.x);
    GrowingRect changed;
    RowOfPlaces row;
    __m128 last = _mm_set_ps(0.0F, 0.0F, progress.lastY, progress.lastX);
    std::int32_t count = 0;
    std::int32_t step = progress.step + (progress.followsDab ? stride : 0);
    while (step < SplineIterator::steps) {
        const __m128d from = _mm_cvtps_pd(last);
        const __m256d x = _mm256_broadcastsd_pd(from);
        const __m256d y = _mm256_broadcastsd_pd(_mm_unpackhi_pd(from, from));
        const FourSteps::Places places = curve.From(step);
        __m256d distances = SquaredDistances(places, x, y);
        unsigned beyond = Beyond(distances, limit);
        __m128d place;
        if (beyond == 0) {
            step = way.NextAfter(step + stepsAtOnce, LastOfFour(distances));
            // Here the curve creeps, and the rounding of its weights decides where it gets beyond.
            while (step <= SplineIterator::steps - stepsInARow) {
                beyond = BeyondInARow(curve, step, x, y, limit, distances, row);
                if (beyond != 0) break;
                step = way.NextAfter(step + stepsInARow, LastOfFour(distances));
            }
            if (beyond == 0) continue;
            const int first = std::countr_zero(beyond);
            step += first;
            place = _mm_set_pd(row.ys[first], row.xs[first]);
        } else {
            place = FirstOf(places, beyond, step);
        }
        if (step >= SplineIterator::steps) break;
        if (!dabs.Holds(place)) break;
        const std::size_t copy = CopyAt(place);
        const __m128i move = _mm_cvttpd_epi32(_mm_sub_pd(place, offset));
        const __m128i rect = _mm_add_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(&dabs.RectOf(copy))),
                                           _mm_unpacklo_epi64(move, move));
        if (!dabs.Paint(rect, copy)) break;
        changed.Hold(rect);
        last = _mm_cvtpd_ps(place);
        progress.lastStep = step;
        ++count;
        step += 1 + stride;
    }
    progress.step = std::min(step, SplineIterator::steps);
    if (count == 0) return;
    progress.dabs += count;
    progress.lastX = _mm_cvtss_f32(last);
    progress.lastY = _mm_cvtss_f32(_mm_shuffle_ps(last, last, 1));
    progress.changed = progress.changed.Union(changed.AsRect());
}

}  // namespace chalkpane

#endif
