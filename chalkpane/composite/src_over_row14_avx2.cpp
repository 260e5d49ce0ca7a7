#include "chalkpane/composite/src_over_row14.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>
#include <cstring>

namespace chalkpane {

namespace {

constexpr std::ptrdiff_t pixelsAtOnce = 8;

[[gnu::target("avx2")]] inline __m256i ScaleEach(__m256i a, __m256i b) {
    const __m256i t = _mm256_add_epi32(_mm256_mullo_epi32(a, b), _mm256_set1_epi32(8192));
    return _mm256_srai_epi32(_mm256_add_epi32(t, _mm256_srai_epi32(t, 14)), 14);
}

// The alphas of 8 pixels as lanes, in the order 0 1 4 5 2 3 6 7.
[[gnu::target("avx2")]] inline __m256i Alphas(__m256i first, __m256i second) {
    return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(_mm256_srli_epi64(first, 48)),
                                                 _mm256_castsi256_ps(_mm256_srli_epi64(second, 48)), 0x88));
}

// Two pixels in 32-bit lanes. `a` and `covered` hold the values of the row's 8; `pair` picks a pixel for each lane.
[[gnu::target("avx2")]] inline __m256i OverTwo(__m128i target, __m128i source, __m256i a, __m256i covered,
                                               __m256i pair) {
    constexpr int alphas = 0x88;
    const __m256i weight = _mm256_permutevar8x32_epi32(a, pair);
    const __m256i d = _mm256_cvtepu16_epi32(target);
    const __m256i added = _mm256_blend_epi32(ScaleEach(_mm256_cvtepu16_epi32(source), weight), weight, alphas);
    const __m256i kept = ScaleEach(d, _mm256_sub_epi32(_mm256_set1_epi32(PixelFormat14::fullScale), weight));
    const __m256i sum = _mm256_and_si256(_mm256_add_epi32(kept, added), _mm256_set1_epi32(0xffff));
    return _mm256_blendv_epi8(d, sum, _mm256_permutevar8x32_epi32(covered, pair));
}

// Four pixels, whose values stand in `a` and `covered` at `lanes` for the first two and 4 further for the others.
[[gnu::target("avx2")]] inline __m256i OverFour(__m256i target, __m256i source, __m256i a, __m256i covered,
                                                __m256i lanes) {
    const __m256i firstTwo = OverTwo(_mm256_castsi256_si128(target), _mm256_castsi256_si128(source), a, covered, lanes);
    const __m256i secondTwo = OverTwo(_mm256_extracti128_si256(target, 1), _mm256_extracti128_si256(source, 1), a,
                                      covered, _mm256_add_epi32(lanes, _mm256_set1_epi32(4)));
    return _mm256_permute4x64_epi64(_mm256_packus_epi32(firstTwo, secondTwo), _MM_SHUFFLE(3, 1, 2, 0));
}

[[gnu::target("avx2")]] inline void OverEight(std::uint16_t* target, const std::uint16_t* source,
                                              const std::uint16_t* mask, __m256i opacity) {
    const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(mask));
    if (_mm_testz_si128(words, words) != 0) return;
    auto* const d = reinterpret_cast<__m256i*>(target);
    const auto* const s = reinterpret_cast<const __m256i*>(source);
    const __m256i first = _mm256_loadu_si256(s);
    const __m256i second = _mm256_loadu_si256(s + 1);
    const __m256i order = _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7);
    const __m256i m = _mm256_permutevar8x32_epi32(_mm256_cvtepu16_epi32(words), order);
    const __m256i a = ScaleEach(ScaleEach(Alphas(first, second), m), opacity);
    const __m256i covered = _mm256_cmpgt_epi32(m, _mm256_setzero_si256());
    const __m256i lanesOfFirst = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    const __m256i lanesOfSecond = _mm256_add_epi32(lanesOfFirst, _mm256_set1_epi32(2));
    _mm256_storeu_si256(d, OverFour(_mm256_loadu_si256(d), first, a, covered, lanesOfFirst));
    _mm256_storeu_si256(d + 1, OverFour(_mm256_loadu_si256(d + 1), second, a, covered, lanesOfSecond));
}

}  // namespace

[[gnu::target("avx2")]] void SrcOverRow14Avx2(std::uint16_t* target, const std::uint16_t* source,
                                              const std::uint16_t* mask, std::ptrdiff_t count, std::int32_t opacity) {
    if (opacity == 0) return;
    const __m256i p = _mm256_set1_epi32(opacity);
    std::ptrdiff_t x = 0;
    for (; x + pixelsAtOnce <= count; x += pixelsAtOnce) OverEight(target + 4 * x, source + 4 * x, mask + x, p);
    if (x >= count) return;
    // The rest goes through a row of its own, which is not covered beyond it.
    std::array<std::uint16_t, 4 * pixelsAtOnce> restOfTarget{};
    std::array<std::uint16_t, 4 * pixelsAtOnce> restOfSource{};
    std::array<std::uint16_t, pixelsAtOnce> restOfMask{};
    const auto rest = static_cast<std::size_t>(count - x);
    const std::size_t bytes = 4 * rest * sizeof(std::uint16_t);
    std::memcpy(restOfTarget.data(), target + 4 * x, bytes);
    std::memcpy(restOfSource.data(), source + 4 * x, bytes);
    std::memcpy(restOfMask.data(), mask + x, rest * sizeof(std::uint16_t));
    OverEight(restOfTarget.data(), restOfSource.data(), restOfMask.data(), p);
    std::memcpy(target + 4 * x, restOfTarget.data(), bytes);
}

}  // namespace chalkpane

#endif
