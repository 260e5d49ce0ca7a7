#include "chalkpane/composite/brush_paster.h"

#include "chalkpane/composite/brush_paster_rows.h"
#include "chalkpane/composite/src_over_row.h"

namespace chalkpane {

namespace {

// The most used paste, whole: rows of a small one cost more to set up than to paint.
bool PasteAsBlock(const PasteJob<PixelFormat8>& job) {
    if (job.region.Height() > RowsInBand(job.region.Width()) || job.mask.pixelStep != 1) return false;
    SrcOverBlock8({.target = job.target.first,
                   .targetStep = job.target.rowStep,
                   .source = job.source.first,
                   .sourceStep = job.source.rowStep,
                   .mask = job.mask.first,
                   .maskStep = job.mask.rowStep,
                   .width = job.region.Width(),
                   .height = job.region.Height(),
                   .opacity = job.settings.opacity});
    return true;
}

template <typename F>
void PasteRows(const PasteRecord& record, double opacity, std::int32_t mode, PasteBehaviour behaviour) {
    using Channel = typename F::Channel;
    PasteJob<F> job;
    job.region = record.rect;
    job.target = PlaneOf<Channel>(*record.target, record.rect);
    job.source = PlaneOf<const Channel>(*record.source, record.rect);
    job.mask = record.mask != nullptr ? CoveragePlaneOf<Channel>(*record.mask, record.rect) : FullCoverage<F>();
    job.settings = {IntegerOpacity(opacity, pasteOpacityFactor<F>, F::fullScale), mode};
    if (job.settings.opacity == 0) return;
    if constexpr (F::bits == 8)
        if (mode == 0 && behaviour == PasteBehaviour::Over && record.clip == nullptr && PasteAsBlock(job)) return;
    job.SetClip(record.clip, record.clipInverted, BrushPasterKernels<F>(mode != 0, behaviour));
    RunPaste(job);
}

bool Fits(const PasteRecord& record) {
    return !record.source->IsMask() && !record.target->IsMask() && HasDepthOf(*record.source, record.target) &&
           HasDepthOf(*record.source, record.mask) && HasDepthOf(*record.source, record.clip);
}

}  // namespace

void BrushPaster::Paste(const Image& source, const Image* mask, Image& target, PasteBehaviour over, const Rect& rect,
                        std::int32_t /*reserved*/, const Image* clip, Clip clipInverted) {
    workingOpacity = opacity;
    const Rect region = PasteRegion(rect, mask, target, clip, clipInverted).Intersection(source);
    if (!(workingOpacity > 0.0) || !region.IsValid()) return;
    record = {&source, mask, &target, region, clip, clipInverted};
    if (Fits(record)) {
        WithFormatOf(source, [&]<typename F>(F) { PasteRows<F>(record, workingOpacity, mode, over); });
    }
    record = {};
}

BrushPaster& SharedPaster() {
    thread_local BrushPaster paster;
    return paster;
}

}  // namespace chalkpane
