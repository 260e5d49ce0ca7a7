#include "chalkpane/filters/colour/hue_rows.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace chalkpane {
namespace {

// Gives what RgbToHsv, WrapHue and HsvToRgb do, for eight pixels at once, in the same roundings. GCC does not vectorise
// them by itself: it takes their selections for branches.
struct Eight {
    __m256i blue, green, red;  // words
};

[[gnu::target("avx2")]] inline __m256 Times(__m256 a, float b) { return _mm256_mul_ps(a, _mm256_set1_ps(b)); }
[[gnu::target("avx2")]] inline __m256 Plus(__m256 a, float b) { return _mm256_add_ps(a, _mm256_set1_ps(b)); }
[[gnu::target("avx2")]] inline __m256 From(float a, __m256 b) { return _mm256_sub_ps(_mm256_set1_ps(a), b); }
[[gnu::target("avx2")]] inline __m256 Choose(__m256 condition, __m256 yes, __m256 no) {
    return _mm256_blendv_ps(no, yes, condition);
}
[[gnu::target("avx2")]] inline __m256 WithinUnit(__m256 a) {
    return _mm256_min_ps(_mm256_max_ps(a, _mm256_setzero_ps()), _mm256_set1_ps(1.0F));
}
[[gnu::target("avx2")]] inline __m256 Unit(__m256i word) { return Times(_mm256_cvtepi32_ps(word), 6.103888e-05F); }
[[gnu::target("avx2")]] inline __m256i Word(__m256 unit) {
    return _mm256_cvttps_epi32(Plus(Times(unit, 16383.0F), 0.5F));
}

// `position` in sextants, 0 .. 6. Each component is (1 - share * saturation) * value, with a share of 0 for the value
// itself, 1 for p, f for q and 1 - f for t; f is what follows the sextant, and 1, 3 and 5 are subtracted from their
// sextants, and these from them, without rounding. A position of 6 is the first sextant's beginning.
[[gnu::target("avx2")]] inline Eight ToWords(__m256 position, __m256 saturation, __m256 value) {
    const auto word = [&](__m256 share) __attribute__((target("avx2"))) {
        return Word(_mm256_mul_ps(From(1.0F, _mm256_mul_ps(WithinUnit(share), saturation)), value));
    };
    return {word(_mm256_max_ps(From(3.0F, position), Plus(position, -5.0F))),
            word(_mm256_max_ps(From(1.0F, position), Plus(position, -3.0F))),
            word(_mm256_min_ps(Plus(position, -1.0F), From(5.0F, position)))};
}

// Where the pixel is grey, what was divided by 0 is masked.
[[gnu::target("avx2")]] inline Eight RotatedEight(const Eight& words, float turn, __m256 more) {
    const __m256 zero = _mm256_setzero_ps();
    const __m256 red = Unit(words.red);
    const __m256 green = Unit(words.green);
    const __m256 blue = Unit(words.blue);
    const __m256 value = _mm256_max_ps(_mm256_max_ps(red, green), blue);
    const __m256 delta = _mm256_sub_ps(value, _mm256_min_ps(_mm256_min_ps(red, green), blue));
    const __m256 grey = _mm256_cmp_ps(delta, zero, _CMP_EQ_OQ);
    const __m256 k = _mm256_div_ps(_mm256_set1_ps(1.0F), delta);
    const __m256 fromRed = _mm256_mul_ps(Times(_mm256_sub_ps(green, blue), 0.16666667F), k);
    const __m256 fromGreen = Times(Plus(_mm256_mul_ps(_mm256_sub_ps(blue, red), k), 2.0F), 0.16666667F);
    const __m256 fromBlue = Times(Plus(_mm256_mul_ps(_mm256_sub_ps(red, green), k), 4.0F), 0.16666667F);
    const __m256 isBelow = _mm256_cmp_ps(fromRed, zero, _CMP_LT_OQ);
    const __m256 redHue = _mm256_add_ps(fromRed, _mm256_and_ps(isBelow, _mm256_set1_ps(1.0F)));
    const __m256 coloured = Choose(_mm256_cmp_ps(value, red, _CMP_EQ_OQ), redHue,
                                   Choose(_mm256_cmp_ps(value, green, _CMP_EQ_OQ), fromGreen, fromBlue));
    const __m256 saturation = _mm256_andnot_ps(grey, _mm256_div_ps(delta, value));
    const __m256 hue = _mm256_add_ps(Plus(_mm256_andnot_ps(grey, coloured), turn), more);
    // The greater of NaN and 0 is 0.
    const __m256 wrapped = _mm256_max_ps(_mm256_sub_ps(hue, _mm256_floor_ps(hue)), zero);
    return ToWords(Times(wrapped, 6.0F), saturation, value);
}

// Rotates by table, for words in the order in which they stand in the lanes.
[[gnu::target("avx2")]] inline __m256 MoreByValue(const Eight& words, std::int32_t fullScale, const float* byValue) {
    if (byValue == nullptr) return _mm256_setzero_ps();
    const __m256 value = Unit(_mm256_max_epi32(_mm256_max_epi32(words.red, words.green), words.blue));
    const __m256i index = _mm256_cvttps_epi32(Times(value, static_cast<float>(fullScale)));
    return _mm256_i32gather_ps(byValue, _mm256_min_epi32(index, _mm256_set1_epi32(fullScale)), 4);
}

// b * 64 + b / 4 is b * 257 / 4, and b * 257 is b twice. `byte` of each pixel.
[[gnu::target("avx2")]] inline __m256i WideByte(__m256i pixels, int byte) {
    const __m256i firstTwice = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 0, -128, -128, 4, 4, -128, -128, 8, 8, -128, -128, 12, 12, -128, -128));
    const __m256i twice = _mm256_add_epi8(firstTwice, _mm256_set1_epi16(static_cast<short>(byte * 257)));
    return _mm256_srli_epi32(_mm256_shuffle_epi8(pixels, twice), 2);
}

}  // namespace

[[gnu::target("avx2")]] std::size_t TurnHuesAvx2(std::span<std::uint8_t> pixels, float turn, const float* byValue) {
    const __m256i alphas = _mm256_set1_epi32(static_cast<std::int32_t>(0xff000000u));
    std::size_t i = 0;
    for (; i + 32 <= pixels.size(); i += 32) {
        auto* const at = reinterpret_cast<__m256i*>(pixels.data() + i);
        const __m256i loaded = _mm256_loadu_si256(at);
        const Eight words{WideByte(loaded, 0), WideByte(loaded, 1), WideByte(loaded, 2)};
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
