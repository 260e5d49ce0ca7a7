#include "chalkpane/filters/neighbourhood/median_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>

namespace chalkpane {
namespace {

// The medians of 32 neighbouring channels, found bit by bit from the top by counting how much of each window lies below
// the median so far with that bit set. The upper four bits name the bin of 16 in which half of the window is reached,
// the lower four the first value there beyond which more than half lies, or the bin's top.
//
//   window  each place of the window for the 32 channels, less 128: AVX2 compares signed bytes only
[[gnu::target("avx2")]] inline __m256i MediansOf32(const __m256i* window, std::size_t places) {
    const auto half = static_cast<std::int32_t>(places / 2);
    const __m256i sign = _mm256_set1_epi8(-128);
    __m256i median = _mm256_setzero_si256();
    for (std::int32_t bit = 128; bit >= 1; bit /= 2) {
        const __m256i candidate = _mm256_or_si256(median, _mm256_set1_epi8(static_cast<char>(bit)));
        const __m256i signedCandidate = _mm256_xor_si256(candidate, sign);
        __m256i below = _mm256_setzero_si256();
        for (std::size_t place = 0; place < places; ++place)
            below = _mm256_sub_epi8(below, _mm256_cmpgt_epi8(signedCandidate, window[place]));
        const __m256i most = _mm256_set1_epi8(static_cast<char>(bit >= 16 ? half - 1 : half));
        const __m256i taken = _mm256_cmpeq_epi8(_mm256_max_epu8(below, most), most);
        median = _mm256_blendv_epi8(median, candidate, taken);
    }
    return median;
}

}  // namespace

[[gnu::target("avx2")]] void MedianRowAvx2(std::span<const std::uint8_t* const> rows, std::int32_t channels,
                                           std::span<std::uint8_t> out) {
    constexpr std::size_t mostPlaces = (2 * largestCountedRadius + 1) * (2 * largestCountedRadius + 1);
    alignas(32) __m256i window[mostPlaces];
    const std::size_t width = rows.size();
    const __m256i sign = _mm256_set1_epi8(-128);
    for (std::size_t done = 0; done < out.size(); done += 32) {
        const std::size_t i = std::min(done, out.size() - 32);  // the last 32 may have been done in part
        __m256i* place = window;
        for (const std::uint8_t* row : rows)
            for (std::size_t x = 0; x < width; ++x, ++place) {
                const auto* at = row + i + x * static_cast<std::size_t>(channels);
                *place = _mm256_xor_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(at)), sign);
            }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out.data() + i), MediansOf32(window, width * width));
    }
}

}  // namespace chalkpane

#endif
