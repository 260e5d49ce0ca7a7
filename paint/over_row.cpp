#include "paint/over_row.h"

#include "paint/vector_choice.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>
#include <array>
#endif

namespace chalkpane {

void OverRow8Plain(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask, std::ptrdiff_t maskStep,
                   std::ptrdiff_t count, std::int32_t opacity) {
    for (; count > 0; --count, target += 4, source += 4, mask += maskStep)
        if (*mask != 0) OverPixel8(target, source, *mask, opacity);
}

#if defined(__x86_64__)
namespace {

// (s * w + d * (65536 - w)) >> 16 is d plus the high half of (s - d) * w. The hardware's high half takes w as signed,
// which from 32768 up is 65536 too low: there s - d is added once more.
[[gnu::target("avx2")]] inline __m256i Mix(__m256i source, __m256i target, __m256i w) {
    const __m256i difference = _mm256_sub_epi16(source, target);
    const __m256i carried = _mm256_and_si256(difference, _mm256_srai_epi16(w, 15));
    return _mm256_add_epi16(target, _mm256_add_epi16(_mm256_mulhi_epi16(difference, w), carried));
}

// 8 pixels; those whose lane of `keep` is zero stay as they are.
[[gnu::target("avx2")]] inline void OverEight(std::uint8_t* target, const std::uint8_t* source,
                                              const std::uint8_t* mask, __m256i opacity, __m256i keep) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source));
    const __m256i d = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(target));
    const __m256i alpha = _mm256_srli_epi32(s, 24);
    const __m256i m = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask)));
    // In 32-bit lanes with an empty upper half, so madd is a plain product of the lower halves.
    const __m256i coverage = _mm256_madd_epi16(_mm256_add_epi32(m, _mm256_srli_epi32(m, 7)),
                                               _mm256_add_epi32(alpha, _mm256_srli_epi32(alpha, 7)));
    const __m256i w = _mm256_madd_epi16(_mm256_srli_epi32(coverage, 8), _mm256_and_si256(opacity, keep));
    const __m256i pairs = _mm256_or_si256(w, _mm256_slli_epi32(w, 16));
    const __m256i full = _mm256_or_si256(s, _mm256_set1_epi32(static_cast<int>(0xff000000U)));  // alpha's source is 255
    const __m256i low =
        Mix(_mm256_unpacklo_epi8(full, zero), _mm256_unpacklo_epi8(d, zero), _mm256_unpacklo_epi32(pairs, pairs));
    const __m256i high =
        Mix(_mm256_unpackhi_epi8(full, zero), _mm256_unpackhi_epi8(d, zero), _mm256_unpackhi_epi32(pairs, pairs));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), _mm256_packus_epi16(low, high));
}

// Read from entry n - 1: the last n of 8 lanes set.
constexpr std::array<std::int32_t, 15> lastLanes{0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1};

}  // namespace

[[gnu::target("avx2")]] void OverRow8Avx2(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask,
                                          std::ptrdiff_t count, std::int32_t opacity) {
    if (count < 8) return OverRow8Plain(target, source, mask, 1, count, opacity);
    const __m256i p = _mm256_set1_epi32(opacity);
    const __m256i all = _mm256_set1_epi32(-1);
    std::ptrdiff_t x = 0;
    for (; x + 8 <= count; x += 8) OverEight(target + 4 * x, source + 4 * x, mask + x, p, all);
    if (x == count) return;
    // The rest as the last lanes of the row's last 8 pixels; the lanes before are done already.
    const __m256i keep = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(lastLanes.data() + (count - x - 1)));
    x = count - 8;
    OverEight(target + 4 * x, source + 4 * x, mask + x, p, keep);
}
#endif

void OverRow8(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask, std::ptrdiff_t maskStep,
              std::ptrdiff_t count, std::int32_t opacity) {
#if defined(__x86_64__)
    if (maskStep == 1 && HasAvx2()) return OverRow8Avx2(target, source, mask, count, opacity);
#endif
    OverRow8Plain(target, source, mask, maskStep, count, opacity);
}

}  // namespace chalkpane
