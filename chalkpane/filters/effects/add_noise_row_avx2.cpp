#include "chalkpane/filters/effects/add_noise_row.h"

#if defined(__x86_64__)
#include "chalkpane/filters/eight_pixels_avx2.h"

namespace chalkpane {
namespace {

// The eight channels with the noise of their sums.
[[gnu::target("avx2")]] inline __m256i Noisy(__m256i channels, const std::int32_t* sums, const NoiseScale& scale,
                                             float fullScale) {
    const __m256i sum = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(sums));
    const __m256 share = _mm256_div_ps(_mm256_cvtepi32_ps(sum), _mm256_set1_ps(scale.divisor));
    const __m256 noise =
        _mm256_mul_ps(_mm256_sub_ps(share, _mm256_set1_ps(scale.middle)), _mm256_set1_ps(scale.amplitude));
    return LimitedEight(_mm256_add_ps(_mm256_cvtepi32_ps(channels), noise), fullScale);
}

template <typename Channel>
[[gnu::target("avx2")]] std::size_t AddNoise(std::span<Channel> pixels, const NoiseSums& sums, const NoiseScale& scale,
                                             float fullScale) {
    std::size_t i = 0;
    for (; i + 32 <= pixels.size(); i += 32) {
        const EightPixels from = LoadEightPixels(pixels.data() + i);
        const std::size_t pixel = i / 4;
        StoreEightPixels({Noisy(from.blue, sums.blue + pixel, scale, fullScale),
                          Noisy(from.green, sums.green + pixel, scale, fullScale),
                          Noisy(from.red, sums.red + pixel, scale, fullScale), from.alpha},
                         pixels.data() + i);
    }
    return i;
}

}  // namespace

std::size_t AddNoiseAvx2(std::span<std::uint8_t> pixels, const NoiseSums& sums, const NoiseScale& scale) {
    return AddNoise(pixels, sums, scale, 255.0F);
}
std::size_t AddNoiseAvx2(std::span<std::uint16_t> pixels, const NoiseSums& sums, const NoiseScale& scale) {
    return AddNoise(pixels, sums, scale, 16383.0F);
}

}  // namespace chalkpane

#endif
