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

// `Scale14` in 16-bit lanes, of words within full scale: the rounding product of the hardware is t >> 14 of its t, and
// what t's lower 14 bits and that carry is at most one.
//
//   doubled  a * 2
[[gnu::target("avx2")]] inline __m256i ScaleWords(__m256i doubled, __m256i a, __m256i b) {
    const __m256i u = _mm256_mulhrs_epi16(doubled, b);
    const __m256i t = _mm256_add_epi16(_mm256_mullo_epi16(a, b), _mm256_set1_epi16(8192));
    const __m256i l = _mm256_and_si256(t, _mm256_set1_epi16(0x3fff));
    return _mm256_add_epi16(u, _mm256_srli_epi16(_mm256_add_epi16(l, u), 14));
}
[[gnu::target("avx2")]] inline __m256i ScaleWords(__m256i a, __m256i b) {
    return ScaleWords(_mm256_add_epi16(a, a), a, b);
}

// The alphas of four pixels a register. Two pixels of each register stand in each half, as they do in the register
// itself.
template <std::size_t registers>
[[gnu::target("avx2")]] inline __m256i Alphas(const __m256i (&pixels)[registers]) {
    const __m256i first = _mm256_packus_epi32(_mm256_srli_epi64(pixels[0], 48), _mm256_srli_epi64(pixels[1], 48));
    if constexpr (registers == 2) return _mm256_packus_epi32(first, first);
    const __m256i second =
        _mm256_packus_epi32(_mm256_srli_epi64(pixels[registers - 2], 48), _mm256_srli_epi64(pixels[registers - 1], 48));
    return _mm256_packus_epi32(first, second);
}

// Four pixels under weights that stand in the four lanes of each. Where a weight is 0 the target comes out as it is.
[[gnu::target("avx2")]] inline __m256i OverFourWords(__m256i target, __m256i source, __m256i weight) {
    constexpr int alphas = 0x88;
    const __m256i rest = _mm256_sub_epi16(_mm256_set1_epi16(PixelFormat14::fullScale), weight);
    const __m256i added = _mm256_blend_epi16(ScaleWords(weight, source), weight, alphas);
    return _mm256_add_epi16(ScaleWords(rest, target), added);
}

// Four pixels a register over the target's; false, and nothing done, where a word lies above full scale.
template <std::size_t registers>
[[gnu::target("avx2")]] inline bool OverWords(std::uint16_t* target, const std::uint16_t* source, __m256i mask,
                                              __m256i opacity) {
    auto* const d = reinterpret_cast<__m256i*>(target);
    const auto* const s = reinterpret_cast<const __m256i*>(source);
    __m256i below[registers];
    __m256i above[registers];
    __m256i all = mask;
    for (std::size_t i = 0; i < registers; ++i) {
        below[i] = _mm256_loadu_si256(d + i);
        above[i] = _mm256_loadu_si256(s + i);
        all = _mm256_or_si256(all, _mm256_or_si256(below[i], above[i]));
    }
    if (_mm256_testz_si256(all, _mm256_set1_epi16(static_cast<short>(0xc000))) == 0) return false;
    const __m256i m = _mm256_permutevar8x32_epi32(mask, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    const __m256i weights = ScaleWords(ScaleWords(Alphas(above), m), opacity);
    __m256i lanes = _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3));
    for (std::size_t i = 0; i < registers; ++i) {
        _mm256_storeu_si256(d + i, OverFourWords(below[i], above[i], _mm256_shuffle_epi8(weights, lanes)));
        lanes = _mm256_add_epi8(lanes, _mm256_set1_epi8(4));
    }
    return true;
}

[[gnu::target("avx2")]] inline void OverSixteen(std::uint16_t* target, const std::uint16_t* source,
                                                const std::uint16_t* mask, std::int32_t opacity) {
    const __m256i words = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(mask));
    if (_mm256_testz_si256(words, words) != 0) return;
    if (OverWords<4>(target, source, words, _mm256_set1_epi16(static_cast<short>(opacity)))) return;
    OverEight(target, source, mask, _mm256_set1_epi32(opacity));
    OverEight(target + 4 * pixelsAtOnce, source + 4 * pixelsAtOnce, mask + pixelsAtOnce, _mm256_set1_epi32(opacity));
}

[[gnu::target("avx2")]] inline void OverNextEight(std::uint16_t* target, const std::uint16_t* source,
                                                  const std::uint16_t* mask, std::int32_t opacity) {
    const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(mask));
    if (_mm_testz_si128(words, words) != 0) return;
    const __m256i narrow = _mm256_set1_epi16(static_cast<short>(opacity));
    if (OverWords<2>(target, source, _mm256_zextsi128_si256(words), narrow)) return;
    OverEight(target, source, mask, _mm256_set1_epi32(opacity));
}

// Less than eight pixels, through a row of their own, which is not covered beyond them.
[[gnu::target("avx2")]] void OverRest(std::uint16_t* target, const std::uint16_t* source, const std::uint16_t* mask,
                                      std::size_t count, std::int32_t opacity) {
    std::array<std::uint16_t, pixelsAtOnce> restOfMask{};
    std::memcpy(restOfMask.data(), mask, count * sizeof(std::uint16_t));
    if (restOfMask == std::array<std::uint16_t, pixelsAtOnce>{}) return;
    std::array<std::uint16_t, 4 * pixelsAtOnce> restOfTarget{};
    std::array<std::uint16_t, 4 * pixelsAtOnce> restOfSource{};
    const std::size_t bytes = 4 * count * sizeof(std::uint16_t);
    std::memcpy(restOfTarget.data(), target, bytes);
    std::memcpy(restOfSource.data(), source, bytes);
    OverNextEight(restOfTarget.data(), restOfSource.data(), restOfMask.data(), opacity);
    std::memcpy(target, restOfTarget.data(), bytes);
}

}  // namespace

[[gnu::target("avx2")]] void SrcOverRow14Avx2(std::uint16_t* target, const std::uint16_t* source,
                                              const std::uint16_t* mask, std::ptrdiff_t count, std::int32_t opacity) {
    if (opacity == 0) return;
    std::ptrdiff_t x = 0;
    for (; x + 16 <= count; x += 16) OverSixteen(target + 4 * x, source + 4 * x, mask + x, opacity);
    for (; x + pixelsAtOnce <= count; x += pixelsAtOnce)
        OverNextEight(target + 4 * x, source + 4 * x, mask + x, opacity);
    if (x < count) OverRest(target + 4 * x, source + 4 * x, mask + x, static_cast<std::size_t>(count - x), opacity);
}

}  // namespace chalkpane

#endif
