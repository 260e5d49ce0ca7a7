#include "chalkpane/brush/spline_search.h"

#include <algorithm>
#include <cmath>

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

std::int32_t SplineSearch::FirstBeyond(std::int32_t step, float x, float y) const {
    if constexpr (builtWithAvx2)
        if (HasAvx2()) return SplineSearchAvx2::FirstBeyond(*this, step, x, y);
    return FirstBeyondPlain(step, x, y);
}

// A narrowed coordinate is off by 6e-8 of itself at most.
std::int32_t SplineSearch::NextBeyond(std::int32_t step, float x, float y) const {
    const double narrowing = 6.1e-8 * (std::abs(double{x}) + std::abs(double{y}));
    const double spare = (surely_ - narrowing) / bounds_.perStep;
    if (spare >= SplineIterator::steps - step) return SplineIterator::steps;
    if (spare > 0.0) step += static_cast<std::int32_t>(spare);
    return FirstBeyond(step, x, y);
}

std::int32_t SplineSearch::FirstBeyondPlain(std::int32_t step, float x, float y) const {
    const double worthIt = surely_ - 2 * bounds_.perStep;
    const double squaredWorthIt = worthIt > 0.0 ? worthIt * worthIt : -1.0;
    while (step < SplineIterator::steps) {
        const SplineWeights& weights = splineWeights.ofStep[static_cast<std::size_t>(step)];
        const double dx = BlendSamples(weights, xs_) - x;
        const double dy = BlendSamples(weights, ys_) - y;
        const double distance = dx * dx + dy * dy;
        if (distance > squaredLimit_) return step;
        if (distance <= squaredWorthIt) {
            // What is left to the limit cannot be covered in fewer steps.
            const double spare = (surely_ - std::sqrt(distance)) / bounds_.perStep;
            step +=
                spare < SplineIterator::steps ? std::max(1, static_cast<std::int32_t>(spare)) : SplineIterator::steps;
        } else {
            ++step;
        }
    }
    return SplineIterator::steps;
}

}  // namespace chalkpane
