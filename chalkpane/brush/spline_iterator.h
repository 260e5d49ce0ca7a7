#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace chalkpane {

// One pointer sample, or one point of the curve between samples: canvas pixels, and a pressure of 0.0 .. 1.0.
struct StrokePoint {
    double x = 0.0;
    double y = 0.0;
    double pressure = 0.0;
};

// The uniform cubic B-spline through the last four samples of a stroke, walked from its parameter 0 to 1 in 1001 steps.
//
// Samples are kept as 32-bit floats and so are the weights of a step; products and sums are doubles. The weights depend
// on the step alone, so they stand in a table.
class SplineIterator {
public:
    static constexpr std::int32_t steps = 1001;

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
    [[nodiscard]] StrokePoint PointAt(std::int32_t step) const;

    // The first step from `step` on whose point lies further from (x, y) than the square root of `squaredLimit`;
    // `steps` when there is none. The answer is that of testing each step in turn; stretches of the curve that cannot
    // get so far are passed over. A limit that is not a number is never exceeded.
    [[nodiscard]] std::int32_t FirstBeyond(std::int32_t step, float x, float y, double squaredLimit) const;

private:
    using Samples = std::array<float, 4>;  // oldest first

    Samples xs{};
    Samples ys{};
    Samples pressures{};
};

}  // namespace chalkpane
