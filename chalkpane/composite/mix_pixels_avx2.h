#pragma once

#if defined(__x86_64__)
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace chalkpane {

// What the 8-bit src_over rows for AVX2 are made of. A pixel is 32 bits of a register; its weight w, 0 .. 65280, stands
// in both halves of the same 32 bits.

// (s * w + d * (65536 - w)) >> 16 is d plus the high half of (s - d) * w. The hardware's high half takes w as signed,
// which from 32768 up is 65536 too low: there s - d is added once more.
[[gnu::target("avx2")]] inline __m256i Mix(__m256i source, __m256i target, __m256i w, __m256i isLarge) {
    const __m256i difference = _mm256_sub_epi16(source, target);
    const __m256i carried = _mm256_and_si256(difference, isLarge);
    return _mm256_add_epi16(target, _mm256_add_epi16(_mm256_mulhi_epi16(difference, w), carried));
}

// A source in the form in which it is mixed: blue and red, green and alpha, in 16 bits each. Alpha's source is 255.
struct SplitPixels {
    __m256i even;
    __m256i odd;
};
[[gnu::target("avx2")]] inline SplitPixels Split(__m256i pixels) {
    return {_mm256_and_si256(pixels, _mm256_set1_epi16(0xff)), _mm256_srli_epi16(pixels, 8)};
}
[[gnu::target("avx2")]] inline SplitPixels SplitAsOpaque(__m256i pixels) {
    return Split(_mm256_or_si256(pixels, _mm256_set1_epi32(static_cast<int>(0xff000000U))));
}

[[gnu::target("avx2")]] inline __m256i MixEight(__m256i target, const SplitPixels& source, __m256i w) {
    const __m256i isLarge = _mm256_srai_epi16(w, 15);
    const SplitPixels d = Split(target);
    const __m256i odd = Mix(source.odd, d.odd, w, isLarge);
    return _mm256_or_si256(Mix(source.even, d.even, w, isLarge), _mm256_slli_epi16(odd, 8));
}

// Weights of 8 pixels under the mask bytes in the lower half of `mask`, for a source of full alpha.
[[gnu::target("avx2")]] inline __m256i OpaqueWeights(__m128i mask, __m256i opacity) {
    const __m256i m = _mm256_cvtepu8_epi32(mask);
    const __m256i w = _mm256_madd_epi16(_mm256_add_epi32(m, _mm256_srli_epi32(m, 7)), opacity);
    return _mm256_or_si256(w, _mm256_slli_epi32(w, 16));
}

struct SixteenWeights {
    __m256i first;
    __m256i second;
};
// The same of 16 pixels, in 16 bits until the end. opacity: in all 16 bits.
[[gnu::target("avx2")]] inline SixteenWeights OpaqueWeightsOfSixteen(__m128i mask, __m256i opacity) {
    // In this order of fours the two halves of `unpack` come out as the first and the second 8 pixels.
    const __m256i m = _mm256_cvtepu8_epi16(_mm_shuffle_epi32(mask, _MM_SHUFFLE(3, 1, 2, 0)));
    const __m256i w = _mm256_mullo_epi16(_mm256_add_epi16(m, _mm256_srli_epi16(m, 7)), opacity);
    return {_mm256_unpacklo_epi16(w, w), _mm256_unpackhi_epi16(w, w)};
}

[[gnu::target("avx2")]] inline __m256i LoadPixels(const std::uint8_t* pixels) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
}
[[gnu::target("avx2")]] inline void StorePixels(std::uint8_t* pixels, __m256i values) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels), values);
}
[[gnu::target("avx2")]] inline __m256i LoadFours(const std::uint8_t* first, const std::uint8_t* second) {
    return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(second), reinterpret_cast<const __m128i*>(first));
}
[[gnu::target("avx2")]] inline void StoreFours(std::uint8_t* first, std::uint8_t* second, __m256i values) {
    _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(second), reinterpret_cast<__m128i*>(first), values);
}
[[gnu::target("avx2")]] inline __m128i LoadMaskFours(const std::uint8_t* first, const std::uint8_t* second) {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    std::memcpy(&low, first, sizeof low);
    std::memcpy(&high, second, sizeof high);
    return _mm_cvtsi64_si128(static_cast<long long>(std::uint64_t{high} << 32 | low));
}
[[gnu::target("avx2")]] inline __m128i LoadMaskEights(const std::uint8_t* first, const std::uint8_t* second) {
    return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(first)),
                              _mm_loadl_epi64(reinterpret_cast<const __m128i*>(second)));
}

}  // namespace chalkpane

#endif
