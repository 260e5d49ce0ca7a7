#include "chalkpane/composite/erase_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>
#include <array>
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

// At full opacity integers of 16 bits do: for each mask value there are weights w by which (w * d + 32768) >> 16 is
// what the float factor leaves of every channel d. This is the least of them, in both halves of a word. Most of the
// lower opacities have no such weights and stay with the factor.
constexpr std::int32_t fullOpacity = EraseArithmetic<PixelFormat8>::opacityLimit;

constexpr std::uint32_t FullWeight(std::int32_t m) {
    const double f = EraseFactor<PixelFormat8>(m, fullOpacity);
    std::int32_t least = 0;
    for (std::int32_t d = 1; d < 256; ++d) {
        const auto left = static_cast<std::int32_t>(f * d + 0.5);
        least = std::max(least, (left * 65536 - 32768 + d - 1) / d);
    }
    return static_cast<std::uint32_t>(least) * 0x10001U;
}
constexpr std::array<std::uint32_t, 256> fullWeights = [] {
    std::array<std::uint32_t, 256> weights{};
    for (std::int32_t m = 0; m < 256; ++m) weights[static_cast<std::size_t>(m)] = FullWeight(m);
    return weights;
}();
static_assert(fullWeights[0] == 65408 * 0x10001U, "65407 * 255 + 32768 is 127 short of 255 * 65536");
static_assert(fullWeights[255] == 0);

[[gnu::target("avx2")]] inline __m256i Weigh(__m256i channels, __m256i w) {
    return _mm256_add_epi16(_mm256_mulhi_epu16(channels, w), _mm256_srli_epi16(_mm256_mullo_epi16(channels, w), 15));
}

[[gnu::target("avx2")]] inline void EraseEightFully(std::uint8_t* target, __m128i mask) {
    const __m256i w = _mm256_i32gather_epi32(reinterpret_cast<const int*>(fullWeights.data()),
                                             _mm256_cvtepu8_epi32(mask), sizeof(std::uint32_t));
    auto* const pixels = reinterpret_cast<__m256i*>(target);
    const __m256i d = _mm256_loadu_si256(pixels);
    const __m256i even = Weigh(_mm256_and_si256(d, _mm256_set1_epi16(0xff)), w);
    const __m256i odd = Weigh(_mm256_srli_epi16(d, 8), w);
    _mm256_storeu_si256(pixels, _mm256_or_si256(even, _mm256_slli_epi16(odd, 8)));
}

[[gnu::target("avx2")]] std::ptrdiff_t EraseFully(std::uint8_t* target, const std::uint8_t* mask,
                                                  std::ptrdiff_t count) {
    std::ptrdiff_t x = 0;
    for (; x + 8 <= count; x += 8) {
        const __m128i m = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask + x));
        if (_mm_testz_si128(m, m) == 0) EraseEightFully(target + 4 * x, m);
    }
    return x;
}

}  // namespace

[[gnu::target("avx2")]] void EraseRow8Avx2(std::uint8_t* target, const std::uint8_t* mask, std::ptrdiff_t count,
                                           std::int32_t opacity) {
    const __m256d p = _mm256_set1_pd(opacity);
    std::ptrdiff_t x = opacity == fullOpacity ? EraseFully(target, mask, count) : 0;
    for (; x + 4 <= count; x += 4) {
        std::uint32_t covered = 0;
        std::memcpy(&covered, mask + x, sizeof covered);
        if (covered != 0) EraseFour(target + 4 * x, mask + x, p);
    }
    EraseRow8Plain(target + 4 * x, mask + x, 1, count - x, opacity);
}

}  // namespace chalkpane

#endif
