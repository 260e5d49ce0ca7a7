#include "chalkpane/composite/colour_dab.h"

#include <cstring>

#include "chalkpane/composite/brush_paster_rows.h"
#include "chalkpane/composite/erase_row.h"
#include "chalkpane/composite/src_over_row.h"

namespace chalkpane {

namespace {

bool Fits(const ColourDab& dab, const Image& target) {
    return dab.colour != nullptr && dab.mask != nullptr && !dab.colour->IsMask() && !target.IsMask() &&
           HasDepthOf(*dab.colour, &target) && HasDepthOf(*dab.colour, dab.mask);
}

// The part of the mask that lies on `region`.
Rect InMask(const ColourDab& dab, const Rect& region) {
    const std::int32_t left = dab.mask->x0 + (region.x0 - dab.rect.x0);
    const std::int32_t bottom = dab.mask->y0 + (region.y0 - dab.rect.y0);
    return {left, bottom, left + region.Width() - 1, bottom + region.Height() - 1};
}

template <typename F>
PasteJob<F> JobOf(const ColourDab& dab, const Image& target, const Rect& region) {
    using Channel = typename F::Channel;
    PasteJob<F> job;
    job.region = region;
    job.target = PlaneOf<Channel>(target, region);
    job.source = PlaneOf<const Channel>(*dab.colour, *dab.colour);
    job.source.rowStep = 0;  // one row does for all
    job.mask = CoveragePlaneOf<Channel>(*dab.mask, InMask(dab, region));
    return job;
}

// The most used dab, whole: rows of a small one cost more to set up than to paint.
bool PaintAsBlock(const PasteJob<PixelFormat8>& job) {
    if (job.region.Height() > RowsInBand(job.region.Width()) || job.mask.pixelStep != 1) return false;
    ColourBlock8 block{.target = job.target.first,
                       .targetStep = job.target.rowStep,
                       .mask = job.mask.first,
                       .maskStep = job.mask.rowStep,
                       .width = job.region.Width(),
                       .height = job.region.Height(),
                       .opacity = job.settings.opacity};
    std::memcpy(&block.pixel, job.source.first, sizeof block.pixel);
    ColourOverBlock8(block);
    return true;
}

template <typename F>
void Paste(const ColourDab& dab, const Image& target, const Rect& region, PasteBehaviour behaviour,
           const PasteSettings& settings) {
    auto job = JobOf<F>(dab, target, region);
    job.settings = settings;
    if constexpr (F::bits == 8)
        if (settings.mode == 0 && behaviour == PasteBehaviour::Over && PaintAsBlock(job)) return;
    job.plain = BrushPasterKernels<F>(settings.mode != 0, behaviour)[0];
    RunPaste(job);
}

}  // namespace

void PasteColourDab(const ColourDab& dab, const Rect& part, Image& target, PasteBehaviour behaviour, double opacity,
                    std::uint8_t mode) {
    if (!(opacity > 0.0) || !Fits(dab, target)) return;
    const Rect region = part.Intersection(target);
    if (!region.IsValid()) return;
    WithFormatOf(target, [&]<typename F>(F) {
        const PasteSettings settings{IntegerOpacity(opacity, pasteOpacityFactor<F>, F::fullScale), mode};
        if (settings.opacity != 0) Paste<F>(dab, target, region, behaviour, settings);
    });
}

void EraseColourDab(const ColourDab& dab, const Rect& part, Image& target, double opacity) {
    if (!(opacity > 0.0) || !Fits(dab, target)) return;
    const Rect region = part.Intersection(target);
    if (!region.IsValid()) return;
    WithFormatOf(target, [&]<typename F>(F) {
        using Arithmetic = EraseArithmetic<F>;
        auto job = JobOf<F>(dab, target, region);
        job.settings.opacity = IntegerOpacity(opacity, Arithmetic::opacityFactor, Arithmetic::opacityLimit);
        if (job.settings.opacity == 0) return;
        job.plain = EraserKernels<F>()[0];
        RunPaste(job);
    });
}

}  // namespace chalkpane
