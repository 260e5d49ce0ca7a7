#include "chalkpane/filters/colour/hue_rows.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace chalkpane {
namespace {

// Does step by step what RgbToHsv, WrapHue and HsvToRgb do, for eight pixels at once. GCC does not
// vectorise them by itself: it takes their selections for branches.
struct Eight {
    __m256i blue, green, red;  // words
};

[[gnu::target("avx2")]] inline __m256 Times(__m256 a, float b) { return _mm256_mul_ps(a, _mm256_set1_ps(b)); }
[[gnu::target("avx2")]] inline __m256 Plus(__m256 a, float b) { return _mm256_add_ps(a, _mm256_set1_ps(b)); }
[[gnu::target("avx2")]] inline __m256 Choose(__m256 condition, __m256 yes, __m256 no) {
    return _mm256_blendv_ps(no, yes, condition);
}
[[gnu::target("avx2")]] inline __m256 Is(__m256 a, float b) { return _mm256_cmp_ps(a, _mm256_set1_ps(b), _CMP_EQ_OQ); }
[[gnu::target("avx2")]] inline __m256 Unit(__m256i word) { return Times(_mm256_cvtepi32_ps(word), 6.103888e-05F); }
[[gnu::target("avx2")]] inline __m256i Word(__m256 unit) {
    return _mm256_cvttps_epi32(Plus(Times(unit, 16383.0F), 0.5F));
}

[[gnu::target("avx2")]] inline Eight RotatedEight(const Eight& words, float turn, __m256 more) {
    const __m256 zero = _mm256_setzero_ps();
    const __m256 one = _mm256_set1_ps(1.0F);
    const __m256 red = Unit(words.red);
    const __m256 green = Unit(words.green);
    const __m256 blue = Unit(words.blue);
    const __m256 value = _mm256_max_ps(_mm256_max_ps(red, green), blue);
    const __m256 delta = _mm256_sub_ps(value, _mm256_min_ps(_mm256_min_ps(red, green), blue));
    const __m256 grey = Is(delta, 0.0F);
    const __m256 k = _mm256_div_ps(one, Choose(grey, one, delta));
    const __m256 fromRed = _mm256_mul_ps(Times(_mm256_sub_ps(green, blue), 0.16666667F), k);
    const __m256 fromGreen = Times(Plus(_mm256_mul_ps(_mm256_sub_ps(blue, red), k), 2.0F), 0.16666667F);
    const __m256 fromBlue = Times(Plus(_mm256_mul_ps(_mm256_sub_ps(red, green), k), 4.0F), 0.16666667F);
    const __m256 redHue = Choose(_mm256_cmp_ps(fromRed, zero, _CMP_LT_OQ), Plus(fromRed, 1.0F), fromRed);
    const __m256 coloured = Choose(_mm256_cmp_ps(value, red, _CMP_EQ_OQ), redHue,
                                   Choose(_mm256_cmp_ps(value, green, _CMP_EQ_OQ), fromGreen, fromBlue));
    const __m256 saturation = Choose(grey, zero, _mm256_div_ps(delta, value));
    const __m256 hue = _mm256_add_ps(Plus(Choose(grey, zero, coloured), turn), more);

    const __m256 fraction = _mm256_sub_ps(hue, _mm256_floor_ps(hue));
    const __m256 wrapped = Choose(_mm256_cmp_ps(fraction, zero, _CMP_GE_OQ), fraction, zero);
    const __m256 position = Times(wrapped, 6.0F);
    const __m256 floor = _mm256_cvtepi32_ps(_mm256_cvttps_epi32(position));
    const __m256 f = _mm256_sub_ps(position, floor);
    const __m256 sextant = Choose(_mm256_cmp_ps(floor, _mm256_set1_ps(6.0F), _CMP_GE_OQ), zero, floor);
    const auto part = [&](__m256 share) __attribute__((target("avx2"))) {
        return _mm256_mul_ps(_mm256_sub_ps(one, _mm256_mul_ps(share, saturation)), value);
    };
    const __m256 p = part(one);
    const __m256 q = part(f);
    const __m256 t = part(_mm256_sub_ps(one, f));
    const __m256 is1 = Is(sextant, 1.0F);
    const __m256 is2 = Is(sextant, 2.0F);
    const __m256 is3 = Is(sextant, 3.0F);
    const __m256 is4 = Is(sextant, 4.0F);
    const __m256 is5 = Is(sextant, 5.0F);
    const __m256 is0 = Is(sextant, 0.0F);
    return {Word(Choose(is2, t, Choose(is5, q, Choose(_mm256_or_ps(is0, is1), p, value)))),
            Word(Choose(is0, t, Choose(is3, q, Choose(_mm256_or_ps(is4, is5), p, value)))),
            Word(Choose(is1, q, Choose(is4, t, Choose(_mm256_or_ps(is2, is3), p, value))))};
}

// Rotates by table, for words in the order in which they stand in the lanes.
[[gnu::target("avx2")]] inline __m256 MoreByValue(const Eight& words, std::int32_t fullScale, const float* byValue) {
    if (byValue == nullptr) return _mm256_setzero_ps();
    const __m256 value = Unit(_mm256_max_epi32(_mm256_max_epi32(words.red, words.green), words.blue));
    const __m256i index = _mm256_cvttps_epi32(Times(value, static_cast<float>(fullScale)));
    return _mm256_i32gather_ps(byValue, _mm256_min_epi32(index, _mm256_set1_epi32(fullScale)), 4);
}

[[gnu::target("avx2")]] inline __m256i WideByte(__m256i pixels, int shift) {
    const __m256i byte = _mm256_and_si256(_mm256_srli_epi32(pixels, shift), _mm256_set1_epi32(255));
    return _mm256_add_epi32(_mm256_slli_epi32(byte, 6), _mm256_srli_epi32(byte, 2));
}

}  // namespace

