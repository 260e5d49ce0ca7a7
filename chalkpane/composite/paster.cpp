#include "chalkpane/composite/paster.h"

#include "chalkpane/composite/paster_rows.h"

namespace chalkpane {

namespace {

template <typename F>
std::int32_t CompositeOpacity(double opacity) {
    return IntegerOpacity(opacity, fullOpacity<F> + 0.001, fullOpacity<F>);
}

// Planes, opacity and kernels for compositing `record.source` over `record.target` in `record.rect`.
template <typename F>
PasteJob<F> CompositeJob(const PasteRecord& record, std::int32_t opacity) {
    using Channel = typename F::Channel;
    PasteJob<F> job;
    job.region = record.rect;
    job.target = PlaneOf<Channel>(*record.target, record.rect);
    job.source = PlaneOf<const Channel>(*record.source, record.rect);
    job.mask = FullCoverage<F>();
    job.settings.opacity = opacity;
    const bool fast = record.clip == nullptr && opacity == fullOpacity<F>;
    job.SetClip(record.clip, record.clipInverted, PasterKernels<F>(record.source->IsPremultiplied(), fast));
    return job;
}

template <typename F>
void CompositeRows(const PasteRecord& record, double opacity) {
    PasteJob<F> job = CompositeJob<F>(record, CompositeOpacity<F>(opacity));
    if (job.settings.opacity != 0) RunPaste(job);
}

// What `Replace` does to a row of the source.
enum class Filling : std::uint8_t { Nothing, Copy, Composite };

template <typename F>
struct ReplaceJob {
    PasteJob<F> composite;
    Plane<typename F::Channel> target;
    Rect region;  // all that is written
    Rect kept;    // the part that the source covers, which is not cleared
    Filling filling = Filling::Nothing;
};

template <typename F>
void ReplaceRow(std::int32_t row, void* userData, std::int32_t /*worker*/) {
    const auto& job = *static_cast<const ReplaceJob<F>*>(userData);
    const Rect& region = job.region;
    const Rect& kept = job.kept;
    auto* target = job.target.At(0, std::ptrdiff_t{row} - region.y0);
    const auto clear = [&](std::int64_t x0, std::int64_t end) {
        std::fill(target + 4 * (x0 - region.x0), target + 4 * (end - region.x0), typename F::Channel{0});
    };
    if (row < kept.y0 || row > kept.y1) return clear(region.x0, region.x1 + std::int64_t{1});
    clear(region.x0, kept.x0);
    clear(kept.x1 + std::int64_t{1}, region.x1 + std::int64_t{1});
    if (row < job.composite.region.y0 || row > job.composite.region.y1) return;
    if (job.filling == Filling::Composite) return PasteRow(row, job.composite);
    const PasteSpan<F> span = job.composite.Span(kept.x0, kept.x1, row);
    std::copy_n(span.source, 4 * span.count, span.target);
}

template <typename F>
void ReplaceRows(const PasteRecord& record, const Rect& region, const Rect& kept, Filling filling, double opacity) {
    ReplaceJob<F> job;
    job.target = PlaneOf<typename F::Channel>(*record.target, region);
    job.region = region;
    job.kept = kept;
    job.filling = filling;
    if (filling != Filling::Nothing)
        job.composite = CompositeJob<F>(record, IntegerOpacity(opacity, fullOpacity<F> + 0.01, fullOpacity<F>));
    RunInBands(region.y0, region.y1, region.Width(), &ReplaceRow<F>, &job);
}

bool Fits(const Image& source, const Image& target, const Image* clip) {
    return !source.IsMask() && !target.IsMask() && HasDepthOf(source, &target) && HasDepthOf(source, clip);
}

// Pixels of one channel under a value and an alpha that each move with them or stand still.
template <typename F>
struct OntoRow {
    using Channel = typename F::Channel;
    using Wide = std::int64_t;
    static constexpr int bits = F::bits;

    static Channel Limited(Wide value) { return static_cast<Channel>(std::min<Wide>(value, F::fullScale)); }

