#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "chalkpane/brush/spline_weights.h"

namespace chalkpane {

// One pointer sample, or one point of the curve between samples: canvas pixels, and a pressure of 0.0 .. 1.0.
struct StrokePoint {
    double x = 0.0;
    double y = 0.0;
    double pressure = 0.0;
};

using SplineSamples = std::array<float, 4>;  // oldest first

inline double BlendSamples(const SplineWeights& weights, const SplineSamples& samples) {
    return static_cast<double>(weights[0]) * samples[0] + static_cast<double>(weights[1]) * samples[1] +
           static_cast<double>(weights[2]) * samples[2] + static_cast<double>(weights[3]) * samples[3];
}

// Bounds on how far the points of two steps can lie apart.
struct SplineStepBounds {
    double perStep = 0.0;   // between neighbouring steps, without rounding
    double rounding = 0.0;  // of any two steps, besides
};

// The uniform cubic B-spline through the last four samples of a stroke, evaluated at 1001 steps of its parameter from 0
// to 1.
//
// Samples are kept as 32-bit floats and so are the weights of a step; products and sums are doubles. The weights depend
// on the step alone, so they stand in a table.
class SplineIterator {
public:
    static constexpr std::int32_t steps = splineSteps;

    // All four samples become this one.
    void Fill(const StrokePoint& sample);
    // Drops the oldest sample.
    void Push(const StrokePoint& sample);

    // True when the newest sample differs in place from the one before.
    [[nodiscard]] bool Moves() const;
    // Distance between the newest two samples.
    [[nodiscard]] double NewestLength() const;
    // True when all four samples are the same, in place and pressure.
    [[nodiscard]] bool Rests() const;

    // step: 0 .. steps - 1.
    [[nodiscard]] StrokePoint PointAt(std::int32_t step) const {
        const SplineWeights& weights = splineWeights.ofStep[static_cast<std::size_t>(step)];
        return {BlendSamples(weights, xs), BlendSamples(weights, ys), BlendSamples(weights, pressures)};
    }

    [[nodiscard]] const SplineSamples& Xs() const { return xs; }
    [[nodiscard]] const SplineSamples& Ys() const { return ys; }
    [[nodiscard]] const SplineSamples& Pressures() const { return pressures; }
    [[nodiscard]] SplineStepBounds StepBounds() const;

    // The last of the steps that a `SplineSearch` finds when each one found becomes, narrowed to floats, the point to
    // get away from; `steps` when it finds none. Takes from `budget` what it took in tested steps; with nothing left,
    // the curve's last step is the answer.
    [[nodiscard]] std::int32_t LastBeyond(float x, float y, double squaredLimit, std::int32_t& budget) const;
    // A step shortly before `end` that is among those whatever (x, y) was; `steps` when there is none surely.
    [[nodiscard]] std::int32_t SurelyBeyond(double squaredLimit, std::int32_t end = steps) const;

    // True: all points of the curve lie surely left of minX, right of maxX, above minY or below maxY, on one side all.
    [[nodiscard]] bool StaysBeside(double minX, double minY, double maxX, double maxY) const;

    // The first step from `step` on whose point may lie within minX .. maxX, minY .. maxY; all before it surely do not.
    [[nodiscard]] std::int32_t FirstPerhapsInside(std::int32_t step, double minX, double minY, double maxX,
                                                  double maxY) const;

private:
    [[nodiscard]] std::int32_t FirstBeyond(const SplineStepBounds& bounds, std::int32_t step, float x, float y,
                                           double squaredLimit, std::int32_t& tested) const;

    SplineSamples xs{};
    SplineSamples ys{};
    SplineSamples pressures{};
};

// The curve's derivative is a mean of the differences between neighbouring samples, and a step of the gathered t is at
// most 0.001 + 6e-8. Rounded weights move the first sample's place by what their sum is off, and the differences from
// it by 6e-8 at each of two steps.
inline SplineStepBounds SplineIterator::StepBounds() const {
    double squaredLongest = 0.0;
    double squaredSpread = 0.0;
    for (std::size_t i = 1; i < 4; ++i) {
        const auto squaredFrom = [&](std::size_t other) {
            const double dx = static_cast<double>(xs[i]) - static_cast<double>(xs[other]);
            const double dy = static_cast<double>(ys[i]) - static_cast<double>(ys[other]);
            return dx * dx + dy * dy;
        };
        squaredLongest = std::max(squaredLongest, squaredFrom(i - 1));
        squaredSpread = std::max(squaredSpread, squaredFrom(0));
    }
    const double place = std::abs(static_cast<double>(xs[0])) + std::abs(static_cast<double>(ys[0]));
    return {0.0010001 * std::sqrt(squaredLongest), 1.01 * splineSumSpan * place + 2e-7 * std::sqrt(squaredSpread)};
}

inline void SplineIterator::Push(const StrokePoint& sample) {
    const auto push = [](SplineSamples& samples, double value) {
        samples = {samples[1], samples[2], samples[3], static_cast<float>(value)};
    };
    push(xs, sample.x);
    push(ys, sample.y);
    push(pressures, sample.pressure);
}

inline bool SplineIterator::Moves() const { return xs[3] != xs[2] || ys[3] != ys[2]; }

inline double SplineIterator::NewestLength() const {
    const double dx = static_cast<double>(xs[3]) - static_cast<double>(xs[2]);
    const double dy = static_cast<double>(ys[3]) - static_cast<double>(ys[2]);
    return std::sqrt(dx * dx + dy * dy);
}

}  // namespace chalkpane
