#include "chalkpane/composite/brush_paster_rows.h"

#include "chalkpane/image/unpremultiply_row.h"

#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/composite/src_over_row.h"
#include "chalkpane/composite/src_over_row14.h"

namespace chalkpane {

namespace {

template <typename F>
constexpr typename F::Channel Store(std::int32_t value) {
    return static_cast<typename F::Channel>(value);  // sums above full scale keep their low bits
}

// The arithmetic of one pixel: m is the mask, p the opacity, neither of them 0.
template <typename F>
struct NormalReplace {
    static constexpr std::int32_t invertedFull = F::fullScale;
    static constexpr std::int32_t Reduce(std::int32_t c, std::int32_t p) { return ReduceByShift<F>(c, p); }

    static void Pixel(typename F::Channel* d, const typename F::Channel* s, std::int32_t m, std::int32_t p) {
        const std::int32_t a = F::Scale(p, m);
        const std::int32_t sourceAlpha = F::Scale(s[3], a);
        const std::int32_t rest = F::fullScale - a;
        for (int c = 0; c < 3; ++c) d[c] = Store<F>(F::Scale(d[c], rest) + F::Scale(s[c], sourceAlpha));
        d[3] = Store<F>(F::Scale(d[3], rest) + sourceAlpha);
    }
};

// DIFFERS: 8 bits multiply in 16-bit fixed point, by which an opaque dab at full opacity still leaves 1/256 of what was
// there; 14 bits use the rounded product and leave nothing.
template <typename F>
struct NormalOver;

template <>
struct NormalOver<PixelFormat8> : NormalReplace<PixelFormat8> {
    static void Pixel(std::uint8_t* d, const std::uint8_t* s, std::int32_t m, std::int32_t p) {
        OverPixel8(d, s, m, p);
    }
};

template <>
struct NormalOver<PixelFormat14> : NormalReplace<PixelFormat14> {
    static void Pixel(std::uint16_t* d, const std::uint16_t* s, std::int32_t m, std::int32_t p) {
        OverPixel14(d, s, m, p);
    }
};

template <typename F, typename Operation, ClipUse use>
void NormalSpan(const PasteSpan<F>& span, const PasteSettings& settings) {
    auto* d = span.target;
    const auto* s = span.source;
    for (std::ptrdiff_t x = 0; x < span.count; ++x, d += 4, s += 4) {
        const std::int32_t m = span.mask[x * span.maskStep];
        const std::int32_t c = use == ClipUse::None ? 0 : span.clip[x * span.clipStep];
        const std::int32_t p = ClippedOpacity<F, Operation, use>(c, settings.opacity);
        if (m != 0 && p != 0) Operation::Pixel(d, s, m, p);
    }
}

void FastOverSpan8(const PasteSpan<PixelFormat8>& span, const PasteSettings& settings) {
    SrcOverRow8(span.target, span.source, span.mask, span.maskStep, span.count, settings.opacity);
}

void FastOverSpan14(const PasteSpan<PixelFormat14>& span, const PasteSettings& settings) {
    SrcOverRow14(span.target, span.source, span.mask, span.maskStep, span.count, settings.opacity);
}

// KEEP: under a blend mode the clip reduces by the rounded product, in mode 0 by the shift; both roundings are in saved
// pictures.
template <typename F>
struct Blended {
    static constexpr std::int32_t invertedFull = F::fullScale;
    static constexpr std::int32_t Reduce(std::int32_t c, std::int32_t p) { return F::Scale(c, p); }
};

template <typename F>
struct BlendedReplace : Blended<F> {
    // KEEP: no source term. Where the target is transparent the dab adds alpha but no colour of its own.
    static std::int32_t Colour(std::int32_t b, std::int32_t, std::int32_t d, std::int32_t t, std::int32_t,
                               std::int32_t rest) {
        return F::Scale(t, b) + F::Scale(rest, d);
    }
};

template <typename F>
struct BlendedOver : Blended<F> {
    static std::int32_t Colour(std::int32_t b, std::int32_t s, std::int32_t d, std::int32_t t, std::int32_t u,
                               std::int32_t rest) {
        return F::Scale(b, t) + F::Scale(s, u) + F::Scale(d, rest);
    }
};

// a is the source's alpha as it arrives.
template <typename F, typename Operation>
void BlendedPixel(typename F::Channel* d, const typename F::Channel* s, const typename F::Channel* b, std::int32_t a) {
    const std::int32_t rest = F::fullScale - a;
    const std::int32_t targetAlpha = d[3];
    if (targetAlpha == F::fullScale) {
        for (int c = 0; c < 3; ++c) d[c] = Store<F>(F::Scale(b[c], a) + F::Scale(d[c], rest));
        return;
    }
    const std::int32_t t = F::Scale(targetAlpha, a);
    const std::int32_t u = F::Scale(F::fullScale - targetAlpha, a);
    for (int c = 0; c < 3; ++c) d[c] = Store<F>(Operation::Colour(b[c], s[c], d[c], t, u, rest));
    d[3] = Store<F>(targetAlpha + a - t);
}

// The widest piece that is prepared at once: the scratch rows live on the stack.
constexpr std::ptrdiff_t scratchPixels = 1024;

template <typename F>
using ScratchRow = std::array<typename F::Channel, 4 * scratchPixels>;

// The row helpers of the two formats by one name.
template <typename F>
struct RowHelpers;
template <>
struct RowHelpers<PixelFormat8> {
    static constexpr auto MergeMask = MergeMaskRow8;
    static constexpr auto Unpremultiply = UnpremultiplyRow8;
    static constexpr auto Blend = BlendRow8;
};
template <>
struct RowHelpers<PixelFormat14> {
    static constexpr auto MergeMask = MergeMaskRow14;
    static constexpr auto Unpremultiply = UnpremultiplyRow14;
    static constexpr auto Blend = BlendRow14;
};

// Source colours with the mask as alpha, blended onto the target's colours without their alpha.
template <typename F>
std::span<const typename F::Channel> BlendScratch(const PasteSpan<F>& span, std::int32_t mode, ScratchRow<F>& merged,
                                                  ScratchRow<F>& blended) {
    using Channel = typename F::Channel;
    static constexpr auto fullRow = [] {
        std::array<Channel, scratchPixels> row{};
        row.fill(F::fullScale);
        return row;
    }();
    const auto count = static_cast<std::int32_t>(span.count);
    const auto channels = static_cast<std::size_t>(4 * span.count);
    const bool everywhere = span.maskStep == 0;
    const std::ptrdiff_t maskStep = everywhere ? 1 : span.maskStep;
    const std::span mask(everywhere ? fullRow.data() : span.mask,
                         static_cast<std::size_t>((span.count - 1) * maskStep + 1));
    const std::span mergedRow(merged.data(), channels);
    const std::span blendedRow(blended.data(), channels);
    std::ranges::fill(blendedRow, Channel{0});  // at 14 bits the next step leaves some alphas alone
    RowHelpers<F>::MergeMask(mergedRow, count, std::span(span.source, channels), mask,
                             static_cast<std::int32_t>(maskStep));
    RowHelpers<F>::Unpremultiply(count, std::span<const Channel>(span.target, channels), blendedRow);
    RowHelpers<F>::Blend(count, mode, mergedRow, blendedRow, blendedRow);
    return blendedRow;
}

template <typename F, typename Operation, ClipUse use>
void BlendedPiece(const PasteSpan<F>& span, const PasteSettings& settings) {
    ScratchRow<F> merged;
    ScratchRow<F> blended;
    const auto* b = BlendScratch(span, settings.mode, merged, blended).data();
    auto* d = span.target;
    const auto* s = span.source;
    for (std::ptrdiff_t x = 0; x < span.count; ++x, d += 4, s += 4, b += 4) {
        const std::int32_t m = span.mask[x * span.maskStep];
        const std::int32_t c = use == ClipUse::None ? 0 : span.clip[x * span.clipStep];
        const std::int32_t p = ClippedOpacity<F, Operation, use>(c, settings.opacity);
        if (m != 0 && p != 0) BlendedPixel<F, Operation>(d, s, b, F::Scale(F::Scale(p, m), s[3]));
    }
}

template <typename F, typename Operation, ClipUse use>
void BlendedSpan(const PasteSpan<F>& span, const PasteSettings& settings) {
    PasteSpan<F> piece = span;
    for (std::ptrdiff_t left = span.count; left > 0; left -= piece.count) {
        piece.count = std::min(left, scratchPixels);
        BlendedPiece<F, Operation, use>(piece, settings);
        piece.target += 4 * piece.count;
        piece.source += 4 * piece.count;
        piece.mask += piece.maskStep * piece.count;
        piece.clip += piece.clipStep * piece.count;
    }
}

template <typename F, typename Operation>
constexpr SpanKernels<F> normalKernels{&NormalSpan<F, Operation, ClipUse::None>,
                                       &NormalSpan<F, Operation, ClipUse::Limiting>,
                                       &NormalSpan<F, Operation, ClipUse::Inverted>};

template <>
constexpr SpanKernels<PixelFormat8> normalKernels<PixelFormat8, NormalOver<PixelFormat8>>{
    &FastOverSpan8, &NormalSpan<PixelFormat8, NormalOver<PixelFormat8>, ClipUse::Limiting>,
    &NormalSpan<PixelFormat8, NormalOver<PixelFormat8>, ClipUse::Inverted>};

template <>
constexpr SpanKernels<PixelFormat14> normalKernels<PixelFormat14, NormalOver<PixelFormat14>>{
    &FastOverSpan14, &NormalSpan<PixelFormat14, NormalOver<PixelFormat14>, ClipUse::Limiting>,
    &NormalSpan<PixelFormat14, NormalOver<PixelFormat14>, ClipUse::Inverted>};

template <typename F, typename Operation>
constexpr SpanKernels<F> blendedKernels{&BlendedSpan<F, Operation, ClipUse::None>,
                                        &BlendedSpan<F, Operation, ClipUse::Limiting>,
                                        &BlendedSpan<F, Operation, ClipUse::Inverted>};

}  // namespace

template <typename F>
const SpanKernels<F>& BrushPasterKernels(bool blended, PasteBehaviour behaviour) {
    if (behaviour == PasteBehaviour::Over)
        return blended ? blendedKernels<F, BlendedOver<F>> : normalKernels<F, NormalOver<F>>;
    return blended ? blendedKernels<F, BlendedReplace<F>> : normalKernels<F, NormalReplace<F>>;
}

template const SpanKernels<PixelFormat8>& BrushPasterKernels<PixelFormat8>(bool, PasteBehaviour);
template const SpanKernels<PixelFormat14>& BrushPasterKernels<PixelFormat14>(bool, PasteBehaviour);

}  // namespace chalkpane
