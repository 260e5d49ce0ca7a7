#include "chalkpane/brush/spline_iterator.h"

#include <algorithm>
#include <cmath>

namespace chalkpane {
namespace {

using Weights = std::array<float, 4>;

struct WeightTable {
    std::array<Weights, SplineIterator::steps> ofStep{};
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
static_assert(weightTable.count == SplineIterator::steps);

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

// By how much the sums of two steps' weights differ at most: not 0, as the weights are rounded.
constexpr double sumSpan = [] {
    double least = 1.0;
    double most = 1.0;
    for (const Weights& weights : weightTable.ofStep) {
        const double sum = static_cast<double>(weights[0]) + weights[1] + weights[2] + weights[3];
        least = std::min(least, sum);
        most = std::max(most, sum);
    }
    return most - least;
}();

}  // namespace

// Bounds on how far the points of two steps can lie apart.
struct SplineIterator::StepBounds {
    double perStep = 0.0;   // between neighbouring steps, without rounding
    double rounding = 0.0;  // of any two steps, besides
};

// The curve's derivative is a mean of the differences between neighbouring samples, and a step of the gathered t is at
// most 0.001 + 6e-8. Rounded weights move the first sample's place by what their sum is off, and the differences from
// it by 6e-8 at each of two steps.
SplineIterator::StepBounds SplineIterator::StepBoundsOfSamples() const {
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
    return {0.0010001 * std::sqrt(squaredLongest), 1.01 * sumSpan * place + 2e-7 * std::sqrt(squaredSpread)};
}

void SplineIterator::Fill(const StrokePoint& sample) {
    xs.fill(static_cast<float>(sample.x));
    ys.fill(static_cast<float>(sample.y));
    pressures.fill(static_cast<float>(sample.pressure));
}

void SplineIterator::Push(const StrokePoint& sample) {
    const auto push = [](Samples& samples, double value) {
        samples = {samples[1], samples[2], samples[3], static_cast<float>(value)};
    };
    push(xs, sample.x);
    push(ys, sample.y);
    push(pressures, sample.pressure);
}

bool SplineIterator::Moves() const { return xs[3] != xs[2] || ys[3] != ys[2]; }

double SplineIterator::NewestLength() const {
    const double dx = static_cast<double>(xs[3]) - static_cast<double>(xs[2]);
    const double dy = static_cast<double>(ys[3]) - static_cast<double>(ys[2]);
    return std::sqrt(dx * dx + dy * dy);
}

bool SplineIterator::Rests() const {
    const auto rests = [](const Samples& samples) {
        return samples[0] == samples[3] && samples[1] == samples[3] && samples[2] == samples[3];
    };
    return rests(xs) && rests(ys) && rests(pressures);
}

StrokePoint SplineIterator::PointAt(std::int32_t step) const {
    const Weights& weights = weightTable.ofStep[static_cast<std::size_t>(step)];
    return {Blend(weights, xs), Blend(weights, ys), Blend(weights, pressures)};
}

std::int32_t SplineIterator::FirstBeyond(std::int32_t step, float x, float y, double squaredLimit) const {
    std::int32_t tested = 0;
    return FirstBeyond(StepBoundsOfSamples(), step, x, y, squaredLimit, tested);
}

std::int32_t SplineIterator::FirstBeyond(const StepBounds& bounds, std::int32_t step, float x, float y,
                                         double squaredLimit, std::int32_t& tested) const {
    const double surely = 0.999999 * std::sqrt(squaredLimit) - bounds.rounding;
    const double worthIt = surely - 2 * bounds.perStep;
    const double squaredWorthIt = worthIt > 0.0 ? worthIt * worthIt : -1.0;
    while (step < steps) {
        ++tested;
        const double distance = SquaredDistance(weightTable.ofStep[static_cast<std::size_t>(step)], xs, ys, x, y);
        if (distance > squaredLimit) return step;
        if (distance <= squaredWorthIt) {
            // What is left to the limit cannot be covered in fewer steps.
            const double spare = (surely - std::sqrt(distance)) / bounds.perStep;
            step += spare < steps ? std::max(1, static_cast<std::int32_t>(spare)) : steps;
        } else {
            ++step;
        }
    }
    return steps;
}

// A step is found whatever came before when it lies further than twice the limit from the step before it: either that
// one was found, and what is left behind is more than the limit, or it lies within the limit of what was found last.
std::int32_t SplineIterator::SurelyBeyond(double squaredLimit, std::int32_t end) const {
    constexpr std::int32_t tried = 16;
    const double twice = 2.000001 * std::sqrt(squaredLimit) + 1e-5;
    StrokePoint place = PointAt(end - 1);
    for (std::int32_t step = end - 1; step > std::max(end - 1 - tried, 0); --step) {
        const StrokePoint before = PointAt(step - 1);
        const auto squaredFrom = [&](double x, double y) {
            return (place.x - x) * (place.x - x) + (place.y - y) * (place.y - y);
        };
        if (squaredFrom(before.x, before.y) > twice * twice &&
            squaredFrom(static_cast<float>(before.x), static_cast<float>(before.y)) > squaredLimit)
            return step;
        place = before;
    }
    return steps;
}

std::int32_t SplineIterator::LastBeyond(float x, float y, double squaredLimit, std::int32_t& budget) const {
    if (budget <= 0) return steps - 1;
    const StepBounds bounds = StepBoundsOfSamples();
    std::int32_t tested = 0;
    std::int32_t last = steps;
    const auto find = [&](std::int32_t from) { return FirstBeyond(bounds, from, x, y, squaredLimit, tested); };
    for (std::int32_t step = find(0); step < steps; step = find(step + 1)) {
        const StrokePoint place = PointAt(step);
        x = static_cast<float>(place.x);
        y = static_cast<float>(place.y);
        last = step;
    }
    budget -= tested;
    return last;
}

// From each point on as many steps as cannot cover the way that is left.
std::int32_t SplineIterator::FirstPerhapsInside(std::int32_t step, double minX, double minY, double maxX,
                                                double maxY) const {
    const auto awayAt = [&](std::int32_t tested) {
        const StrokePoint place = PointAt(tested);
        return std::max({minX - place.x, place.x - maxX, minY - place.y, place.y - maxY});
    };
    if (!(awayAt(step) > 0.0)) return step;
    const StepBounds bounds = StepBoundsOfSamples();
    while (step < steps) {
        const double away = awayAt(step);
        const double spare = 0.999999 * (away - bounds.rounding) / bounds.perStep;
        if (!(spare > 1.0)) return step;
        step += spare < steps ? static_cast<std::int32_t>(spare) : steps;
    }
    return steps;
}

bool SplineIterator::StaysBeside(double minX, double minY, double maxX, double maxY) const {
    // A point is a mean of the samples, but for the rounding of its weights.
    const auto staysBeside = [](const Samples& samples, double low, double high) {
        const auto [least, greatest] = std::minmax_element(samples.begin(), samples.end());
        const double rounding = 1e-6 * std::max(std::abs(double{*least}), std::abs(double{*greatest}));
        return *greatest + rounding < low || *least - rounding > high;
    };
    return staysBeside(xs, minX, maxX) || staysBeside(ys, minY, maxY);
}

}  // namespace chalkpane
