#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/paste_span.h"

namespace chalkpane {

namespace {

// How coverage and opacity make a factor of 16 bits, 65536 being full.
template <typename F>
struct MaskFactor;
template <>
struct MaskFactor<PixelFormat8> {
    static constexpr double opacityFactor = 256.01;
    static constexpr std::int32_t opacityLimit = 256;
    static constexpr double coverageFactor = 1.003921627998352;
};
template <>
struct MaskFactor<PixelFormat14> {
    static constexpr double opacityFactor = 16384.01;
    static constexpr std::int32_t opacityLimit = 16384;
    static constexpr double coverageFactor = 0.00024415552616119385;
};

// What goes into a mask: a value that moves with the pixels or stands still, and how much of it.
template <typename F>
struct MaskSource {
    Plane<const typename F::Channel> value;
    Plane<const typename F::Channel> alpha;
};

template <typename F>
void PasteMaskRows(const PasteRecord& record, const MaskSource<F>& source, double opacity) {
    using Channel = typename F::Channel;
    using Factor = MaskFactor<F>;
    const Rect& region = record.rect;
    const auto target = PlaneOf<Channel>(*record.target, region);
    const auto mask = record.mask != nullptr ? CoveragePlaneOf<Channel>(*record.mask, region) : FullCoverage<F>();
    const std::int32_t op = IntegerOpacity(opacity, Factor::opacityFactor, Factor::opacityLimit);
    const std::ptrdiff_t width = region.Width();
    for (std::ptrdiff_t y = 0; y < region.Height(); ++y) {
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            const std::int32_t m = *mask.At(x, y);
            if (m == 0) continue;
            // 64 bits keep words beyond full scale from overflowing.
            const auto f = static_cast<std::int64_t>(double(m) * op * Factor::coverageFactor);
            const std::int64_t alpha = *source.alpha.At(x, y);
            const std::int64_t v = ((alpha + (alpha >> (F::bits - 1))) * f) >> F::bits;
            Channel& t = *target.At(x, y);
            t = static_cast<Channel>((v * *source.value.At(x, y) + (65536 - f) * t + 32768) >> 16);
        }
    }
}

template <typename F>
void PasteToMaskOf(const PasteRecord& record, const std::uint16_t* value, double opacity) {
    using Channel = typename F::Channel;
    const auto constant = static_cast<Channel>(value != nullptr ? *value : 0);
    const std::ptrdiff_t red = record.source->IsMask() ? 0 : 2;
    MaskSource<F> source{PlaneOf<const Channel>(*record.source, record.rect, red),
                         CoveragePlaneOf<Channel>(*record.source, record.rect)};
    if (value != nullptr) source.value = {&constant, 0, 0};
    PasteMaskRows<F>(record, source, opacity);
}

// value: null stands for the source's red channel.
void PasteToMaskAtDepth(const PasteRecord& record, const std::uint16_t* value, double opacity) {
    const Image& source = *record.source;
    if (!(opacity > 0.0) || !record.rect.IsValid()) return;
    if (!record.target->IsMask() || !HasDepthOf(source, record.target) || !HasDepthOf(source, record.mask)) return;
    WithFormatOf(source, [&]<typename F>(F) { PasteToMaskOf<F>(record, value, opacity); });
}

}  // namespace

void BrushPaster::PasteToMask(const Image& source, const Image* mask, Image& target, const Rect& rect) {
    workingOpacity = opacity;
    PasteToMaskAtDepth({.source = &source,
                        .mask = mask,
                        .target = &target,
                        .rect = PasteRegion(rect, mask, target).Intersection(source)},
                       nullptr, workingOpacity);
}

void BrushPaster::PasteValueToMask(const Image& source, const Image* mask, Image& target, const Rect& rect,
                                   std::uint16_t value) {
    workingOpacity = opacity;
    PasteToMaskAtDepth({.source = &source,
                        .mask = mask,
                        .target = &target,
                        .rect = PasteRegion(rect, mask, target).Intersection(source)},
                       &value, workingOpacity);
}

}  // namespace chalkpane
