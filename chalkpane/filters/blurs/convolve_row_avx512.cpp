#include "chalkpane/filters/blurs/convolve_row.h"

#if defined(__x86_64__)

#include <algorithm>

#include "chalkpane/base/avx512_intrinsics.h"

namespace chalkpane {

namespace {

[[gnu::target("avx512bw,avx512vnni")]] inline __m512i Load32Words(const std::uint16_t* words) {
    return _mm512_loadu_si512(words);
}

// As for AVX2, with thirty-two words in a register, and products of pairs that are added to the sums by themselves.
template <std::size_t registers>
class WideSums {
public:
    [[gnu::target("avx512bw,avx512vnni")]] WideSums() {
        for (std::size_t i = 0; i < registers; ++i) low_[i] = high_[i] = _mm512_set1_epi32(8192);
    }

    // Adds to each register what `first` and `second` give for its number, by their taps.
    template <typename First, typename Second>
    [[gnu::target("avx512bw,avx512vnni"), gnu::always_inline]] void Add(std::int32_t firstTap, const First& first,
                                                                        std::int32_t secondTap, const Second& second) {
        const __m512i taps = _mm512_set1_epi32(firstTap | secondTap << 16);
        for (std::size_t i = 0; i < registers; ++i) {
            const __m512i a = first(32 * i);
            const __m512i b = second(32 * i);
            low_[i] = _mm512_dpwssd_epi32(low_[i], _mm512_unpacklo_epi16(a, b), taps);
            high_[i] = _mm512_dpwssd_epi32(high_[i], _mm512_unpackhi_epi16(a, b), taps);
        }
    }

    [[gnu::target("avx512bw,avx512vnni")]] void StoreTo(std::uint16_t* out) const {
        for (std::size_t i = 0; i < registers; ++i) {
            const __m512i low = _mm512_srli_epi32(low_[i], 14);
            _mm512_storeu_si512(out + 32 * i, _mm512_packus_epi32(low, _mm512_srli_epi32(high_[i], 14)));
        }
    }

private:
    __m512i low_[registers];
    __m512i high_[registers];
};

// One row alone, or the sum of two that have the same tap.
struct SingleRow {
    const std::uint16_t* row;
    [[gnu::target("avx512bw,avx512vnni")]] __m512i operator()(std::size_t at) const { return Load32Words(row + at); }
};
struct MirroredRows {
    const std::uint16_t* row;
    const std::uint16_t* mirrored;
    [[gnu::target("avx512bw,avx512vnni")]] __m512i operator()(std::size_t at) const {
        return _mm512_add_epi16(Load32Words(row + at), Load32Words(mirrored + at));
    }
};
struct EmptyRow {
    [[gnu::target("avx512bw,avx512vnni")]] __m512i operator()(std::size_t /*at*/) const {
        return _mm512_setzero_si512();
    }
};

template <std::size_t registers>
[[gnu::target("avx512bw,avx512vnni"), gnu::always_inline]] inline void ConvolveWideWords(
    std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps, std::size_t at,
    std::uint16_t* out) {
    const std::size_t middle = taps.size() / 2;
    const auto row = [&](std::size_t k) { return sources[k] + at; };
    const auto both = [&](std::size_t k) { return MirroredRows{row(k), row(taps.size() - 1 - k)}; };
    WideSums<registers> sums;
    std::size_t k = 0;
    for (; k + 1 < middle; k += 2) sums.Add(taps[k], both(k), taps[k + 1], both(k + 1));
    // The middle row pairs up with zero, or with the one row left over from the pairs of taps.
    if (k < middle)
        sums.Add(taps[k], both(k), taps[middle], SingleRow{row(middle)});
    else
        sums.Add(taps[middle], SingleRow{row(middle)}, 0, EmptyRow{});
    sums.StoreTo(out + at);
}

}  // namespace

[[gnu::target("avx512bw,avx512vnni")]] std::size_t ConvolveRowAvx512(std::span<const std::uint16_t* const> sources,
                                                                     std::span<const std::uint16_t> taps,
                                                                     std::span<std::uint16_t> row) {
    constexpr std::size_t words = 32;
    if (row.size() < words || std::any_of(taps.begin(), taps.end(), [](std::uint16_t tap) { return tap > 32767; }))
        return 0;
    std::size_t i = 0;
    for (; i + 4 * words <= row.size(); i += 4 * words) ConvolveWideWords<4>(sources, taps, i, row.data());
    for (; i + words <= row.size(); i += words) ConvolveWideWords<1>(sources, taps, i, row.data());
    // The end once more with words before it: sources lie elsewhere.
    if (i < row.size()) ConvolveWideWords<1>(sources, taps, row.size() - words, row.data());
    return row.size();
}

}  // namespace chalkpane

#endif