[[gnu::target("avx2")]] std::size_t TurnHuesAvx2(std::span<std::uint8_t> pixels, float turn, const float* byValue) {
    const __m256i alphas = _mm256_set1_epi32(static_cast<std::int32_t>(0xff000000u));
    std::size_t i = 0;
    for (; i + 32 <= pixels.size(); i += 32) {
        auto* const at = reinterpret_cast<__m256i*>(pixels.data() + i);
        const __m256i loaded = _mm256_loadu_si256(at);
        const Eight words{WideByte(loaded, 0), WideByte(loaded, 8), WideByte(loaded, 16)};
        const Eight rotated = RotatedEight(words, turn, MoreByValue(words, 255, byValue));
        const __m256i blue = _mm256_srli_epi32(rotated.blue, 6);
        const __m256i green = _mm256_slli_epi32(_mm256_srli_epi32(rotated.green, 6), 8);
        const __m256i red = _mm256_slli_epi32(_mm256_srli_epi32(rotated.red, 6), 16);
        const __m256i kept = _mm256_and_si256(loaded, alphas);
        _mm256_storeu_si256(at, _mm256_or_si256(_mm256_or_si256(blue, green), _mm256_or_si256(red, kept)));
    }
    return i;
}

[[gnu::target("avx2")]] std::size_t TurnHuesAvx2(std::span<std::uint16_t> pixels, float turn, const float* byValue) {
    const __m256i lower = _mm256_set1_epi32(0xffff);
    std::size_t i = 0;
    for (; i + 32 <= pixels.size(); i += 32) {
        auto* const at = reinterpret_cast<__m256i*>(pixels.data() + i);
        const __m256 first = _mm256_castsi256_ps(_mm256_loadu_si256(at));
        const __m256 second = _mm256_castsi256_ps(_mm256_loadu_si256(at + 1));
        // Blue and green of eight pixels, red and alpha of the same in the same order.
        const __m256i low = _mm256_castps_si256(_mm256_shuffle_ps(first, second, 0x88));
        const __m256i high = _mm256_castps_si256(_mm256_shuffle_ps(first, second, 0xdd));
        const Eight words{_mm256_and_si256(low, lower), _mm256_srli_epi32(low, 16), _mm256_and_si256(high, lower)};
        const Eight rotated = RotatedEight(words, turn, MoreByValue(words, 16383, byValue));
        const __m256i newLow =
            _mm256_or_si256(_mm256_and_si256(rotated.blue, lower), _mm256_slli_epi32(rotated.green, 16));
        const __m256i newHigh = _mm256_or_si256(_mm256_and_si256(rotated.red, lower), _mm256_andnot_si256(lower, high));
        _mm256_storeu_si256(at, _mm256_unpacklo_epi32(newLow, newHigh));
        _mm256_storeu_si256(at + 1, _mm256_unpackhi_epi32(newLow, newHigh));
    }
    return i;
}

}  // namespace chalkpane

#endif