    static Channel Value(Wide d, Wide s, Wide a, Wide op) {
        if (a == F::fullScale && op == fullOpacity<F>) return static_cast<Channel>(s);
        const Wide w = (a + (a >> (bits - 1))) * op;
        return Limited((((Wide{1} << (2 * bits)) - w) * d + s * w) >> (2 * bits));
    }
    static Channel Mask(Wide d, Wide /*s*/, Wide a, Wide op) {
        if (a == F::fullScale && op == fullOpacity<F>) return static_cast<Channel>(a);
        // KEEP: full coverage wraps to 0 here, so below full opacity it adds to the target instead of covering it.
        const Wide covered = (((a >> (bits - 1)) + a) & F::fullScale) * op >> bits;
        return Limited(((fullOpacity<F> - covered) * d + a * op) >> bits);
    }
};

template <typename F, auto Combine>
void OntoRows(Image& target, const Rect& region, const Plane<const typename F::Channel>& value,
              const Plane<const typename F::Channel>& alpha, double opacity) {
    const auto plane = PlaneOf<typename F::Channel>(target, region);
    const std::int32_t op = CompositeOpacity<F>(opacity);
    const std::ptrdiff_t width = region.Width();
    for (std::ptrdiff_t y = 0; y < region.Height(); ++y) {
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            auto& d = *plane.At(x, y);
            d = Combine(d, *value.At(x, y), *alpha.At(x, y), op);
        }
    }
}

template <typename F>
void PasteOntoRows(const Image& source, Image& target, const Rect& region, double opacity) {
    using Channel = typename F::Channel;
    OntoRows<F, OntoRow<F>::Value>(target, region, PlaneOf<const Channel>(source, region, 2),
                                   PlaneOf<const Channel>(source, region, 3), opacity);
}

template <typename F>
void PasteMaskOntoRows(const Image& mask, Image& target, const Rect& region, double opacity) {
    const auto coverage = PlaneOf<const typename F::Channel>(mask, region);
    OntoRows<F, OntoRow<F>::Mask>(target, region, coverage, coverage, opacity);
}

template <typename F>
void PasteValueOntoRows(std::uint16_t value, const Image& mask, Image& target, const Rect& region, double opacity) {
    using Channel = typename F::Channel;
    const auto constant = static_cast<Channel>(value);
    OntoRows<F, OntoRow<F>::Value>(target, region, {&constant, 0, 0}, PlaneOf<const Channel>(mask, region), opacity);
}

// The region of an operation onto one channel; empty where the images do not fit or nothing is to do.
Rect OntoRegion(const Image& source, bool sourceIsMask, const Image& target, const Rect& rect, double opacity) {
    if (!(opacity > 0.0) || source.IsMask() != sourceIsMask || !target.IsMask() || !HasDepthOf(source, &target))
        return {};
    return rect.Intersection(source).Intersection(target);
}

}  // namespace

double Paster::TakeOpacity() const { return useFactor ? factor * opacity : opacity; }

void Paster::Paste(const Image& source, Image& target, const Rect& rect, std::int32_t /*reserved*/, const Image* clip,
                   Clip clipInverted) {
    workingOpacity = TakeOpacity();
    const Rect region = PasteRegion(rect, nullptr, target, clip, clipInverted).Intersection(source);
    if (!visible || !(workingOpacity > 0.0) || !region.IsValid() || !Fits(source, target, clip)) return;
    record = {&source, nullptr, &target, region, clip, clipInverted};
    WithFormatOf(source, [&]<typename F>(F) { CompositeRows<F>(record, workingOpacity); });
    record = {};
}

void Paster::PasteOnto(const Image& source, Image& target, const Rect& rect, std::int32_t /*reserved*/) {
    workingOpacity = TakeOpacity();
    const Rect region = OntoRegion(source, false, target, rect, workingOpacity);
    if (!region.IsValid()) return;
    WithFormatOf(source, [&]<typename F>(F) { PasteOntoRows<F>(source, target, region, workingOpacity); });
}

void Paster::PasteMaskOnto(const Image& mask, Image& target, const Rect& rect) {
    workingOpacity = TakeOpacity();
    const Rect region = OntoRegion(mask, true, target, rect, workingOpacity);
    if (!region.IsValid()) return;
    WithFormatOf(mask, [&]<typename F>(F) { PasteMaskOntoRows<F>(mask, target, region, workingOpacity); });
}

void Paster::PasteValueOnto(std::uint16_t value, const Image& mask, Image& target, const Rect& rect) {
    workingOpacity = TakeOpacity();
    const Rect region = OntoRegion(mask, true, target, rect, workingOpacity);
    if (!region.IsValid()) return;
    WithFormatOf(mask, [&]<typename F>(F) { PasteValueOntoRows<F>(value, mask, target, region, workingOpacity); });
}

void Paster::Replace(const Image& source, Image& target, const Rect& rect, std::int32_t /*reserved*/, const Image* clip,
                     Clip clipInverted) {
    constexpr double copyAbove = 0.99609375;  // 255 / 256
    workingOpacity = TakeOpacity();
    const Rect region = rect.Intersection(target);
    if (!region.IsValid() || !Fits(source, target, clip)) return;
    const Rect pasted = PasteRegion(region, nullptr, target, clip, clipInverted).Intersection(source);
    const bool paints = visible && workingOpacity > 0.0 && pasted.IsValid();
    Filling filling = Filling::Nothing;
    if (paints) filling = clip == nullptr && workingOpacity > copyAbove ? Filling::Copy : Filling::Composite;
    const Rect kept = paints ? region.Intersection(source) : Rect();
    record = {&source, nullptr, &target, pasted, clip, clipInverted};
    WithFormatOf(source, [&]<typename F>(F) { ReplaceRows<F>(record, region, kept, filling, workingOpacity); });
    record = {};
}

}  // namespace chalkpane
