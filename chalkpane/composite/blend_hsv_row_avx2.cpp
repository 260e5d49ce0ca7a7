#include "chalkpane/composite/blend_hsv_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane::blend {
namespace {

// Four pixels, a channel each: 14-bit words as 32-bit integers.
struct FourWords {
    __m128i blue, green, red;
};

// Whole numbers 0 .. full scale, as doubles.
struct FourHsv {
    __m256d hue, saturation, value;
};

[[gnu::target("avx2")]] inline __m256d Lanes(__m128i mask) { return _mm256_castsi256_pd(_mm256_cvtepi32_epi64(mask)); }
[[gnu::target("avx2")]] inline __m256d Choose(__m256d condition, __m256d yes, __m256d no) {
    return _mm256_blendv_pd(no, yes, condition);
}

template <typename F>
[[gnu::target("avx2")]] inline __m256d Rounded(__m256d fraction) {
    const __m256d scaled = _mm256_mul_pd(fraction, _mm256_set1_pd(F::fullScale));
    return _mm256_round_pd(_mm256_add_pd(scaled, _mm256_set1_pd(0.5)), _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
}

// Red divides by 6 and then by delta, the others by delta and, behind the sum, by 6.
[[gnu::target("avx2")]] inline __m256d HueFraction(const FourWords& words, __m128i largest, __m256d delta) {
    const __m256d red = _mm256_cvtepi32_pd(words.red);
    const __m256d green = _mm256_cvtepi32_pd(words.green);
    const __m256d blue = _mm256_cvtepi32_pd(words.blue);
    const __m256d isRed = Lanes(_mm_cmpeq_epi32(words.red, largest));
    const __m256d isGreen = Lanes(_mm_cmpeq_epi32(words.green, largest));
    const __m256d six = _mm256_set1_pd(6.0);
    const __m256d spread =
        Choose(isRed, _mm256_sub_pd(green, blue), Choose(isGreen, _mm256_sub_pd(blue, red), _mm256_sub_pd(red, green)));
    const __m256d start = Choose(isRed, _mm256_setzero_pd(), Choose(isGreen, _mm256_set1_pd(2.0), _mm256_set1_pd(4.0)));
    const __m256d divided = _mm256_div_pd(spread, Choose(isRed, six, delta));
    const __m256d hue = _mm256_div_pd(_mm256_add_pd(divided, start), Choose(isRed, delta, six));
    const __m256d negative = _mm256_cmp_pd(hue, _mm256_setzero_pd(), _CMP_LT_OQ);
    return _mm256_add_pd(hue, _mm256_and_pd(negative, _mm256_set1_pd(1.0)));
}

template <typename F>
[[gnu::target("avx2"), gnu::always_inline]] inline FourHsv ToHsv(const FourWords& words) {
    constexpr int valueShift = 14 - F::bits;
    const __m128i largest = _mm_max_epi32(_mm_max_epi32(words.red, words.green), words.blue);
    const __m128i smallest = _mm_min_epi32(_mm_min_epi32(words.red, words.green), words.blue);
    const __m128i delta = _mm_sub_epi32(largest, smallest);
    const __m128i value = _mm_srli_epi32(largest, valueShift);
    const __m128i one = _mm_set1_epi32(1);
    const __m256d dark = Lanes(_mm_cmpeq_epi32(value, _mm_setzero_si128()));
    const __m256d grey = _mm256_or_pd(dark, Lanes(_mm_cmpeq_epi32(delta, _mm_setzero_si128())));
    const __m256d hue = Rounded<F>(HueFraction(words, largest, _mm256_cvtepi32_pd(_mm_max_epi32(delta, one))));
    const __m256d saturation =
        Rounded<F>(_mm256_div_pd(_mm256_cvtepi32_pd(delta), _mm256_cvtepi32_pd(_mm_max_epi32(largest, one))));
    return {_mm256_andnot_pd(grey, hue), _mm256_andnot_pd(dark, saturation), _mm256_cvtepi32_pd(value)};
}

[[gnu::target("avx2")]] inline __m128i Word(__m256d component) {
    const __m256d scaled = _mm256_mul_pd(component, _mm256_set1_pd(16383.0));
    return _mm256_cvttpd_epi32(_mm256_add_pd(scaled, _mm256_set1_pd(0.5)));
}
[[gnu::target("avx2")]] inline __m128i Either(__m128i first, __m128i second) { return _mm_or_si128(first, second); }
[[gnu::target("avx2")]] inline __m128i Choose(__m128i condition, __m128i yes, __m128i no) {
    return _mm_blendv_epi8(no, yes, condition);
}

template <typename F>
[[gnu::target("avx2")]] inline FourWords FromHsv(const FourHsv& colour) {
    const __m256d full = _mm256_set1_pd(F::fullScale);
    const __m256d one = _mm256_set1_pd(1.0);
    const __m256d position = _mm256_mul_pd(_mm256_div_pd(colour.hue, full), _mm256_set1_pd(6.0));
    const __m256d floor = _mm256_floor_pd(position);
    const __m256d f = _mm256_sub_pd(position, floor);
    const __m256d s = _mm256_div_pd(colour.saturation, full);
    const __m256d value = _mm256_div_pd(colour.value, full);
    const __m128i v = Word(value);
    const __m128i p = Word(_mm256_mul_pd(value, _mm256_sub_pd(one, s)));
    const __m128i q = Word(_mm256_mul_pd(value, _mm256_sub_pd(one, _mm256_mul_pd(s, f))));
    const __m128i t = Word(_mm256_mul_pd(value, _mm256_sub_pd(one, _mm256_mul_pd(s, _mm256_sub_pd(one, f)))));
    const __m128i sextant = _mm256_cvttpd_epi32(floor);
    const __m128i is0 = _mm_cmpeq_epi32(sextant, _mm_setzero_si128());
    const __m128i is1 = _mm_cmpeq_epi32(sextant, _mm_set1_epi32(1));
    const __m128i is2 = _mm_cmpeq_epi32(sextant, _mm_set1_epi32(2));
    const __m128i is3 = _mm_cmpeq_epi32(sextant, _mm_set1_epi32(3));
    const __m128i is4 = _mm_cmpeq_epi32(sextant, _mm_set1_epi32(4));
    const __m128i is5 = _mm_cmpeq_epi32(sextant, _mm_set1_epi32(5));
    // KEEP: the largest hue of all has a sextant of its own, 6, where all three are v.
    return {Choose(Either(is0, is1), p, Choose(is2, t, Choose(is5, q, v))),
            Choose(Either(is4, is5), p, Choose(is0, t, Choose(is3, q, v))),
            Choose(Either(is2, is3), p, Choose(is4, t, Choose(is1, q, v)))};
}

template <typename F, HsvMode mode>
[[gnu::target("avx2")]] inline FourWords Blended(const FourWords& source, const FourWords& destination) {
    const FourHsv above = ToHsv<F>(source);
    const FourHsv below = ToHsv<F>(destination);
    if constexpr (mode == HsvMode::Hue) return FromHsv<F>({above.hue, below.saturation, below.value});
    if constexpr (mode == HsvMode::Saturation) return FromHsv<F>({below.hue, above.saturation, below.value});
    if constexpr (mode == HsvMode::Value) return FromHsv<F>({below.hue, below.saturation, above.value});
    return FromHsv<F>({above.hue, above.saturation, below.value});
}

[[gnu::target("avx2")]] inline __m128i Widened(__m128i pixels, int shift) {
    const __m128i byte = _mm_and_si128(_mm_srli_epi32(pixels, shift), _mm_set1_epi32(255));
    return _mm_add_epi32(_mm_slli_epi32(byte, 6), _mm_srli_epi32(byte, 2));
}
[[gnu::target("avx2")]] inline __m128i LoadPixels(const void* at) {
    return _mm_loadu_si128(static_cast<const __m128i*>(at));
}
[[gnu::target("avx2")]] inline FourWords WordsOf(__m128i pixels) {
    return {Widened(pixels, 0), Widened(pixels, 8), Widened(pixels, 16)};
}

template <HsvMode mode>
[[gnu::target("avx2")]] inline void BlendFour(const std::uint8_t* source, const std::uint8_t* destination,
                                              std::uint8_t* output) {
    const __m128i above = LoadPixels(source);
    const FourWords words = Blended<PixelFormat8, mode>(WordsOf(above), WordsOf(LoadPixels(destination)));
    const __m128i alpha = _mm_and_si128(above, _mm_set1_epi32(static_cast<std::int32_t>(0xff000000u)));
    const __m128i green = _mm_slli_epi32(_mm_srli_epi32(words.green, 6), 8);
    const __m128i red = _mm_slli_epi32(_mm_srli_epi32(words.red, 6), 16);
    const __m128i pixels = Either(Either(_mm_srli_epi32(words.blue, 6), green), Either(red, alpha));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(output), pixels);
}

// Blue and green of four 14-bit pixels, and red and alpha of the same.
struct Pairs {
    __m128i low, high;
};
[[gnu::target("avx2")]] inline Pairs LoadPairs(const std::uint16_t* pixels) {
    const __m128 first = _mm_castsi128_ps(LoadPixels(pixels));
    const __m128 second = _mm_castsi128_ps(LoadPixels(pixels + 8));
    return {_mm_castps_si128(_mm_shuffle_ps(first, second, 0x88)),
            _mm_castps_si128(_mm_shuffle_ps(first, second, 0xdd))};
}
[[gnu::target("avx2")]] inline FourWords WordsOf(const Pairs& pairs) {
    const __m128i lower = _mm_set1_epi32(0xffff);
    return {_mm_and_si128(pairs.low, lower), _mm_srli_epi32(pairs.low, 16), _mm_and_si128(pairs.high, lower)};
}

template <HsvMode mode>
[[gnu::target("avx2")]] inline void BlendFour(const std::uint16_t* source, const std::uint16_t* destination,
                                              std::uint16_t* output) {
    const Pairs above = LoadPairs(source);
    const FourWords words = Blended<PixelFormat14, mode>(WordsOf(above), WordsOf(LoadPairs(destination)));
    const __m128i lower = _mm_set1_epi32(0xffff);
    const __m128i low = Either(_mm_and_si128(words.blue, lower), _mm_slli_epi32(words.green, 16));
    const __m128i high = Either(_mm_and_si128(words.red, lower), _mm_andnot_si128(lower, above.high));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(output), _mm_unpacklo_epi32(low, high));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(output + 8), _mm_unpackhi_epi32(low, high));
}

