#include "chalkpane/composite/erase_row.h"

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

namespace {

template <typename F>
struct Erase : EraseArithmetic<F> {
    static constexpr std::int32_t Reduce(std::int32_t c, std::int32_t p) { return ReduceByShift<F>(c, p); }

    static void Pixel(typename F::Channel* d, std::int32_t m, std::int32_t p) {
        const double f = EraseFactor<F>(m, p);
        for (int c = 0; c < 4; ++c) d[c] = static_cast<typename F::Channel>(static_cast<std::int32_t>(f * d[c] + 0.5));
    }
};

template <typename F, ClipUse use>
void EraseSpan(const PasteSpan<F>& span, const PasteSettings& settings) {
    auto* d = span.target;
    for (std::ptrdiff_t x = 0; x < span.count; ++x, d += 4) {
        const std::int32_t m = span.mask[x * span.maskStep];
        const std::int32_t c = use == ClipUse::None ? 0 : span.clip[x * span.clipStep];
        if (m != 0) Erase<F>::Pixel(d, m, ClippedOpacity<F, Erase<F>, use>(c, settings.opacity));
    }
}

void FastEraseSpan8(const PasteSpan<PixelFormat8>& span, const PasteSettings& settings) {
    if constexpr (builtWithAvx2)
        if (span.maskStep == 1 && HasAvx2()) return EraseRow8Avx2(span.target, span.mask, span.count, settings.opacity);
    EraseSpan<PixelFormat8, ClipUse::None>(span, settings);
}

template <typename F>
constexpr SpanKernels<F> kernels{&EraseSpan<F, ClipUse::None>, &EraseSpan<F, ClipUse::Limiting>,
                                 &EraseSpan<F, ClipUse::Inverted>};
template <>
constexpr SpanKernels<PixelFormat8> kernels<PixelFormat8>{&FastEraseSpan8, &EraseSpan<PixelFormat8, ClipUse::Limiting>,
                                                          &EraseSpan<PixelFormat8, ClipUse::Inverted>};

}  // namespace

template <typename F>
const SpanKernels<F>& EraserKernels() {
    return kernels<F>;
}

template const SpanKernels<PixelFormat8>& EraserKernels<PixelFormat8>();
template const SpanKernels<PixelFormat14>& EraserKernels<PixelFormat14>();

void EraseRow8Plain(std::uint8_t* target, const std::uint8_t* mask, std::ptrdiff_t maskStep, std::ptrdiff_t count,
                    std::int32_t opacity) {
    EraseSpan<PixelFormat8, ClipUse::None>({.target = target, .mask = mask, .maskStep = maskStep, .count = count},
                                           {.opacity = opacity});
}

}  // namespace chalkpane
