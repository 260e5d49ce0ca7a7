#include "chalkpane/brush/spline_iterator.h"

#include <algorithm>
#include <cmath>

namespace chalkpane {
namespace {

double SquaredDistance(const SplineWeights& weights, const SplineSamples& xs, const SplineSamples& ys, double x,
                       double y) {
    const double dx = BlendSamples(weights, xs) - x;
    const double dy = BlendSamples(weights, ys) - y;
    return dx * dx + dy * dy;
}

}  // namespace

void SplineIterator::Fill(const StrokePoint& sample) {
    xs.fill(static_cast<float>(sample.x));
    ys.fill(static_cast<float>(sample.y));
    pressures.fill(static_cast<float>(sample.pressure));
}

bool SplineIterator::Rests() const {
    const auto rests = [](const SplineSamples& samples) {
        return samples[0] == samples[3] && samples[1] == samples[3] && samples[2] == samples[3];
    };
    return rests(xs) && rests(ys) && rests(pressures);
}

std::int32_t SplineIterator::FirstBeyond(const SplineStepBounds& bounds, std::int32_t step, float x, float y,
                                         double squaredLimit, std::int32_t& tested) const {
    const double surely = 0.999999 * std::sqrt(squaredLimit) - bounds.rounding;
    const double worthIt = surely - 2 * bounds.perStep;
    const double squaredWorthIt = worthIt > 0.0 ? worthIt * worthIt : -1.0;
    while (step < steps) {
        ++tested;
        const double distance = SquaredDistance(splineWeights.ofStep[static_cast<std::size_t>(step)], xs, ys, x, y);
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
    const SplineStepBounds bounds = StepBounds();
    if (twice > bounds.perStep + bounds.rounding) return steps;
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
    const SplineStepBounds bounds = StepBounds();
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
    const SplineStepBounds bounds = StepBounds();
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
    const auto staysBeside = [](const SplineSamples& samples, double low, double high) {
        const auto [least, greatest] = std::minmax_element(samples.begin(), samples.end());
        const double rounding = 1e-6 * std::max(std::abs(double{*least}), std::abs(double{*greatest}));
        return *greatest + rounding < low || *least - rounding > high;
    };
    return staysBeside(xs, minX, maxX) || staysBeside(ys, minY, maxY);
}

}  // namespace chalkpane
