#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace chalkpane {

// The weights of the four samples at each step of a stroke's curve, which depend on the step alone.

constexpr std::int32_t splineSteps = 1001;

using SplineWeights = std::array<float, 4>;

struct SplineWeightTable {
    std::array<SplineWeights, splineSteps> ofStep{};
    std::int32_t count = 0;
};

// t gathers its own rounding: each step adds 0.001 to a 32-bit float. The last of them is just below 1.
inline constexpr SplineWeightTable splineWeights = [] {
    SplineWeightTable table;
    for (float step = 0.0F; step <= 1.0; step = static_cast<float>(step + 0.001)) {
        const double t = step;
        const double t2 = t * t;
        const double t3 = t2 * t;
        table.ofStep[static_cast<std::size_t>(table.count++)] = {
            static_cast<float>((1.0 - 3.0 * t + 3.0 * t2 - t3) / 6.0),
            static_cast<float>((4.0 - 6.0 * t2 + 3.0 * t3) / 6.0),
            static_cast<float>((1.0 + 3.0 * t + 3.0 * t2 - 3.0 * t3) / 6.0),
            static_cast<float>(t3 / 6.0),
        };
    }
    return table;
}();
static_assert(splineWeights.count == splineSteps);

// By how much the sums of two steps' weights differ at most: not 0, as the weights are rounded.
inline constexpr double splineSumSpan = [] {
    double least = 1.0;
    double most = 1.0;
    for (const SplineWeights& weights : splineWeights.ofStep) {
        const double sum = static_cast<double>(weights[0]) + weights[1] + weights[2] + weights[3];
        least = std::min(least, sum);
        most = std::max(most, sum);
    }
    return most - least;
}();

}  // namespace chalkpane
