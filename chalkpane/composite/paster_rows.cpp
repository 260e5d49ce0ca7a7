#include "chalkpane/composite/paster_rows.h"

#include <type_traits>

namespace chalkpane {

namespace {

// Products of two opacities and a channel: 24 bits at 8, 42 bits at 14.
template <typename F>
using Wide = std::conditional_t<F::bits == 8, std::int32_t, std::int64_t>;

template <typename F>
constexpr typename F::Channel Store(Wide<F> value) {
    return static_cast<typename F::Channel>(value);  // sums above full scale keep their low bits
}

template <typename F>
struct Compositing {
    static constexpr std::int32_t invertedFull = F::fullScale;
    static constexpr std::int32_t Reduce(std::int32_t c, std::int32_t p) { return ReduceByShift<F>(c, p); }
    static constexpr Wide<F> one = Wide<F>{1} << (2 * F::bits);
};

template <typename F>
struct Premultiplied : Compositing<F> {
    static void Pixel(typename F::Channel* d, const typename F::Channel* s, Wide<F> p) {
        const Wide<F> alpha = s[3] + (s[3] >> (F::bits - 1));
        const Wide<F> k = (Compositing<F>::one - alpha * p) >> F::bits;
        for (int c = 0; c < 4; ++c) d[c] = Store<F>((s[c] * p + d[c] * k) >> F::bits);
    }
};

template <typename F>
struct Straight : Compositing<F> {
    static void Pixel(typename F::Channel* d, const typename F::Channel* s, Wide<F> p) {
        const Wide<F> w = (s[3] + (s[3] >> (F::bits - 1))) * p;
        const Wide<F> v = Compositing<F>::one - w;
        for (int c = 0; c < 3; ++c) d[c] = Store<F>((s[c] * w + d[c] * v) >> (2 * F::bits));
        d[3] = Store<F>((d[3] * v + w * F::fullScale) >> (2 * F::bits));
    }
};

template <typename F, typename Operation, ClipUse use>
void CompositeSpan(const PasteSpan<F>& span, const PasteSettings& settings) {
    auto* d = span.target;
    const auto* s = span.source;
    for (std::ptrdiff_t x = 0; x < span.count; ++x, d += 4, s += 4) {
        const std::int32_t c = use == ClipUse::None ? 0 : span.clip[x * span.clipStep];
        const std::int32_t p = ClippedOpacity<F, Operation, use>(c, settings.opacity);
        if (p == 0 || s[3] == 0) continue;
        if (s[3] == F::fullScale && p == fullOpacity<F>)
            std::copy_n(s, 4, d);
        else
            Operation::Pixel(d, s, p);
    }
}

// KEEP: at full opacity the factor is 256 - (a >> 7) - a and the source is added whole, a step apart from what the
// general form gives.
template <typename F>
void LayFullSpan(const PasteSpan<F>& span, const PasteSettings&) {
    auto* d = span.target;
    const auto* s = span.source;
    for (std::ptrdiff_t x = 0; x < span.count; ++x, d += 4, s += 4) {
        const std::int32_t alpha = s[3];
        if (alpha == 0) continue;
        if (alpha >= F::fullScale) {
            std::copy_n(s, 4, d);
            continue;
        }
        const std::int32_t k = fullOpacity<F> - (alpha >> (F::bits - 1)) - alpha;
        for (int c = 0; c < 4; ++c) d[c] = Store<F>(((d[c] * k) >> F::bits) + s[c]);
    }
}

template <typename F, typename Operation>
constexpr SpanKernels<F> compositeKernels{&CompositeSpan<F, Operation, ClipUse::None>,
                                          &CompositeSpan<F, Operation, ClipUse::Limiting>,
                                          &CompositeSpan<F, Operation, ClipUse::Inverted>};

}  // namespace

template <typename F>
SpanKernels<F> PasterKernels(bool premultiplied, bool atFullOpacity) {
    if (!premultiplied) return compositeKernels<F, Straight<F>>;
    SpanKernels<F> kernels = compositeKernels<F, Premultiplied<F>>;
    if (atFullOpacity) kernels[0] = &LayFullSpan<F>;
    return kernels;
}

template SpanKernels<PixelFormat8> PasterKernels<PixelFormat8>(bool, bool);
template SpanKernels<PixelFormat14> PasterKernels<PixelFormat14>(bool, bool);

}  // namespace chalkpane
