#include "chalkpane/composite/src_over_row.h"

#if defined(__x86_64__)

#include "chalkpane/base/avx512_intrinsics.h"

namespace chalkpane {

namespace {

constexpr std::ptrdiff_t lanes = 16;  // pixels of a register

// The first lanes, 1 .. 16 of them.
constexpr __mmask16 FirstLanes(std::ptrdiff_t count) { return static_cast<__mmask16>((1U << count) - 1U); }

// A source in the form in which it is mixed: blue and red, green and alpha, in 16 bits each. Alpha's source is 255.
struct SplitSixteen {
    __m512i even;
    __m512i odd;
};
[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] inline SplitSixteen SplitWide(__m512i pixels) {
    return {_mm512_and_si512(pixels, _mm512_set1_epi16(0xff)), _mm512_srli_epi16(pixels, 8)};
}

// (s * w + d * (65536 - w)) >> 16 is d plus the high half of (s - d) * w. The hardware's high half takes w as signed,
// which from 32768 up is 65536 too low: there it is s plus that.
[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] inline __m512i MixWide(__m512i source, __m512i target, __m512i w,
                                                                       __mmask32 isLarge) {
    const __m512i product = _mm512_mulhi_epi16(_mm512_sub_epi16(source, target), w);
    return _mm512_add_epi16(_mm512_mask_blend_epi16(isLarge, target, source), product);
}
[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] inline __m512i MixSixteen(__m512i target, const SplitSixteen& source,
                                                                          __m512i w) {
    const __mmask32 isLarge = _mm512_movepi16_mask(w);
    const SplitSixteen d = SplitWide(target);
    const __m512i even = MixWide(source.even, d.even, w, isLarge);
    const __m512i odd = MixWide(source.odd, d.odd, w, isLarge);
    // Each low byte goes where the high one is.
    const __m512i up = _mm512_set4_epi32(0x0e800c80, 0x0a800880, 0x06800480, 0x02800080);
    return _mm512_mask_shuffle_epi8(even, 0xaaaaaaaaaaaaaaaaU, odd, up);
}

// The mask values of 16 pixels, raised to 0 .. 256, in both halves of their 32 bits.
[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] inline __m512i WideMask(__m128i mask) {
    const __m512i fourTimes = _mm512_set_epi32(0x0f0f0f0f, 0x0e0e0e0e, 0x0d0d0d0d, 0x0c0c0c0c, 0x0b0b0b0b, 0x0a0a0a0a,
                                               0x09090909, 0x08080808, 0x07070707, 0x06060606, 0x05050505, 0x04040404,
                                               0x03030303, 0x02020202, 0x01010101, 0x00000000);
    const __m512i m = _mm512_maskz_permutexvar_epi8(0x5555555555555555U, fourTimes, _mm512_castsi128_si512(mask));
    return _mm512_add_epi16(m, _mm512_srli_epi16(m, 7));
}

// Rows of pixels of any alpha.
struct PixelRows {
    const std::uint8_t* first;
    std::ptrdiff_t step;

    [[nodiscard, gnu::target("avx512bw,avx512vl,avx512vbmi")]] __m512i Over(__m512i target, std::ptrdiff_t x,
                                                                            std::ptrdiff_t y, __mmask16 which,
                                                                            __m512i mask, __m512i opacity) const {
        const __m512i opaque = _mm512_set1_epi32(static_cast<int>(0xff000000U));
        const __m512i source = _mm512_maskz_loadu_epi32(which, first + y * step + 4 * x);
        if (_mm512_mask_cmplt_epu32_mask(which, source, opaque) == 0)
            return MixSixteen(target, SplitWide(source), _mm512_mullo_epi16(mask, opacity));
        // 128 times the one and twice the other, so that the high half of their product is what is wanted.
        const __m512i alpha = _mm512_shuffle_epi8(
            source, _mm512_set4_epi32(static_cast<int>(0x800f800fU), static_cast<int>(0x800b800bU),
                                      static_cast<int>(0x80078007U), static_cast<int>(0x80038003U)));
        const __m512i twice = _mm512_slli_epi16(_mm512_add_epi16(alpha, _mm512_srli_epi16(alpha, 7)), 1);
        const __m512i coverage = _mm512_mulhi_epu16(_mm512_slli_epi16(mask, 7), twice);
        const __m512i w = _mm512_mullo_epi16(coverage, opacity);
        return MixSixteen(target, SplitWide(_mm512_or_si512(source, opaque)), w);
    }
};

// One opaque colour everywhere.
struct WideColour {
    SplitSixteen colour;

    [[nodiscard, gnu::target("avx512bw,avx512vl,avx512vbmi")]] __m512i Over(__m512i target, std::ptrdiff_t /*x*/,
                                                                            std::ptrdiff_t /*y*/, __mmask16 /*which*/,
                                                                            __m512i mask, __m512i opacity) const {
        return MixSixteen(target, colour, _mm512_mullo_epi16(mask, opacity));
    }
};

// Every row in whole registers but its end, which is masked. Pixels without coverage are passed over in sixteens.
template <typename Block, typename Source>
[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] void OverBlock(const Block& block, const Source& source) {
    const __m512i opacity = _mm512_set1_epi16(static_cast<short>(block.opacity));
    const std::ptrdiff_t whole = (block.width - 1) / lanes * lanes;
    const __mmask16 end = FirstLanes(block.width - whole);
    for (std::ptrdiff_t y = 0; y < block.height; ++y) {
        std::uint8_t* const target = block.target + y * block.targetStep;
        const std::uint8_t* const mask = block.mask + y * block.maskStep;
        for (std::ptrdiff_t x = 0; x < whole; x += lanes) {
            const __m128i m = _mm_loadu_si128(reinterpret_cast<const __m128i*>(mask + x));
            if (_mm_testz_si128(m, m) != 0) continue;
            const __m512i d = _mm512_loadu_si512(target + 4 * x);
            _mm512_storeu_si512(target + 4 * x, source.Over(d, x, y, 0xffff, WideMask(m), opacity));
        }
        const __m128i m = _mm_maskz_loadu_epi8(end, mask + whole);
        const __m512i d = _mm512_maskz_loadu_epi32(end, target + 4 * whole);
        _mm512_mask_storeu_epi32(target + 4 * whole, end, source.Over(d, whole, y, end, WideMask(m), opacity));
    }
}

}  // namespace

[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] void SrcOverBlock8Avx512(const PixelBlock8& block) {
    if (block.width > 0) OverBlock(block, PixelRows{block.source, block.sourceStep});
}

[[gnu::target("avx512bw,avx512vl,avx512vbmi")]] void ColourOverBlock8Avx512(const ColourBlock8& block) {
    const __m512i pixel = _mm512_set1_epi32(static_cast<int>(block.pixel));
    OverBlock(block, WideColour{SplitWide(pixel)});
}

}  // namespace chalkpane

#endif
