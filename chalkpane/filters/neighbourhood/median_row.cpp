#include "chalkpane/filters/neighbourhood/median_row.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "chalkpane/base/cpu_features.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace chalkpane {
namespace {

// Counts of one channel in the window: each value, and each 16 neighbouring values together.
struct Histogram {
    std::array<std::uint16_t, 256> fine{};
    std::array<std::uint16_t, 16> coarse{};

    void Add(std::uint8_t value) {
        ++fine[value];
        ++coarse[value >> 4];
    }
    void Remove(std::uint8_t value) {
        --fine[value];
        --coarse[value >> 4];
    }
    [[nodiscard]] std::uint8_t Median(std::int32_t half) const {
        std::int32_t count = -half;
        std::size_t group = 0;
        for (; group < 15; ++group) {
            count += coarse[group];
            if (count >= 0) break;
        }
        if (group == 15) count += coarse[15];
        std::size_t bin = group * 16 + 15;
        while (count > 0) {
            count -= fine[bin];
            if (count > 0) --bin;
        }
        return static_cast<std::uint8_t>(bin);
    }
};

using Nine = std::array<std::uint8_t, 9>;

[[gnu::always_inline]] inline void Order(std::uint8_t& low, std::uint8_t& high) {
    const std::uint8_t smaller = std::min(low, high);
    high = std::max(low, high);
    low = smaller;
}

// Fourth and fifth of nine by a sorting network (Floyd's, 25 exchanges, less those that decide other places).
[[gnu::always_inline]] inline std::uint8_t MedianOfNine(Nine v) {
    Order(v[0], v[1]), Order(v[3], v[4]), Order(v[6], v[7]);
    Order(v[1], v[2]), Order(v[4], v[5]), Order(v[7], v[8]);
    Order(v[0], v[1]), Order(v[3], v[4]), Order(v[6], v[7]);
    Order(v[0], v[3]), Order(v[3], v[6]), Order(v[0], v[3]);
    Order(v[1], v[4]), Order(v[4], v[7]), Order(v[1], v[4]);
    Order(v[2], v[5]), Order(v[5], v[8]), Order(v[2], v[5]);
    Order(v[1], v[3]), Order(v[5], v[7]);
    Order(v[2], v[6]);
    Order(v[4], v[6]);
    Order(v[2], v[4]);
    Order(v[2], v[3]), Order(v[5], v[6]);
    // Four values end a bin of 16 exactly when the fourth and the fifth lie in different ones.
    const bool endsBin = ((v[3] ^ v[4]) & 0xf0) != 0;
    return endsBin ? static_cast<std::uint8_t>(v[3] | 15) : v[4];
}

void MedianRowOfNine(std::span<const std::uint8_t* const> rows, std::ptrdiff_t channels, std::span<std::uint8_t> out) {
    const std::uint8_t* const below = rows[0] + channels;
    const std::uint8_t* const here = rows[1] + channels;
    const std::uint8_t* const above = rows[2] + channels;
    std::uint8_t* const __restrict median = out.data();
    const auto count = static_cast<std::ptrdiff_t>(out.size());
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        median[i] = MedianOfNine({below[i - channels], below[i], below[i + channels], here[i - channels], here[i],
                                  here[i + channels], above[i - channels], above[i], above[i + channels]});
    }
}

#if defined(__x86_64__)
// Up to this radius the bytes of a window are few enough to be counted one by one.
constexpr std::int32_t largestCountedRadius = 7;

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

[[gnu::target("avx2")]] void MedianRowByCounting(std::span<const std::uint8_t* const> rows, std::int32_t channels,
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
#endif

}  // namespace

void MedianRowByHistogram(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::int32_t radius,
                          std::span<std::uint8_t> out) {
    const auto width = static_cast<std::size_t>(2 * radius + 1);
    const auto half = static_cast<std::int32_t>(width * width / 2);
    const auto step = static_cast<std::size_t>(channels);
    for (std::size_t channel = 0; channel < step; ++channel) {
        Histogram histogram;
        for (const std::uint8_t* row : rows)
            for (std::size_t i = 0; i < width; ++i) histogram.Add(row[channel + i * step]);
        for (std::size_t i = channel; i < out.size(); i += step) {
            out[i] = histogram.Median(half);
            if (i + step >= out.size()) break;
            for (const std::uint8_t* row : rows) {
                histogram.Remove(row[i]);
                histogram.Add(row[i + width * step]);
            }
        }
    }
}

void MedianRow(std::span<const std::uint8_t* const> rows, std::int32_t channels, std::int32_t radius,
               std::span<std::uint8_t> out) {
    if (radius == 1) return MedianRowOfNine(rows, channels, out);
#if defined(__x86_64__)
    if (HasAvx2() && radius <= largestCountedRadius && out.size() >= 32)
        return MedianRowByCounting(rows, channels, out);
#endif
    MedianRowByHistogram(rows, channels, radius, out);
}

}  // namespace chalkpane
