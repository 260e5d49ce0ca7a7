#include "chalkpane/composite/borne_masks.h"
#include "chalkpane/composite/settled_pixels.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>

namespace chalkpane {
namespace {

[[gnu::target("avx2")]] inline __m256i Vector(const std::uint8_t* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

[[gnu::target("avx2")]] inline __m128i EightBytes(const std::uint8_t* bytes) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
}

// Of eight pixels, as 32-bit integers.
template <bool erases>
[[gnu::target("avx2")]] inline __m256i BorneByEight(__m256i pixels, __m256i colour) {
    const BorneMasks& masks = erases ? borneByEraser : borneByColour;
    const __m256i away = erases ? pixels : _mm256_subs_epu8(colour, pixels);
    const __m256i ofTwo = _mm256_max_epu8(away, _mm256_srli_epi32(away, 16));
    const __m256i farthest =
        _mm256_and_si256(_mm256_max_epu8(ofTwo, _mm256_srli_epi32(ofTwo, 8)), _mm256_set1_epi32(0xff));
    const __m256i borne = _mm256_i32gather_epi32(masks.data(), farthest, sizeof(std::int32_t));
    if constexpr (erases) return borne;
    const __m256i beyond = _mm256_subs_epu8(pixels, colour);
    return _mm256_and_si256(borne, _mm256_cmpeq_epi32(beyond, _mm256_setzero_si256()));
}

template <bool erases>
[[gnu::target("avx2")]] void FindByEights(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne,
                                          std::ptrdiff_t count) {
    const __m256i colour = _mm256_set1_epi32(static_cast<int>(pixel));
    std::ptrdiff_t x = 0;
    for (; x + 8 <= count; x += 8) {
        const __m256i words = BorneByEight<erases>(Vector(pixels + 4 * x), colour);
        const __m128i halves = _mm_packus_epi32(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(borne + x), _mm_packus_epi16(halves, halves));
    }
    FindBornePlain(pixels + 4 * x, pixel, borne + x, count - x);
}

[[gnu::target("avx2")]] inline __m128i SixteenBytes(const std::uint8_t* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// Of a mask whose rows take up to 16 bytes.
template <__m128i (*Load)(const std::uint8_t* bytes)>
[[gnu::target("avx2")]] inline bool BearNarrow(const std::uint8_t* borne, const MaskRows& mask) {
    const std::uint8_t* row = mask.top;
    __m128i beyond = _mm_setzero_si128();
    for (std::int32_t left = mask.height; left > 0; --left, row += mask.step, borne += SettledPixels::rowStep)
        beyond = _mm_or_si128(beyond, _mm_subs_epu8(Load(row), Load(borne)));
    return _mm_testz_si128(beyond, beyond) != 0;
}

// The last vector of a row laps over the one before.
[[gnu::target("avx2")]] inline bool BearWide(const std::uint8_t* borne, const MaskRows& mask) {
    constexpr std::int32_t rowsAtOnce = 16;
    const std::ptrdiff_t last = std::max(mask.width - MaskRows::narrow, 0);
    const std::uint8_t* row = mask.top;
    for (std::int32_t left = mask.height; left > 0;) {
        __m256i beyond = _mm256_setzero_si256();
        for (std::int32_t i = std::min(left, rowsAtOnce); i > 0; --i, --left) {
            for (std::ptrdiff_t x = 0; x < last; x += MaskRows::narrow)
                beyond = _mm256_or_si256(beyond, _mm256_subs_epu8(Vector(row + x), Vector(borne + x)));
            beyond = _mm256_or_si256(beyond, _mm256_subs_epu8(Vector(row + last), Vector(borne + last)));
            row += mask.step;
            borne += SettledPixels::rowStep;
        }
        if (_mm256_testz_si256(beyond, beyond) == 0) return false;
    }
    return true;
}

}  // namespace

// The last piece of a row laps over the one before.
[[gnu::target("avx2")]] bool BearRowAvx2(const std::uint8_t* borne, const std::uint8_t* mask, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t wide = 32;
    if (count < wide) {
        if (count < 8) return BearRowPlain(borne, mask, count);
        __m128i beyond = _mm_subs_epu8(EightBytes(mask + count - 8), EightBytes(borne + count - 8));
        for (std::ptrdiff_t x = 0; x + 8 < count; x += 8)
            beyond = _mm_or_si128(beyond, _mm_subs_epu8(EightBytes(mask + x), EightBytes(borne + x)));
        return _mm_testz_si128(beyond, beyond) != 0;
    }
    __m256i beyond = _mm256_subs_epu8(Vector(mask + count - wide), Vector(borne + count - wide));
    for (std::ptrdiff_t x = 0; x + wide < count; x += wide)
        beyond = _mm256_or_si256(beyond, _mm256_subs_epu8(Vector(mask + x), Vector(borne + x)));
    return _mm256_testz_si256(beyond, beyond) != 0;
}

[[gnu::target("avx2")]] bool BearMaskAvx2(const std::uint8_t* borne, const MaskRows& mask) {
    if (mask.width <= 8) return BearNarrow<EightBytes>(borne, mask);
    if (mask.width <= 16) return BearNarrow<SixteenBytes>(borne, mask);
    return BearWide(borne, mask);
}

[[gnu::target("avx2")]] void FindBorneAvx2(const std::uint8_t* pixels, std::uint32_t pixel, std::uint8_t* borne,
                                           std::ptrdiff_t count) {
    if (pixel == 0)
        FindByEights<true>(pixels, pixel, borne, count);
    else
        FindByEights<false>(pixels, pixel, borne, count);
}

}  // namespace chalkpane

#endif
