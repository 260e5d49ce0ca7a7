#include "chalkpane/composite/src_over_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>
#include <cstring>

namespace chalkpane {

namespace {

// (s * w + d * (65536 - w)) >> 16 is d plus the high half of (s - d) * w. The hardware's high half takes w as signed,
// which from 32768 up is 65536 too low: there s - d is added once more.
[[gnu::target("avx2")]] inline __m256i Mix(__m256i source, __m256i target, __m256i w) {
    const __m256i difference = _mm256_sub_epi16(source, target);
    const __m256i carried = _mm256_and_si256(difference, _mm256_srai_epi16(w, 15));
    return _mm256_add_epi16(target, _mm256_add_epi16(_mm256_mulhi_epi16(difference, w), carried));
}

// 8 pixels, which come and go by the lanes of the register. Where the mask is 0 the target stays as it is.
[[gnu::target("avx2")]] inline __m256i OverEight(__m256i d, __m256i s, __m128i mask, __m256i opacity) {
    const __m256i alpha = _mm256_srli_epi32(s, 24);
    const __m256i m = _mm256_cvtepu8_epi32(mask);
    // In 32-bit lanes with an empty upper half, so madd is a plain product of the lower halves.
    const __m256i coverage = _mm256_madd_epi16(_mm256_add_epi32(m, _mm256_srli_epi32(m, 7)),
                                               _mm256_add_epi32(alpha, _mm256_srli_epi32(alpha, 7)));
    const __m256i w = _mm256_madd_epi16(_mm256_srli_epi32(coverage, 8), opacity);
    const __m256i pairs = _mm256_or_si256(w, _mm256_slli_epi32(w, 16));
    // Blue and red are the low bytes of each 16 bits, green and alpha the high ones; alpha's source is 255.
    const __m256i lowBytes = _mm256_set1_epi16(0xff);
    const __m256i opaque = _mm256_or_si256(s, _mm256_set1_epi32(static_cast<int>(0xff000000U)));
    const __m256i even = Mix(_mm256_and_si256(s, lowBytes), _mm256_and_si256(d, lowBytes), pairs);
    const __m256i odd = Mix(_mm256_srli_epi16(opaque, 8), _mm256_srli_epi16(d, 8), pairs);
    return _mm256_or_si256(even, _mm256_slli_epi16(odd, 8));
}

// Read from entry 8 - n: the first n of 8 lanes set.
constexpr std::array<std::int32_t, 16> firstLanes{-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};

// The last `rest` of `count` bytes, below 8, without reading beside them.
std::uint64_t LastBytes(const std::uint8_t* bytes, std::ptrdiff_t count, std::ptrdiff_t rest) {
    std::uint64_t value = 0;
    if (count >= 8) {
        std::memcpy(&value, bytes + count - 8, 8);
        return value >> (8 * (8 - rest));
    }
    for (std::ptrdiff_t i = 0; i < rest; ++i) value |= std::uint64_t{bytes[i]} << (8 * i);
    return value;
}

}  // namespace

[[gnu::target("avx2")]] void SrcOverRow8Avx2(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask,
                                             std::ptrdiff_t count, std::int32_t opacity) {
    const __m256i p = _mm256_set1_epi32(opacity);
    std::ptrdiff_t x = 0;
    for (; x + 8 <= count; x += 8) {
        auto* d = reinterpret_cast<__m256i*>(target + 4 * x);
        const auto* s = reinterpret_cast<const __m256i*>(source + 4 * x);
        const auto* m = reinterpret_cast<const __m128i*>(mask + x);
        _mm256_storeu_si256(d, OverEight(_mm256_loadu_si256(d), _mm256_loadu_si256(s), _mm_loadl_epi64(m), p));
    }
    if (x >= count) return;
    const std::ptrdiff_t rest = count - x;
    const __m256i lanes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(firstLanes.data() + (8 - rest)));
    auto* d = reinterpret_cast<int*>(target + 4 * x);
    const auto* s = reinterpret_cast<const int*>(source + 4 * x);
    const __m128i m = _mm_cvtsi64_si128(static_cast<long long>(LastBytes(mask, count, rest)));
    _mm256_maskstore_epi32(d, lanes, OverEight(_mm256_maskload_epi32(d, lanes), _mm256_maskload_epi32(s, lanes), m, p));
}

}  // namespace chalkpane

#endif
