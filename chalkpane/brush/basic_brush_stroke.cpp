#include <cmath>
#include <new>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/colour_brush_source.h"
#include "chalkpane/brush/sources/source_types.h"
#include "chalkpane/brush/spline_search.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/filters/filter_chain.h"

namespace chalkpane {
namespace {

double Square(double number) { return number * number; }

// The path has a direction from here on; squared canvas pixels.
constexpr double squaredStart = 5.0;

// False for what could not be placed in whole pixels: NaN, or too far off.
bool IsUsable(const StrokePoint& sample) {
    const auto fits = [](double number) { return std::abs(number) <= BasicBrush::farthest; };
    return fits(sample.x) && fits(sample.y) && fits(sample.pressure);
}

}  // namespace

Rect BasicBrush::BeginStroke(double x, double y, double pressure) {
    const StrokePoint sample{x, y, pressure};
    if (target == nullptr || !IsUsable(sample)) return {};
    ++revision;
    AdvanceFilters(filters, target);
    if (source) source->DropPickup();
    currentOpacity = opacity;
    lastAngle = 0.0;
    firstDabPending = matchPath;
    stepsToPassOver = mostStepsPassedOver;
    MeasureTouchingArea();
    Rect changed;
    if (matchPath) {
        lastDabX = static_cast<float>(x);
        lastDabY = static_cast<float>(y);
        lastDabPressure = static_cast<float>(pressure);
    } else {
        changed = PaintDab(sample, false);
    }
    lastInput = sample;
    history.Fill(sample);
    return changed;
}

Rect BasicBrush::ContinueStroke(double x, double y, double pressure) {
    const StrokePoint sample{x, y, pressure};
    if (target == nullptr || !IsUsable(sample)) return {};
    bool painted = false;
    Rect changed = StepAlongPath(sample, painted);
    if (!painted && buildUp && history.Rests()) changed = PaintDab(sample, true);
    return changed;
}

Rect BasicBrush::EndStroke(double x, double y, double pressure) {
    const StrokePoint sample{x, y, pressure};
    if (target == nullptr || !IsUsable(sample)) return {};
    bool painted = false;
    Rect changed;
    for (int i = 0; i < 4; ++i) changed = changed.Union(StepAlongPath(sample, painted));
    return changed;
}

BasicBrush::StrokeState BasicBrush::Stroke() const {
    return {lastInput,       history,         lastDabX,       lastDabY, lastDabPressure,
            firstDabPending, stepsToPassOver, currentOpacity, lastAngle};
}

void BasicBrush::GoOnWith(const StrokeState& stroke) {
    ++revision;
    lastInput = stroke.lastInput;
    history = stroke.history;
    lastDabX = stroke.lastDabX;
    lastDabY = stroke.lastDabY;
    lastDabPressure = stroke.lastDabPressure;
    firstDabPending = stroke.firstDabPending;
    stepsToPassOver = stroke.stepsToPassOver;
    currentOpacity = stroke.currentOpacity;
    lastAngle = stroke.lastAngle;
}

// Canvas pixels between dabs.
double BasicBrush::BaseSpacing(const StrokePoint& sample) const {
    if (!adjustSpacing) return source->GetSize() * spacing;
    // KEEP: the x difference stands first, here and below, so the angle is measured from the y axis.
    return source->GetSizeInDirection(std::atan2(sample.x - lastDabX, sample.y - lastDabY)) * spacing;
}

Rect BasicBrush::StepAlongPath(const StrokePoint& sample, bool& painted) {
    ++revision;
    lastInput = sample;
    history.Push(sample);
    if (!source) return {};
    double pathSpacing = BaseSpacing(sample);
    double pressureFactor = 1.0;
    if (spacingType != static_cast<std::uint8_t>(SpacingType::Keep) && history.Moves()) {
        const double length = history.NewestLength();
        if (pathSpacing > length) {
            if (spacingType == static_cast<std::uint8_t>(SpacingType::ShortenAndThin))
                pressureFactor = std::sqrt(length / pathSpacing);
            pathSpacing = length;
        }
    }
    double squaredSpacing = Square(pathSpacing);
    MeasureTouchingArea();
    if (PassStretchOver(squaredSpacing, pressureFactor, painted)) return {};
    if (!adjustSpacing && !firstDabPending) return PaintEvenStretch(squaredSpacing, pressureFactor, painted);
    Rect changed;
    for (std::int32_t step = 0; step < SplineIterator::steps; ++step) {
        step = NextCandidate(step, squaredSpacing);
        if (step >= SplineIterator::steps) break;
        const StrokePoint point = history.PointAt(step);
        const double dx = point.x - lastDabX;
        const double dy = point.y - lastDabY;
        // KEEP: what the direction says is not shortened to the segment.
        if (adjustSpacing) squaredSpacing = Square(source->GetSizeInDirection(std::atan2(dx, dy)) * spacing);
        const double squaredDistance = dx * dx + dy * dy;
        const bool beyond = squaredDistance > squaredSpacing;
        if (!beyond && !(firstDabPending && squaredDistance >= squaredStart)) continue;
        // KEEP: a path that outruns the spacing at once begins here; only a slow one begins at its first sample.
        if (beyond) firstDabPending = false;
        changed = changed.Union(PaintDab({point.x, point.y, point.pressure * pressureFactor}, false));
        painted = true;
    }
    return changed;
}

// The first step from `step` on at which a dab may fall: each of them when the spacing changes with the direction.
std::int32_t BasicBrush::NextCandidate(std::int32_t step, double squaredSpacing) const {
    if (adjustSpacing) return step;
    // At least the start's distance is the same as beyond the number just below it.
    static const double belowStart = std::nextafter(squaredStart, 0.0);
    const double limit = !firstDabPending || squaredSpacing < squaredStart ? squaredSpacing : belowStart;
    return SplineSearch(history, limit).FirstBeyond(step, lastDabX, lastDabY);
}

double BasicBrush::AngleAlongPath(const StrokePoint& place, bool repeat) {
    if (!matchPath) return 0.0;
    if (!repeat) lastAngle = -std::atan2(lastDabY - place.y, place.x - lastDabX) * 180 / 3.141592653589793;
    return lastAngle;
}

Rect BasicBrush::PaintDab(StrokePoint place, bool repeat) {
    Dab dab;
    dab.angle = AngleAlongPath(place, repeat);
    // The first dab lands on the start, rotated along the first movement.
    if (firstDabPending) place = {lastDabX, lastDabY, lastDabPressure};
    dab.place = place;
    lastDabX = static_cast<float>(place.x);
    lastDabY = static_cast<float>(place.y);
    lastDabPressure = static_cast<float>(place.pressure);
    firstDabPending = false;
    Rect changed;
    if (source && !Misses(place)) {
        dab.opacity = currentOpacity * place.pressure;
        dab.erases = source->IsEraser() || (source->CanErase() && paintEraserFlag);
        try {
            if (PaintsPlainDabs())
                changed = PaintPlainDab(dab);
            else if (paintPlaneOn)
                changed = PaintOnTarget(dab);
            if (maskPlaneOn) PaintOnMask(dab);
        } catch (const std::bad_alloc&) {
            CountMemoryLoss();
            // No memory for the images: the dab is left out and the stroke goes on.
        }
    }
    FadeOpacity();
    return changed;
}

Rect BasicBrush::Dab::Area() const { return mask ? colour->Intersection(*mask) : colour->Bounds(); }

Rect BasicBrush::PaintOnTarget(Dab& dab) {
    const auto& [x, y, pressure] = dab.place;
    if (!source->MakeDab(x, y, dab.angle, dab.colour, dab.mask) || !dab.colour || target == nullptr) return {};
    RunFilterChain(filters, dab.colour, dab.mask, ChainScope::EveryFilter);
    const Rect area = dab.Area();
    const Image* const clip = maskPlaneClips ? maskTarget : nullptr;
    if (dab.erases) {
        Eraser& eraser = SharedEraser();
        eraser.SetOpacity(dab.opacity);
        eraser.Paste(*dab.colour, dab.mask.get(), *target, area, 0, clip, Clip::Inverted);
    } else {
        BrushPaster& paster = SharedPaster();
        paster.SetOpacity(dab.opacity);
        paster.SetMode(blendMode);
        paster.Paste(*dab.colour, dab.mask.get(), *target, SourceTypeOf(sourceType).behaviour, area, 0, clip,
                     Clip::Inverted);
    }
    const Rect changed = area.Intersection(*target);
    source->DabPlaced(x, y, dab.angle);
    return changed;
}

void BasicBrush::PaintOnMask(Dab& dab) {
    if (maskTarget == nullptr) return;
    const auto& [x, y, pressure] = dab.place;
    if (!source->MaskSameAsPaint() || !dab.colour) {
        dab.colour.reset();
        dab.mask.reset();
        if (!source->MakeMaskDab(x, y, dab.angle, dab.colour, dab.mask) || !dab.colour) return;
        RunFilterChain(filters, dab.colour, dab.mask, ChainScope::SpatialOnly);
    }
    BrushPaster& paster = SharedPaster();
    paster.SetOpacity(dab.opacity);
    if (source->PasteValue())
        paster.PasteValueToMask(*dab.colour, dab.mask.get(), *maskTarget, dab.Area(), dab.erases ? 0 : maskValue);
    else
        paster.PasteToMask(*dab.colour, dab.mask.get(), *maskTarget, dab.Area());
    source->DabPlacedOnMask(x, y, dab.angle);
}

}  // namespace chalkpane
