#include "chalkpane/base/memory_loss.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/settled_stretch.h"
#include "chalkpane/brush/small_dab_stretch.h"
#include "chalkpane/brush/sources/colour_brush_source.h"
#include "chalkpane/brush/sources/source_types.h"
#include "chalkpane/brush/spline_search.h"
#include "chalkpane/composite/brush_paster_rows.h"
#include "chalkpane/composite/settled_tiles.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace chalkpane {

// The dabs that a telestrator sets by the ten thousand: one colour through one of the profile's own masks. What they
// have in common is found once for a stretch of the path.

bool BasicBrush::PaintsPlainDabs() const {
    return colourSource != nullptr && colourSource->HasPlainDabs() && paintPlaneOn && !maskPlaneOn && !maskPlaneClips &&
           !matchPath && filters.empty() && target != nullptr;
}

// Null where dabs do not come to rest, or others may write.
SettledTiles* BasicBrush::TilesOfPlainDabs(bool erases) const {
    const bool isOver = blendMode == 0 && SourceTypeOf(sourceType).behaviour == PasteBehaviour::Over;
    if (settledTiles == nullptr || (!erases && !isOver)) return nullptr;
    settledTiles->Serve(*target, erases ? 0 : colourSource->Pixel8(), colourSource->DabRects().reach);
    return settledTiles;
}

// What of a dab may change anything.
template <typename Paint>
void BasicBrush::PaintRestless(SettledTiles& tiles, const ColourDab& dab, Paint&& paint) {
    tiles.Look(dab.rect);
    if (!tiles.LooksCloser()) return tiles.VisitRestless(dab.rect, paint);
    bool isHeld = true;
    tiles.VisitRestless(dab.rect, [&](const Rect& part) {
        const Rect rows = tiles.RestlessRows(*dab.mask, dab.rect, part);
        if (!rows.IsValid()) return;
        isHeld = false;
        paint(rows);
        tiles.LookAtPixels(rows);
    });
    tiles.TellLast(isHeld);
}

// What `PaintOnTarget` comes to for such dabs, with no images made.
Rect BasicBrush::PaintPlainDab(const Dab& dab) {
    ColourDab plain;
    if (!colourSource->FindDab(dab.place.x, dab.place.y, plain)) return {};
    SettledTiles* const tiles = TilesOfPlainDabs(dab.erases);
    const auto paint = [&](const Rect& part) {
        if (dab.erases)
            EraseColourDab(plain, part, *target, dab.opacity);
        else
            PasteColourDab(plain, part, *target, SourceTypeOf(sourceType).behaviour, dab.opacity, blendMode);
    };
    if (tiles == nullptr)
        paint(plain.rect);
    else if (tiles->Hold(plain.rect))
        tiles->MarkMiddle(dab.place.x, dab.place.y);
    else
        PaintRestless(*tiles, plain, paint);
    return plain.rect.Intersection(*target);
}

// Of a canvas that small dabs can be painted on as blocks; anything else has no origin.
SmallDabTarget BasicBrush::TargetOfSmallDabs() const {
    if (!colourSource->HasSmallDabs() || paintEraserFlag || blendMode != 0) return {};
    if (SourceTypeOf(sourceType).behaviour != PasteBehaviour::Over) return {};
    return SmallDabTarget::Of(*target, colourSource->Pixel8());
}

// False: this dab is none for a block, and nothing is painted.
bool BasicBrush::PaintSmallDab(const SmallDabTarget& canvas, const StrokePoint& place, Rect& changed) const {
    const auto [mask, moveX, moveY] = colourSource->FindSmallDab(place.x, place.y);
    if (mask == nullptr) return false;
    const Rect rect(mask->rect.x0 + moveX, mask->rect.y0 + moveY, mask->rect.x1 + moveX, mask->rect.y1 + moveY);
    if (!canvas.Holds(rect)) return false;
    using F = PixelFormat8;
    const std::int32_t dabOpacity =
        IntegerOpacity(currentOpacity * place.pressure, pasteOpacityFactor<F>, F::fullScale);
    SmallColourOver8(canvas, *mask, rect.x0, rect.y1, dabOpacity);
    changed = changed.Union(rect);
    return true;
}

void BasicBrush::PaintNextPlainDab(const StrokePoint& place, Rect& changed) {
    Dab dab;
    dab.place = place;
    dab.opacity = currentOpacity * place.pressure;
    dab.erases = source->IsEraser() || paintEraserFlag;
    try {
        changed = changed.Union(PaintPlainDab(dab));
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
    }
}

