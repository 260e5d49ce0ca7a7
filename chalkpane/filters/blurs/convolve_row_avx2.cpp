#include "chalkpane/filters/blurs/convolve_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>

// The sums of one block of channels stay in registers while all taps pass over it.
namespace chalkpane {

namespace {

[[gnu::target("avx2")]] inline __m256i Load16Bytes(const std::uint8_t* bytes) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
}

}  // namespace

[[gnu::target("avx2")]] std::size_t ConvolveRowAvx2(std::span<const std::uint8_t* const> sources,
                                                    std::span<const std::uint8_t> taps, std::span<std::uint8_t> row) {
    std::uint8_t* const out = row.data();
    const std::size_t count = row.size();
    const std::size_t middle = taps.size() / 2;
    const std::uint8_t* const* rows = sources.data();
    const std::uint8_t* const* mirrored = rows + taps.size() - 1;
    const __m256i half = _mm256_set1_epi16(128);
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i centre = _mm256_set1_epi16(taps[middle]);
        __m256i low = _mm256_add_epi16(half, _mm256_mullo_epi16(centre, Load16Bytes(rows[middle] + i)));
        __m256i high = _mm256_add_epi16(half, _mm256_mullo_epi16(centre, Load16Bytes(rows[middle] + i + 16)));
        for (std::size_t k = 0; k < middle; ++k) {
            const __m256i tap = _mm256_set1_epi16(taps[k]);
            const std::uint8_t* before = rows[k] + i;
            const std::uint8_t* behind = *(mirrored - k) + i;
            const __m256i lowPair = _mm256_add_epi16(Load16Bytes(before), Load16Bytes(behind));
            const __m256i highPair = _mm256_add_epi16(Load16Bytes(before + 16), Load16Bytes(behind + 16));
            low = _mm256_add_epi16(low, _mm256_mullo_epi16(tap, lowPair));
            high = _mm256_add_epi16(high, _mm256_mullo_epi16(tap, highPair));
        }
        const __m256i packed = _mm256_packus_epi16(_mm256_srli_epi16(low, 8), _mm256_srli_epi16(high, 8));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_permute4x64_epi64(packed, 0xd8));
    }
    return i;
}

namespace {

[[gnu::target("avx2")]] inline __m256i Load16Words(const std::uint16_t* words) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words));
}

}  // namespace

// Two words side by side in each 32-bit lane are multiplied by two taps and added at once. A pair of 14-bit channels
// stays below 32768, which the signed product needs; so must the taps.
[[gnu::target("avx2")]] std::size_t ConvolveRowAvx2(std::span<const std::uint16_t* const> sources,
                                                    std::span<const std::uint16_t> taps, std::span<std::uint16_t> row) {
    std::uint16_t* const out = row.data();
    const std::size_t count = row.size();
    if (std::any_of(taps.begin(), taps.end(), [](std::uint16_t tap) { return tap > 32767; })) return 0;
    const std::size_t middle = taps.size() / 2;
    const std::uint16_t* const* rows = sources.data();
    const std::uint16_t* const* mirrored = rows + taps.size() - 1;
    const __m256i half = _mm256_set1_epi32(8192);
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        __m256i low = half;
        __m256i high = half;
        // The middle row pairs up with zero, or with the one row left over from the pairs of taps.
        for (std::size_t k = 0; k <= middle; k += 2) {
            const bool last = k == middle;
            const __m256i first = last ? Load16Words(rows[k] + i)
                                       : _mm256_add_epi16(Load16Words(rows[k] + i), Load16Words(*(mirrored - k) + i));
            __m256i second = _mm256_setzero_si256();
            std::int32_t secondTap = 0;
            if (!last) {
                second = Load16Words(rows[k + 1] + i);
                if (k + 1 != middle) second = _mm256_add_epi16(second, Load16Words(*(mirrored - k - 1) + i));
                secondTap = taps[k + 1];
            }
            const __m256i tapPair = _mm256_set1_epi32(static_cast<std::int32_t>(taps[k]) | (secondTap << 16));
            low = _mm256_add_epi32(low, _mm256_madd_epi16(_mm256_unpacklo_epi16(first, second), tapPair));
            high = _mm256_add_epi32(high, _mm256_madd_epi16(_mm256_unpackhi_epi16(first, second), tapPair));
        }
        const __m256i packed = _mm256_packus_epi32(_mm256_srli_epi32(low, 14), _mm256_srli_epi32(high, 14));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), packed);
    }
    return i;
}

}  // namespace chalkpane

#endif