template <HsvMode mode, typename Channel>
[[gnu::target("avx2"), gnu::flatten]] std::int32_t BlendFours(const Channel* source, const Channel* destination,
                                                              Channel* output, std::int32_t count) {
    std::int32_t done = 0;
    for (; done + 4 <= count; done += 4, source += 16, destination += 16, output += 16)
        BlendFour<mode>(source, destination, output);
    return done;
}

template <typename Channel>
std::int32_t BlendByMode(HsvMode mode, const Channel* source, const Channel* destination, Channel* output,
                         std::int32_t count) {
    switch (mode) {
        case HsvMode::Hue:
            return BlendFours<HsvMode::Hue>(source, destination, output, count);
        case HsvMode::Saturation:
            return BlendFours<HsvMode::Saturation>(source, destination, output, count);
        case HsvMode::Value:
            return BlendFours<HsvMode::Value>(source, destination, output, count);
        default:
            return BlendFours<HsvMode::HueAndSaturation>(source, destination, output, count);
    }
}

}  // namespace

std::int32_t BlendHsvRowAvx2(HsvMode mode, const std::uint8_t* source, const std::uint8_t* destination,
                             std::uint8_t* output, std::int32_t count) {
    return BlendByMode(mode, source, destination, output, count);
}
std::int32_t BlendHsvRowAvx2(HsvMode mode, const std::uint16_t* source, const std::uint16_t* destination,
                             std::uint16_t* output, std::int32_t count) {
    return BlendByMode(mode, source, destination, output, count);
}

}  // namespace chalkpane::blend

#endif
