#include "chalkpane/filters/neighbourhood/median_columns.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <bit>

namespace chalkpane {
namespace {

// Sixteen counts, as 16-bit numbers without a sign: windows hold 65025 values at most.
[[gnu::target("avx2")]] inline __m256i LoadCounts(const std::uint8_t* counts) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(counts)));
}

// One bit for each count that is at least, or at most, `limit`.
[[gnu::target("avx2")]] inline std::uint32_t AtLeast(__m256i counts, __m256i limit) {
    const __m256i reached = _mm256_cmpeq_epi16(_mm256_max_epu16(counts, limit), counts);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(reached)) & 0x55555555u;
}
[[gnu::target("avx2")]] inline std::uint32_t Above(__m256i counts, __m256i limit) {
    const __m256i within = _mm256_cmpeq_epi16(_mm256_min_epu16(counts, limit), counts);
    return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(within)) & 0x55555555u;
}

// The fine counts of one group over the columns of a window, as they were when last asked for.
struct FineCounts {
    __m256i counts;
    std::size_t place;  // pixel of the row
};
constexpr std::size_t neverAsked = ~std::size_t{0};

// The histograms of one channel's columns in one group, or the coarse ones.
struct Columns {
    const std::uint8_t* first;
    std::size_t step;
    std::size_t width;  // of a window

    [[gnu::target("avx2")]] [[nodiscard]] __m256i At(std::size_t column) const {
        return LoadCounts(first + column * step);
    }
    [[gnu::target("avx2")]] [[nodiscard]] __m256i Sum(std::size_t start) const {
        __m256i sum = At(start);
        for (std::size_t i = 1; i < width; ++i) sum = _mm256_add_epi16(sum, At(start + i));
        return sum;
    }
    // From the window at `place` to the next one.
    [[gnu::target("avx2")]] [[nodiscard]] __m256i Moved(__m256i sum, std::size_t place) const {
        return _mm256_add_epi16(sum, _mm256_sub_epi16(At(place + width), At(place)));
    }
    // Brings counts to the window at `place`, along the row or, where that is farther, afresh.
    [[gnu::target("avx2")]] void MoveTo(std::size_t place, FineCounts& fine) const {
        if (fine.place == neverAsked || 2 * (place - fine.place) > width) {
            fine.counts = Sum(place);
        } else {
            for (std::size_t at = fine.place; at < place; ++at) fine.counts = Moved(fine.counts, at);
        }
        fine.place = place;
    }
};

}  // namespace

[[gnu::target("avx2")]] void MedianColumns::MedianChannelAvx2(std::size_t channel, std::span<std::uint8_t> out) const {
    const std::size_t width = 2 * static_cast<std::size_t>(m_radius) + 1;
    const std::size_t step = m_channels * groupSize;
    const Columns coarse{m_coarse.data() + channel * groupSize, step, width};
    const __m256i half = _mm256_set1_epi16(static_cast<short>(width * width / 2));
    FineCounts fine[groupSize];
    for (FineCounts& counts : fine) counts = {_mm256_setzero_si256(), neverAsked};
    alignas(32) std::uint16_t below[groupSize + 1] = {};  // values in all groups before each
    const std::size_t pixels = out.size() / m_channels;
    __m256i counts = coarse.Sum(0);
    for (std::size_t x = 0; x < pixels; ++x) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(below + 1), counts);
        const auto group = static_cast<std::size_t>(std::countr_zero(AtLeast(counts, half))) / 2;
        const Columns columns{m_fine.data() + (group * m_columns + channel) * groupSize, step, width};
        columns.MoveTo(x, fine[group]);
        const __m256i missing = _mm256_set1_epi16(static_cast<short>(width * width / 2 - below[group]));
        const std::uint32_t above = Above(fine[group].counts, missing);
        // KEEP: where exactly half of the window lies up to the group's end, the answer is the group's top.
        const auto bin = above == 0 ? groupSize - 1 : static_cast<std::size_t>(std::countr_zero(above)) / 2;
        out[x * m_channels + channel] = static_cast<std::uint8_t>(group * groupSize + bin);
        if (x + 1 < pixels) counts = coarse.Moved(counts, x);
    }
}

void MedianColumns::MedianRowAvx2(std::span<std::uint8_t> out) const {
    for (std::size_t channel = 0; channel < m_channels; ++channel) MedianChannelAvx2(channel, out);
}

}  // namespace chalkpane

#endif