// The opacity of every dab of the stretch; below 0 where they may differ.
std::int32_t BasicBrush::OpacityOfStretch(double pressureFactor) const {
    // A pressure is a mean of the samples' ones, but for the rounding of its weights.
    constexpr double rounding = 1e-6;
    using F = PixelFormat8;
    // One that is NaN or infinite is in all means.
    const auto isPlain = [](float pressure) { return std::isfinite(pressure) && pressure >= 0.0F; };
    if (decay != 0.0 || !std::ranges::all_of(history.Pressures(), isPlain)) return -1;
    const auto [least, greatest] = std::ranges::minmax(history.Pressures());
    const auto opacityAt = [&](double pressure) {
        return IntegerOpacity(currentOpacity * (pressure * pressureFactor), pasteOpacityFactor<F>, F::fullScale);
    };
    const std::int32_t lowest = opacityAt(double{least} * (1.0 - rounding));
    return lowest == opacityAt(double{greatest} * (1.0 + rounding)) ? lowest : -1;
}

// Goes on from a step with the dabs that `follow` holds. Returns the step of the first that it does not, which is not
// painted, or `SplineIterator::steps`.
template <typename Follow>
std::int32_t BasicBrush::FollowDabsFrom(std::int32_t step, bool followsDab, double pressureFactor, Rect& changed,
                                        bool& painted, Follow&& follow) {
    DabProgress progress;
    progress.step = step;
    progress.followsDab = followsDab;
    progress.lastX = lastDabX;
    progress.lastY = lastDabY;
    follow(progress);
    if (progress.dabs == 0) return progress.step;
    paintedDabs += static_cast<std::uint64_t>(progress.dabs);
    PlaceUnpaintedDab(history.PointAt(progress.lastStep), pressureFactor);
    painted = true;
    changed = changed.Union(progress.changed.Intersection(*target));
    return progress.step;
}

// Or nobody would find out that whole tiles and cells can be told at a glance.
void BasicBrush::LookWhereHeld(SettledTiles& tiles, const DabProgress& progress) const {
    tiles.MarkMiddle(progress.lastX, progress.lastY);
    const std::int32_t reach = colourSource->DabRects().reach;
    const auto x = static_cast<std::int32_t>(progress.lastX);
    const auto y = static_cast<std::int32_t>(progress.lastY);
    tiles.Look({x - reach, y - reach, x + reach, y + reach});
}

// Where the spacing is the same in all directions, and no dab is pending.
Rect BasicBrush::PaintEvenStretch(double squaredSpacing, double pressureFactor, bool& painted) {
    const SplineSearch search(history, squaredSpacing);
    const bool isPlain = PaintsPlainDabs();
    const SmallDabTarget small = isPlain ? TargetOfSmallDabs() : SmallDabTarget();
    const std::int32_t opacityOfAll = small.origin != nullptr ? OpacityOfStretch(pressureFactor) : -1;
    const SmallDabStretch blocks =
        opacityOfAll >= 0 ? SmallDabStretch(small, colourSource->AllSmallMasks()) : SmallDabStretch();
    SettledTiles* const tiles =
        isPlain && decay == 0.0 ? TilesOfPlainDabs(source->IsEraser() || paintEraserFlag) : nullptr;
    const SettledStretch settled =
        tiles != nullptr ? SettledStretch(*tiles, colourSource->DabRects()) : SettledStretch();
    Rect changed;
    bool missed = Misses({lastDabX, lastDabY, 0});  // so the next ones may as well
    bool followsDab = false;
    std::int32_t tryAgainAt = 0;
    for (std::int32_t step = 0; step < SplineIterator::steps; ++step) {
        if (missed && step >= tryAgainAt) {
            const std::int32_t passed = PassMissesOver(step, squaredSpacing, pressureFactor, painted, tryAgainAt);
            followsDab = followsDab || passed != step;
            step = passed;
        }
        const auto follow = [&](auto&& pass) {
            return FollowDabsFrom(step, followsDab, pressureFactor, changed, painted, pass);
        };
        if (!missed && blocks.HoldsAny())
            step = follow([&](DabProgress& progress) { blocks.Paint(search, opacityOfAll, progress); });
        else if (!missed && settled.HoldsAny())
            step = follow([&](DabProgress& progress) {
                settled.Pass(search, progress);
                if (progress.dabs > 0) LookWhereHeld(*tiles, progress);
            });
        else if (followsDab)
            step = search.NextBeyond(step, lastDabX, lastDabY);
        else
            step = search.FirstBeyond(step, lastDabX, lastDabY);
        if (step >= SplineIterator::steps) break;
        StrokePoint place = history.PointAt(step);
        missed = Misses(place);
        place.pressure *= pressureFactor;
        painted = followsDab = true;
        if (!isPlain) {
            changed = changed.Union(PaintDab(place, false));
            continue;
        }
        PlaceUnpaintedDab(place, 1.0);
        if (!missed) ++paintedDabs;
        if (!missed && !(small.origin != nullptr && PaintSmallDab(small, place, changed)))
            PaintNextPlainDab(place, changed);
        FadeOpacity();
    }
    return changed;
}

// Each dab fades the rest of the stroke.
void BasicBrush::FadeOpacity() {
    if (decay == 0.0) return;
    const double kept = 1.0 - decay;
    currentOpacity *= kept > 0.0 ? std::sqrt(kept) : 0.0;
}

}  // namespace chalkpane
