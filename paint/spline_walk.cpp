#include "paint/spline_walk.h"

#include <algorithm>
#include <cmath>

namespace chalkpane {
namespace {

using Weights = std::array<float, 4>;

struct WeightTable {
    std::array<Weights, SplineWalk::steps> ofStep{};
    std::int32_t count = 0;
};

// t gathers its own rounding: each step adds 0.001 to a 32-bit float. The last of them is just below 1.
constexpr WeightTable weightTable = [] {
    WeightTable table;
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
static_assert(weightTable.count == SplineWalk::steps);

double Blend(const Weights& weights, const std::array<float, 4>& samples) {
    return static_cast<double>(weights[0]) * samples[0] + static_cast<double>(weights[1]) * samples[1] +
           static_cast<double>(weights[2]) * samples[2] + static_cast<double>(weights[3]) * samples[3];
}

double SquaredDistance(const Weights& weights, const std::array<float, 4>& xs, const std::array<float, 4>& ys, double x,
                       double y) {
    const double dx = Blend(weights, xs) - x;
    const double dy = Blend(weights, ys) - y;
    return dx * dx + dy * dy;
}

// How far the curve can get along one axis. Its derivative is a mean of the differences between neighbours, and the
// rounding of the weights moves a point by less than a millionth of the largest coordinate.
struct Reach {
    double perStep = 0.0;
    double rounding = 0.0;
};

Reach ReachAlong(const std::array<float, 4>& samples) {
    Reach reach;
    for (std::size_t i = 0; i < 4; ++i) {
        reach.rounding = std::max(reach.rounding, 1e-6 * std::abs(static_cast<double>(samples[i])));
        if (i > 0)
            reach.perStep = std::max(reach.perStep, 0.00101 * std::abs(static_cast<double>(samples[i]) -
                                                                       static_cast<double>(samples[i - 1])));
    }
    return reach;
}

// A stretch of steps that is passed over when its first point lies so near that the others cannot be beyond the limit.
struct Stretch {
    std::int32_t length = 0;  // below 2: none is worth it
    double squaredNear = 0.0;
};

Stretch StretchWithin(const std::array<float, 4>& xs, const std::array<float, 4>& ys, double squaredLimit) {
    if (!(squaredLimit > 0.0)) return {};
    const Reach alongX = ReachAlong(xs);
    const Reach alongY = ReachAlong(ys);
    const double perStep = alongX.perStep + alongY.perStep;
    const double limit = std::sqrt(squaredLimit);
    // A quarter of the limit: long enough to save work, short enough to be allowed over most of the way.
    const double quarter = std::min(0.25 * limit, perStep * SplineWalk::steps);
    Stretch stretch;
    stretch.length = perStep > 0.0 ? static_cast<std::int32_t>(quarter / perStep) : SplineWalk::steps;
    const double near = 0.999999 * limit - perStep * stretch.length - alongX.rounding - alongY.rounding;
    if (!(near > 0.0)) return {};
    stretch.squaredNear = near * near;
    return stretch;
}

}  // namespace

void SplineWalk::Fill(const StrokePoint& sample) {
    xs.fill(static_cast<float>(sample.x));
    ys.fill(static_cast<float>(sample.y));
    pressures.fill(static_cast<float>(sample.pressure));
}

void SplineWalk::Push(const StrokePoint& sample) {
    const auto push = [](Samples& samples, double value) {
        samples = {samples[1], samples[2], samples[3], static_cast<float>(value)};
    };
    push(xs, sample.x);
    push(ys, sample.y);
    push(pressures, sample.pressure);
}

bool SplineWalk::Moves() const { return xs[3] != xs[2] || ys[3] != ys[2]; }

double SplineWalk::NewestLength() const {
    const double dx = static_cast<double>(xs[3]) - static_cast<double>(xs[2]);
    const double dy = static_cast<double>(ys[3]) - static_cast<double>(ys[2]);
    return std::sqrt(dx * dx + dy * dy);
}

bool SplineWalk::Rests() const {
    const auto rests = [](const Samples& samples) {
        return samples[0] == samples[3] && samples[1] == samples[3] && samples[2] == samples[3];
    };
    return rests(xs) && rests(ys) && rests(pressures);
}

StrokePoint SplineWalk::PointAt(std::int32_t step) const {
    const Weights& weights = weightTable.ofStep[static_cast<std::size_t>(step)];
    return {Blend(weights, xs), Blend(weights, ys), Blend(weights, pressures)};
}

std::int32_t SplineWalk::FirstBeyond(std::int32_t step, float x, float y, double squaredLimit) const {
    const Stretch stretch = StretchWithin(xs, ys, squaredLimit);
    const auto squaredDistance = [&](std::int32_t at) {
        return SquaredDistance(weightTable.ofStep[static_cast<std::size_t>(at)], xs, ys, x, y);
    };
    while (step < steps) {
        const double distance = squaredDistance(step);
        if (distance > squaredLimit) return step;
        if (stretch.length > 1 && distance <= stretch.squaredNear) {
            step += stretch.length;
            continue;
        }
        ++step;
    }
    return steps;
}

}  // namespace chalkpane
