#include "chalkpane/composite/eraser.h"

#include "chalkpane/composite/erase_row.h"

namespace chalkpane {

namespace {

template <typename F>
void EraseRows(const PasteRecord& record, double opacity) {
    using Channel = typename F::Channel;
    using Arithmetic = EraseArithmetic<F>;
    PasteJob<F> job;
    job.region = record.rect;
    job.target = PlaneOf<Channel>(*record.target, record.rect);
    job.mask = record.mask != nullptr ? CoveragePlaneOf<Channel>(*record.mask, record.rect) : FullCoverage<F>();
    job.settings.opacity = IntegerOpacity(opacity, Arithmetic::opacityFactor, Arithmetic::opacityLimit);
    if (job.settings.opacity == 0) return;
    job.SetClip(record.clip, record.clipInverted, EraserKernels<F>());
    RunPaste(job);
}

}  // namespace

void Eraser::Paste(const Image& source, const Image* mask, Image& target, const Rect& rect, std::int32_t /*reserved*/,
                   const Image* clip, Clip clipInverted) {
    const PasteRecord record{&source, mask,        &target, PasteRegion(rect, mask, target, clip, clipInverted),
                             clip,    clipInverted};
    if (!(opacity > 0.0) || !record.rect.IsValid()) return;
    if (target.IsMask() || !HasDepthOf(source, &target) || !HasDepthOf(source, mask) || !HasDepthOf(source, clip))
        return;
    WithFormatOf(source, [&]<typename F>(F) { EraseRows<F>(record, opacity); });
}

Eraser& SharedEraser() {
    thread_local Eraser eraser;
    return eraser;
}

}  // namespace chalkpane
