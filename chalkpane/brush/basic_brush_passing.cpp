#include <algorithm>
#include <cmath>
#include <limits>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/colour_brush_source.h"

namespace chalkpane {

// A stroke may run far from its target. Dabs out there change no pixel, but their places decide where the dabs fall
// when the stroke comes back: so the places are found as ever and only the dabs are left out. That costs far less than
// dabs, but not nothing. No hand draws beside the target for as long as the budget of steps lasts; what does is not
// worth a pause of the program, and from there on the spacing is measured from the end of each stretch.

namespace {

constexpr double everywhere = std::numeric_limits<double>::infinity();

}  // namespace

void BasicBrush::MeasureTouchingArea() {
    touching = {-everywhere, -everywhere, everywhere, everywhere};
    if (matchPath || adjustSpacing || firstDabPending || maskPlaneOn || decay != 0.0 || !filters.empty()) return;
    // A dab of this source leaves nothing behind but its pixels.
    if (colourSource == nullptr || !colourSource->HoldsNothing()) return;
    if (!colourSource->MakesDabs()) {
        touching = {everywhere, everywhere, -everywhere, -everywhere};
        return;
    }
    constexpr double room = 4.0;  // for the roundings of a dab's place
    const Rect& dab = source->DabArea();
    const double half = room + std::max({std::abs(dab.x0), std::abs(dab.x1), std::abs(dab.y0), std::abs(dab.y1)});
    touching = {target->x0 - half, target->y0 - half, target->x1 + half, target->y1 + half};
}

// A point of a curve is a mean of four samples, but for the rounding of its weights.
bool BasicBrush::SurelyMisses(const PlaneArea& samples) const {
    const auto& [minX, minY, maxX, maxY] = samples;
    const double rounding = 1e-5 * std::max({std::abs(minX), std::abs(minY), std::abs(maxX), std::abs(maxY)});
    return maxX + rounding < touching.minX || minX - rounding > touching.maxX || maxY + rounding < touching.minY ||
           minY - rounding > touching.maxY;
}

bool BasicBrush::PassStretchOver(double squaredSpacing, double pressureFactor, bool& painted) {
    if (!Misses(lastInput) || !history.StaysBeside(touching.minX, touching.minY, touching.maxX, touching.maxY)) {
        stepsToPassOver = mostStepsPassedOver;
        return false;
    }
    std::int32_t last = history.SurelyBeyond(squaredSpacing);
    if (last != SplineIterator::steps) {
        painted = true;
        stepsToPassOver = mostStepsPassedOver;
        PlaceUnpaintedDab(history.PointAt(last), pressureFactor);
        for (++last; last < SplineIterator::steps; ++last) {
            const StrokePoint place = history.PointAt(last);
            const double dx = place.x - lastDabX;
            const double dy = place.y - lastDabY;
            if (dx * dx + dy * dy > squaredSpacing) PlaceUnpaintedDab(place, pressureFactor);
        }
        return true;
    }
    last = history.LastBeyond(lastDabX, lastDabY, squaredSpacing, stepsToPassOver);
    if (last == SplineIterator::steps) return true;
    PlaceUnpaintedDab(history.PointAt(last), pressureFactor);
    painted = true;
    return true;
}

std::int32_t BasicBrush::PassMissesOver(std::int32_t step, double squaredSpacing, double pressureFactor, bool& painted,
                                        std::int32_t& tryAgainAt) {
    constexpr std::int32_t worthIt = 8;
    const std::int32_t end =
        history.FirstPerhapsInside(step, touching.minX, touching.minY, touching.maxX, touching.maxY);
    tryAgainAt = std::max(end, step + worthIt);
    if (end - step < worthIt) return step;
    const std::int32_t last = history.SurelyBeyond(squaredSpacing, end);
    if (last == SplineIterator::steps || last < step) return step;
    PlaceUnpaintedDab(history.PointAt(last), pressureFactor);
    painted = true;
    return last + 1;
}

void BasicBrush::PlaceUnpaintedDab(const StrokePoint& place, double pressureFactor) {
    lastDabX = static_cast<float>(place.x);
    lastDabY = static_cast<float>(place.y);
    lastDabPressure = static_cast<float>(place.pressure * pressureFactor);
}

}  // namespace chalkpane
