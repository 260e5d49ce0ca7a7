#include "chalkpane/filters/effects/add_noise_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace chalkpane {
namespace {

// The eight channels with the noise of their sums, truncated and limited; NaN is 0.
[[gnu::target("avx2")]] inline __m256i Noisy(__m256i channels, const std::int32_t* sums, const NoiseScale& scale,
                                             float fullScale) {
    const __m256i sum = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(sums));
    const __m256 share = _mm256_div_ps(_mm256_cvtepi32_ps(sum), _mm256_set1_ps(scale.divisor));
    const __m256 noise =
        _mm256_mul_ps(_mm256_sub_ps(share, _mm256_set1_ps(scale.middle)), _mm256_set1_ps(scale.amplitude));
    const __m256 noisy = _mm256_add_ps(_mm256_cvtepi32_ps(channels), noise);
    const __m256 positive = _mm256_max_ps(noisy, _mm256_setzero_ps());
    return _mm256_cvttps_epi32(_mm256_min_ps(positive, _mm256_set1_ps(fullScale)));
}

}  // namespace

[[gnu::target("avx2")]] std::size_t AddNoiseAvx2(std::span<std::uint8_t> pixels, const NoiseSums& sums,
                                                 const NoiseScale& scale) {
    const __m256i byte = _mm256_set1_epi32(255);
    const __m256i alphas = _mm256_set1_epi32(static_cast<std::int32_t>(0xff000000u));
    std::size_t i = 0;
    for (; i + 32 <= pixels.size(); i += 32) {
        auto* const at = reinterpret_cast<__m256i*>(pixels.data() + i);
        const __m256i loaded = _mm256_loadu_si256(at);
        const std::size_t pixel = i / 4;
        const __m256i blue = Noisy(_mm256_and_si256(loaded, byte), sums.blue + pixel, scale, 255.0F);
        const __m256i green =
            Noisy(_mm256_and_si256(_mm256_srli_epi32(loaded, 8), byte), sums.green + pixel, scale, 255.0F);
        const __m256i red =
            Noisy(_mm256_and_si256(_mm256_srli_epi32(loaded, 16), byte), sums.red + pixel, scale, 255.0F);
        const __m256i upper = _mm256_or_si256(_mm256_slli_epi32(red, 16), _mm256_and_si256(loaded, alphas));
        _mm256_storeu_si256(at, _mm256_or_si256(_mm256_or_si256(blue, _mm256_slli_epi32(green, 8)), upper));
    }
    return i;
}

[[gnu::target("avx2")]] std::size_t AddNoiseAvx2(std::span<std::uint16_t> pixels, const NoiseSums& sums,
                                                 const NoiseScale& scale) {
    const __m256i lower = _mm256_set1_epi32(0xffff);
    std::size_t i = 0;
    for (; i + 32 <= pixels.size(); i += 32) {
        auto* const at = reinterpret_cast<__m256i*>(pixels.data() + i);
        // Pixels 0 to 3 and 4 to 7 each bring their first and second half together, so that the sums need no other
        // order.
        const __m256i first = _mm256_loadu_si256(at);
        const __m256i second = _mm256_loadu_si256(at + 1);
        const __m256i order = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
        const __m256i firstHalves = _mm256_permutevar8x32_epi32(first, order);
        const __m256i secondHalves = _mm256_permutevar8x32_epi32(second, order);
        const __m256i low = _mm256_permute2x128_si256(firstHalves, secondHalves, 0x20);
        const __m256i high = _mm256_permute2x128_si256(firstHalves, secondHalves, 0x31);
        const std::size_t pixel = i / 4;
        const __m256i blue = Noisy(_mm256_and_si256(low, lower), sums.blue + pixel, scale, 16383.0F);
        const __m256i green = Noisy(_mm256_srli_epi32(low, 16), sums.green + pixel, scale, 16383.0F);
        const __m256i red = Noisy(_mm256_and_si256(high, lower), sums.red + pixel, scale, 16383.0F);
        const __m256i newLow = _mm256_or_si256(blue, _mm256_slli_epi32(green, 16));
        const __m256i newHigh = _mm256_or_si256(red, _mm256_andnot_si256(lower, high));
        const __m256i even = _mm256_unpacklo_epi32(newLow, newHigh);
        const __m256i odd = _mm256_unpackhi_epi32(newLow, newHigh);
        _mm256_storeu_si256(at, _mm256_permute2x128_si256(even, odd, 0x20));
        _mm256_storeu_si256(at + 1, _mm256_permute2x128_si256(even, odd, 0x31));
    }
    return i;
}

}  // namespace chalkpane

#endif
