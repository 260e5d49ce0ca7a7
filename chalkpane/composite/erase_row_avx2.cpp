#include "chalkpane/composite/erase_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <cstring>

namespace chalkpane {

namespace {

// m / 255.0, so that a row divides nothing.
constexpr std::array<double, 256> coverage = [] {
    std::array<double, 256> table{};
    for (std::size_t m = 0; m < 256; ++m) table[m] = static_cast<double>(m) / 255.0;
    return table;
}();

// The four channels of one pixel as 32-bit integers.
[[gnu::target("avx2")]] inline __m128i EraseOne(__m128i pixels, __m256d f) {
    const __m256d channels = _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(pixels));
    return _mm256_cvttpd_epi32(_mm256_add_pd(_mm256_mul_pd(f, channels), _mm256_set1_pd(0.5)));
}

// Four pixels. A mask of 0 gives a factor of 1 and leaves the pixel as it is.
[[gnu::target("avx2")]] inline void EraseFour(std::uint8_t* target, const std::uint8_t* mask, __m256d opacity) {
    const __m256d m = _mm256_setr_pd(coverage[mask[0]], coverage[mask[1]], coverage[mask[2]], coverage[mask[3]]);
    const __m256d taken =
        _mm256_mul_pd(_mm256_mul_pd(m, opacity), _mm256_set1_pd(EraseArithmetic<PixelFormat8>::opacityScale));
    const __m256d f = _mm256_cvtps_pd(_mm256_cvtpd_ps(_mm256_sub_pd(_mm256_set1_pd(1.0), taken)));
    const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(target));
    const __m128i low = _mm_packs_epi32(EraseOne(d, _mm256_permute4x64_pd(f, 0x00)),
                                        EraseOne(_mm_srli_si128(d, 4), _mm256_permute4x64_pd(f, 0x55)));
    const __m128i high = _mm_packs_epi32(EraseOne(_mm_srli_si128(d, 8), _mm256_permute4x64_pd(f, 0xaa)),
                                         EraseOne(_mm_srli_si128(d, 12), _mm256_permute4x64_pd(f, 0xff)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_packus_epi16(low, high));
}

}  // namespace

[[gnu::target("avx2")]] void EraseRow8Avx2(std::uint8_t* target, const std::uint8_t* mask, std::ptrdiff_t count,
                                           std::int32_t opacity) {
    const __m256d p = _mm256_set1_pd(opacity);
    std::ptrdiff_t x = 0;
    for (; x + 4 <= count; x += 4) {
        std::uint32_t covered = 0;
        std::memcpy(&covered, mask + x, sizeof covered);
        if (covered != 0) EraseFour(target + 4 * x, mask + x, p);
    }
    EraseRow8Plain(target + 4 * x, mask + x, 1, count - x, opacity);
}

}  // namespace chalkpane

#endif
