#include "chalkpane/filters/blurs/convolve_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>
#include <array>

// The sums of one block of channels stay in registers while all taps pass over it.
namespace chalkpane {

namespace {

[[gnu::target("avx2")]] inline __m256i Load16Bytes(const std::uint8_t* bytes) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
}

// Two taps in the bytes of each 16 bits, as the hardware multiplies neighbouring bytes by them and adds the products:
// without a sign by with one, clamped to 16 bits with a sign. So two neighbouring taps may come to 128.
constexpr std::size_t mostPairs = 128;
struct TapPairs {
    std::array<std::int32_t, mostPairs> pairs;
    std::size_t count = 0;  // 0: these taps do not fit

    explicit TapPairs(std::span<const std::uint8_t> taps) {
        if (taps.size() > 2 * mostPairs) return;
        for (std::size_t k = 0; k < taps.size(); k += 2) {
            const std::int32_t first = taps[k];
            const std::int32_t second = k + 1 < taps.size() ? taps[k + 1] : 0;
            if (first > 127 || second > 127 || first + second > 128) {
                count = 0;
                return;
            }
            pairs[count++] = (first | second << 8) * 0x10001;
        }
    }
};

// So many registers of channels, whose sums stay in registers while all rows pass over them.
template <std::size_t registers>
[[gnu::target("avx2"), gnu::always_inline]] inline void ConvolvePairs(std::span<const std::uint8_t* const> sources,
                                                                      const TapPairs& taps, std::size_t at,
                                                                      std::uint8_t* out) {
    __m256i low[registers];
    __m256i high[registers];
    for (std::size_t i = 0; i < registers; ++i) low[i] = high[i] = _mm256_set1_epi16(128);
    for (std::size_t k = 0; k < taps.count; ++k) {
        const __m256i pair = _mm256_set1_epi32(taps.pairs[k]);
        const std::uint8_t* const first = sources[2 * k] + at;
        const std::uint8_t* const second = sources[std::min(2 * k + 1, sources.size() - 1)] + at;  // or a tap of 0
        for (std::size_t i = 0; i < registers; ++i) {
            const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(first + 32 * i));
            const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(second + 32 * i));
            low[i] = _mm256_add_epi16(low[i], _mm256_maddubs_epi16(_mm256_unpacklo_epi8(a, b), pair));
            high[i] = _mm256_add_epi16(high[i], _mm256_maddubs_epi16(_mm256_unpackhi_epi8(a, b), pair));
        }
    }
    for (std::size_t i = 0; i < registers; ++i) {
        const __m256i packed = _mm256_packus_epi16(_mm256_srli_epi16(low[i], 8), _mm256_srli_epi16(high[i], 8));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + at + 32 * i), packed);
    }
}

[[gnu::target("avx2")]] std::size_t ConvolveInPairs(std::span<const std::uint8_t* const> sources, const TapPairs& taps,
                                                    std::uint8_t* out, std::size_t count) {
    std::size_t i = 0;
    for (; i + 128 <= count; i += 128) ConvolvePairs<4>(sources, taps, i, out);
    for (; i + 32 <= count; i += 32) ConvolvePairs<1>(sources, taps, i, out);
    return i;
}

}  // namespace

[[gnu::target("avx2")]] std::size_t ConvolveRowAvx2(std::span<const std::uint8_t* const> sources,
                                                    std::span<const std::uint8_t> taps, std::span<std::uint8_t> row) {
    std::uint8_t* const out = row.data();
    const std::size_t count = row.size();
    if (const TapPairs pairs(taps); pairs.count != 0) return ConvolveInPairs(sources, pairs, out, count);
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

// Two words side by side in each 32-bit lane are multiplied by two taps and added at once. A pair of 14-bit channels
// stays below 32768, which the signed product needs; so must the taps.
template <std::size_t registers>
class WordSums {
public:
    [[gnu::target("avx2")]] WordSums() {
        for (std::size_t i = 0; i < registers; ++i) low_[i] = high_[i] = _mm256_set1_epi32(8192);
    }

    // Adds to each register what `first` and `second` give for its number, by their taps.
    template <typename First, typename Second>
    [[gnu::target("avx2"), gnu::always_inline]] void Add(std::int32_t firstTap, const First& first,
                                                         std::int32_t secondTap, const Second& second) {
        const __m256i taps = _mm256_set1_epi32(firstTap | secondTap << 16);
        for (std::size_t i = 0; i < registers; ++i) {
            const __m256i a = first(16 * i);
            const __m256i b = second(16 * i);
            low_[i] = _mm256_add_epi32(low_[i], _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), taps));
            high_[i] = _mm256_add_epi32(high_[i], _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), taps));
        }
    }

    [[gnu::target("avx2")]] void StoreTo(std::uint16_t* out) const {
        for (std::size_t i = 0; i < registers; ++i) {
            const __m256i packed = _mm256_packus_epi32(_mm256_srli_epi32(low_[i], 14), _mm256_srli_epi32(high_[i], 14));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 16 * i), packed);
        }
    }

private:
    __m256i low_[registers];
    __m256i high_[registers];
};

// One row alone, or the sum of two that have the same tap.
struct OneRow {
    const std::uint16_t* row;
    [[gnu::target("avx2")]] __m256i operator()(std::size_t at) const { return Load16Words(row + at); }
};
struct TwoRows {
    const std::uint16_t* row;
    const std::uint16_t* mirrored;
    [[gnu::target("avx2")]] __m256i operator()(std::size_t at) const {
        return _mm256_add_epi16(Load16Words(row + at), Load16Words(mirrored + at));
    }
};
struct NoRow {
    [[gnu::target("avx2")]] __m256i operator()(std::size_t /*at*/) const { return _mm256_setzero_si256(); }
};

template <std::size_t registers>
[[gnu::target("avx2"), gnu::always_inline]] inline void ConvolveWords(std::span<const std::uint16_t* const> sources,
                                                                      std::span<const std::uint16_t> taps,
                                                                      std::size_t at, std::uint16_t* out) {
    const std::size_t middle = taps.size() / 2;
    const auto row = [&](std::size_t k) { return sources[k] + at; };
    const auto both = [&](std::size_t k) { return TwoRows{row(k), row(taps.size() - 1 - k)}; };
    WordSums<registers> sums;
    std::size_t k = 0;
    for (; k + 1 < middle; k += 2) sums.Add(taps[k], both(k), taps[k + 1], both(k + 1));
    // The middle row pairs up with zero, or with the one row left over from the pairs of taps.
    if (k < middle)
        sums.Add(taps[k], both(k), taps[middle], OneRow{row(middle)});
    else
        sums.Add(taps[middle], OneRow{row(middle)}, 0, NoRow{});
    sums.StoreTo(out + at);
}

}  // namespace

[[gnu::target("avx2")]] std::size_t ConvolveRowAvx2(std::span<const std::uint16_t* const> sources,
                                                    std::span<const std::uint16_t> taps, std::span<std::uint16_t> row) {
    if (std::any_of(taps.begin(), taps.end(), [](std::uint16_t tap) { return tap > 32767; })) return 0;
    std::size_t i = 0;
    for (; i + 64 <= row.size(); i += 64) ConvolveWords<4>(sources, taps, i, row.data());
    for (; i + 16 <= row.size(); i += 16) ConvolveWords<1>(sources, taps, i, row.data());
    return i;
}

}  // namespace chalkpane

#endif
