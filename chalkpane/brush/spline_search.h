#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "chalkpane/brush/spline_iterator.h"

namespace chalkpane {

// Finds the steps of one curve at which dabs fall: those that lie further from the last dab than the spacing.
//
// The answers are those of testing each step in turn; stretches of the curve that cannot get so far are passed over.
// Made anew for each curve, on the stack; borrows nothing.
class SplineSearch {
public:
    struct Place {
        double x = 0.0;
        double y = 0.0;
    };

    // squaredLimit: of the spacing. One that is NaN is never exceeded.
    SplineSearch(const SplineIterator& spline, double squaredLimit);

    // The first step from `step` on whose point lies further from (x, y) than the limit; `SplineIterator::steps` when
    // there is none.
    [[nodiscard]] std::int32_t FirstBeyond(std::int32_t step, float x, float y) const;
    // The same where (x, y) is the point of the step before `step`, narrowed to floats, as it is after a dab.
    [[nodiscard]] std::int32_t NextBeyond(std::int32_t step, float x, float y) const;
    // So many steps after any dab on the curve there is surely none.
    [[nodiscard]] std::int32_t StepsWithoutDab() const;

    [[nodiscard]] Place PlaceAt(std::int32_t step) const {
        const SplineWeights& weights = splineWeights.ofStep[static_cast<std::size_t>(step)];
        return {BlendSamples(weights, xs_), BlendSamples(weights, ys_)};
    }

private:
    friend struct SplineSearchAvx2;
    friend struct DabStretchAvx2;

    [[nodiscard]] std::int32_t FirstBeyondPlain(std::int32_t step, float x, float y) const;

    SplineSamples xs_;
    SplineSamples ys_;
    SplineStepBounds bounds_;
    double squaredLimit_;
    double surely_;  // whatever is nearer than that, but for the rounding of its weights, is within the limit
};

inline SplineSearch::SplineSearch(const SplineIterator& spline, double squaredLimit)
    : xs_(spline.Xs()),
      ys_(spline.Ys()),
      bounds_(spline.StepBounds()),
      squaredLimit_(squaredLimit),
      surely_(0.999999 * std::sqrt(squaredLimit) - bounds_.rounding) {}

// A point is a mean of the samples, but for the rounding of its weights.
inline std::int32_t SplineSearch::StepsWithoutDab() const {
    const auto farthest = [](const SplineSamples& samples) {
        const auto [least, greatest] = std::minmax({samples[0], samples[1], samples[2], samples[3]});
        return std::max(std::abs(double{least}), std::abs(double{greatest}));
    };
    const double spare = (surely_ - 6.2e-8 * (farthest(xs_) + farthest(ys_))) / bounds_.perStep;
    if (spare >= SplineIterator::steps) return SplineIterator::steps;
    return spare > 0.0 ? static_cast<std::int32_t>(spare) : 0;
}

// Needs AVX2, and is there where `builtWithAvx2`.
struct SplineSearchAvx2 {
    [[nodiscard]] static std::int32_t FirstBeyond(const SplineSearch& search, std::int32_t step, float x, float y);
};

}  // namespace chalkpane
