#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/composite/paste_record.h"
#include "chalkpane/image/image_rows.h"
#include "chalkpane/image/plane.h"

namespace chalkpane {

// How every paster iterates over its rows: planes are set up once per paste, each row becomes one to three spans, and
// each span goes to a kernel that was chosen before.

// No mask: full coverage everywhere.
template <typename F>
Plane<const typename F::Channel> FullCoverage() {
    static constexpr typename F::Channel full = F::fullScale;
    return {&full, 0, 0};
}

// Neighbouring pixels of one row. Target and source have 4 channels a pixel.
template <typename F>
struct PasteSpan {
    typename F::Channel* target = nullptr;
    const typename F::Channel* source = nullptr;
    const typename F::Channel* mask = nullptr;
    const typename F::Channel* clip = nullptr;
    std::ptrdiff_t maskStep = 0;
    std::ptrdiff_t clipStep = 0;
    std::ptrdiff_t count = 0;
};

struct PasteSettings {
    std::int32_t opacity = 0;  // in the scale of the operation
    std::int32_t mode = 0;
};

template <typename F>
using SpanKernel = void (*)(const PasteSpan<F>& span, const PasteSettings& settings);

// The three uses of a clip, in the order in which the kernel tables have them.
enum class ClipUse : std::uint8_t { None, Limiting, Inverted };

template <typename F>
using SpanKernels = std::array<SpanKernel<F>, 3>;

// Opacity p under clip value c. The formula of the reduction, and full scale for the inverted clip, are the
// operation's own.
template <typename F, typename Operation, ClipUse use>
std::int32_t ClippedOpacity(std::int32_t c, std::int32_t p) {
    if constexpr (use == ClipUse::Limiting) return c < F::fullScale ? Operation::Reduce(c, p) : p;
    if constexpr (use == ClipUse::Inverted) return c != 0 ? Operation::Reduce(Operation::invertedFull - c, p) : p;
    return p;
}

// The reduction without rounding: c * p over the full scale plus one, with the top bit carried in.
template <typename F>
constexpr std::int32_t ReduceByShift(std::int32_t c, std::int32_t p) {
    const std::int32_t t = (c * p) >> F::bits;
    return t + (t >> (F::bits - 1));
}

template <typename F>
struct PasteJob {
    Rect region;  // inside the target, the source and the mask, and inside a limiting clip
    Plane<typename F::Channel> target;
    Plane<const typename F::Channel> source;
    Plane<const typename F::Channel> mask;
    Plane<const typename F::Channel> clip;
    Rect clipRect;  // region in which the clip is read; empty: nowhere
    PasteSettings settings;
    SpanKernel<F> plain = nullptr;    // where the clip is not read
    SpanKernel<F> clipped = nullptr;  // where it is

    [[nodiscard]] PasteSpan<F> Span(std::int32_t x0, std::int32_t x1, std::int32_t row) const {
        const std::ptrdiff_t x = std::ptrdiff_t{x0} - region.x0;
        const std::ptrdiff_t y = std::ptrdiff_t{row} - region.y0;
        PasteSpan<F> span{.target = target.At(x, y),
                          .source = source.At(x, y),
                          .mask = mask.At(x, y),
                          .maskStep = mask.pixelStep,
                          .count = std::ptrdiff_t{x1} - x0 + 1};
        if (clip.first != nullptr) {
            span.clip = clip.At(std::ptrdiff_t{x0} - clipRect.x0, std::ptrdiff_t{row} - clipRect.y0);
            span.clipStep = clip.pixelStep;
        }
        return span;
    }
    // An inverted clip that misses the region takes no part.
    void SetClip(const Image* image, Clip use, const SpanKernels<F>& kernels) {
        plain = kernels[0];
        clipped = kernels[use == Clip::Inverted ? 2 : 1];
        if (image == nullptr) return;
        clipRect = region.Intersection(*image);
        if (clipRect.IsValid()) clip = CoveragePlaneOf<typename F::Channel>(*image, clipRect);
    }
};

template <typename F>
void PasteRow(std::int32_t row, const PasteJob<F>& job) {
    const Rect& region = job.region;
    const Rect& clip = job.clipRect;
    if (job.clip.first == nullptr || row < clip.y0 || row > clip.y1) {
        job.plain(job.Span(region.x0, region.x1, row), job.settings);
        return;
    }
    if (region.x0 < clip.x0) job.plain(job.Span(region.x0, clip.x0 - 1, row), job.settings);
    job.clipped(job.Span(clip.x0, clip.x1, row), job.settings);
    if (clip.x1 < region.x1) job.plain(job.Span(clip.x1 + 1, region.x1, row), job.settings);
}

template <typename F>
void RunPaste(PasteJob<F>& job) {
    RunInBands(
        job.region.y0, job.region.y1, job.region.Width(),
        [](std::int32_t row, void* userData, std::int32_t) { PasteRow(row, *static_cast<PasteJob<F>*>(userData)); },
        &job);
}

}  // namespace chalkpane
