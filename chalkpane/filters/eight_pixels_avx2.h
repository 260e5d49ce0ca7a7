#pragma once

#include <immintrin.h>

#include <cstdint>

namespace chalkpane {

// Eight pixels of four channels as 32-bit numbers, channel by channel, in the order in which they lie in memory. For
// files that need AVX2.
struct EightPixels {
    __m256i blue, green, red, alpha;
};

[[gnu::target("avx2")]] inline EightPixels LoadEightPixels(const std::uint8_t* pixels) {
    const __m256i byte = _mm256_set1_epi32(255);
    const __m256i loaded = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    return {_mm256_and_si256(loaded, byte), _mm256_and_si256(_mm256_srli_epi32(loaded, 8), byte),
            _mm256_and_si256(_mm256_srli_epi32(loaded, 16), byte), _mm256_srli_epi32(loaded, 24)};
}
[[gnu::target("avx2")]] inline EightPixels LoadEightPixels(const std::uint16_t* pixels) {
    const __m256i lower = _mm256_set1_epi32(0xffff);
    const __m256i order = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
    const auto* const from = reinterpret_cast<const __m256i*>(pixels);
    // Of four pixels the blues and greens, and then the reds and alphas.
    const __m256i first = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(from), order);
    const __m256i second = _mm256_permutevar8x32_epi32(_mm256_loadu_si256(from + 1), order);
    const __m256i low = _mm256_permute2x128_si256(first, second, 0x20);
    const __m256i high = _mm256_permute2x128_si256(first, second, 0x31);
    return {_mm256_and_si256(low, lower), _mm256_srli_epi32(low, 16), _mm256_and_si256(high, lower),
            _mm256_srli_epi32(high, 16)};
}

// Numbers that fit their channels.
[[gnu::target("avx2")]] inline void StoreEightPixels(const EightPixels& pixels, std::uint8_t* out) {
    const __m256i low = _mm256_or_si256(pixels.blue, _mm256_slli_epi32(pixels.green, 8));
    const __m256i high = _mm256_or_si256(pixels.red, _mm256_slli_epi32(pixels.alpha, 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_or_si256(low, _mm256_slli_epi32(high, 16)));
}
[[gnu::target("avx2")]] inline void StoreEightPixels(const EightPixels& pixels, std::uint16_t* out) {
    const __m256i low = _mm256_or_si256(pixels.blue, _mm256_slli_epi32(pixels.green, 16));
    const __m256i high = _mm256_or_si256(pixels.red, _mm256_slli_epi32(pixels.alpha, 16));
    const __m256i even = _mm256_unpacklo_epi32(low, high);
    const __m256i odd = _mm256_unpackhi_epi32(low, high);
    auto* const to = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(to, _mm256_permute2x128_si256(even, odd, 0x20));
    _mm256_storeu_si256(to + 1, _mm256_permute2x128_si256(even, odd, 0x31));
}

// Truncated and limited to 0 .. full scale; NaN is 0.
[[gnu::target("avx2")]] inline __m256i LimitedEight(__m256 values, float fullScale) {
    const __m256 positive = _mm256_max_ps(values, _mm256_setzero_ps());
    return _mm256_cvttps_epi32(_mm256_min_ps(positive, _mm256_set1_ps(fullScale)));
}

}  // namespace chalkpane
