#include "chalkpane/filters/neighbourhood/median_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <utility>

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

// The exchanges of Batcher's sorting network for thirteen: that for sixteen without those which touch the last three.
struct Exchange {
    std::size_t low, high;
};
constexpr std::size_t sortedPlaces = 13;
template <typename Visit>
constexpr void VisitExchanges(Visit visit) {
    for (std::size_t p = 1; p < 16; p *= 2)
        for (std::size_t k = p; k >= 1; k /= 2)
            for (std::size_t j = k % p; j + k < 16; j += 2 * k)
                for (std::size_t i = 0; i < k; ++i)
                    if ((i + j) / (2 * p) == (i + j + k) / (2 * p) && i + j + k < sortedPlaces)
                        visit(Exchange{i + j, i + j + k});
}
constexpr std::size_t exchangeCount = [] {
    std::size_t count = 0;
    VisitExchanges([&count](Exchange) { ++count; });
    return count;
}();
constexpr auto exchanges = [] {
    std::array<Exchange, exchangeCount> all{};
    std::size_t count = 0;
    VisitExchanges([&](Exchange exchange) { all[count++] = exchange; });
    return all;
}();

[[gnu::target("avx2"), gnu::always_inline]] inline void Order(__m256i& low, __m256i& high) {
    const __m256i smaller = _mm256_min_epu8(low, high);
    high = _mm256_max_epu8(low, high);
    low = smaller;
}
[[gnu::target("avx2"), gnu::always_inline]] inline void SortFive(__m256i (&v)[5]) {
    Order(v[0], v[1]), Order(v[3], v[4]);
    Order(v[2], v[4]);
    Order(v[2], v[3]), Order(v[1], v[4]);
    Order(v[0], v[3]);
    Order(v[0], v[2]), Order(v[1], v[3]);
    Order(v[1], v[2]);
}
template <std::size_t... all>
[[gnu::target("avx2"), gnu::always_inline]] inline void SortThirteen(__m256i (&v)[sortedPlaces],
                                                                     std::index_sequence<all...> /*indices*/) {
    (Order(v[exchanges[all].low], v[exchanges[all].high]), ...);
}

// A square of 25 whose columns are sorted is sorted along its rows, too, which leaves the columns sorted. Then six
// places are surely below the twelfth and the thirteenth value, and six surely above; of the rest those two are the
// sixth and the seventh. What neither needs, the compiler leaves out of the networks.
//
//   ranks  the k-th smallest of each column, for 5 columns side by side `step` bytes apart
[[gnu::target("avx2")]] inline __m256i MedianOfSortedColumns(const std::uint8_t* const (&ranks)[5], std::size_t step) {
    __m256i square[5][5];
    for (std::size_t rank = 0; rank < 5; ++rank) {
        for (std::size_t x = 0; x < 5; ++x)
            square[rank][x] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(ranks[rank] + x * step));
        SortFive(square[rank]);
    }
    __m256i rest[sortedPlaces] = {square[0][3], square[0][4], square[1][2], square[1][3], square[1][4],
                                  square[2][1], square[2][2], square[2][3], square[3][0], square[3][1],
                                  square[3][2], square[4][0], square[4][1]};
    SortThirteen(rest, std::make_index_sequence<exchangeCount>());
    const __m256i twelfth = rest[5];
    const __m256i thirteenth = rest[6];
    // Twelve values end a bin of 16 exactly when these two lie in different ones.
    const __m256i upperBits = _mm256_set1_epi8(static_cast<char>(0xf0));
    const __m256i differing = _mm256_and_si256(_mm256_xor_si256(twelfth, thirteenth), upperBits);
    const __m256i sameBin = _mm256_cmpeq_epi8(differing, _mm256_setzero_si256());
    return _mm256_blendv_epi8(_mm256_or_si256(twelfth, _mm256_set1_epi8(15)), thirteenth, sameBin);
}

// Columns are sorted for a piece of the row at a time and used in five windows each.
[[gnu::target("avx2")]] void MedianRowOf25(std::span<const std::uint8_t* const> rows, std::size_t channels,
                                           std::span<std::uint8_t> out) {
    constexpr std::size_t piece = 512;
    constexpr std::size_t overhang = 32;  // the columns beyond a piece: 16 bytes, in whole registers
    alignas(32) std::uint8_t sorted[5][piece + overhang];
    const std::uint8_t* const ranks[5] = {sorted[0], sorted[1], sorted[2], sorted[3], sorted[4]};
    const std::size_t rowBytes = out.size() + 4 * channels;
    const std::size_t count = std::min(piece, out.size());
    const std::size_t needed = count + 4 * channels;
    for (std::size_t next = 0; next < out.size(); next += piece) {
        const std::size_t start = std::min(next, out.size() - count);  // the last piece may have been done in part
        for (std::size_t done = 0; done < needed; done += 32) {
            // The last columns of a row are reached backwards, so that nothing is read behind it.
            const std::size_t at = std::min(start + done, rowBytes - 32);
            __m256i column[5];
            for (std::size_t i = 0; i < 5; ++i)
                column[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[i] + at));
            SortFive(column);
            for (std::size_t i = 0; i < 5; ++i)
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(sorted[i] + (at - start)), column[i]);
        }
        for (std::size_t done = 0; done < count; done += 32) {
            const std::size_t at = std::min(done, count - 32);
            const std::uint8_t* const from[5] = {ranks[0] + at, ranks[1] + at, ranks[2] + at, ranks[3] + at,
                                                 ranks[4] + at};
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(out.data() + start + at),
                                MedianOfSortedColumns(from, channels));
        }
    }
}

}  // namespace

[[gnu::target("avx2")]] void MedianRowAvx2(std::span<const std::uint8_t* const> rows, std::int32_t channels,
                                           std::span<std::uint8_t> out) {
    if (rows.size() == 5) return MedianRowOf25(rows, static_cast<std::size_t>(channels), out);
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
