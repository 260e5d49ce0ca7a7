#include "chalkpane/transform/resample_inner.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <cstdlib>
#include <limits>

namespace chalkpane {

namespace {

// left * a + right * b of each pair of 16-bit words, where words go up to 65280 and the weights add up to 256. The
// hardware's words are signed: 32768 is taken off each before, and 256 times that is given back.
[[gnu::target("avx2")]] inline __m256i WeighPairs(__m256i pairs, __m256i weights) {
    const __m256i centred = _mm256_xor_si256(pairs, _mm256_set1_epi16(static_cast<short>(0x8000)));
    return _mm256_add_epi32(_mm256_madd_epi16(centred, weights), _mm256_set1_epi32(32768 * 256));
}

// Of bytes at 32 fractions, as weights of a pair: 256 - f low, f high.
[[gnu::target("avx2")]] inline __m256i PairWeights(__m256i fractions) {
    const __m256i rest = _mm256_sub_epi32(_mm256_set1_epi32(256), fractions);
    return _mm256_or_si256(rest, _mm256_slli_epi32(fractions, 16));
}

// Where eight neighbouring pixels of four channels come from, a 32-bit number for each.
struct EightColours {
    alignas(32) std::int32_t at[8];  // channels from the area's first one to the lower left neighbour
    __m256i across;                  // weights of a pair
    __m256i up;                      // fraction upward, twice

    // Of pixels `pair` and `pair` + 1, one in each half of the register.
    [[gnu::target("avx2")]] static __m256i OfPair(__m256i all, int pair) {
        const __m256i halves = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
        return _mm256_permutevar8x32_epi32(all, _mm256_add_epi32(halves, _mm256_set1_epi32(pair)));
    }
};

// The neighbours of two pixels, left and right one, in halves of the register.
[[gnu::target("avx2")]] inline __m256i LoadTwo(const std::uint8_t* first, const std::uint8_t* second) {
    const auto load = [](const std::uint8_t* from) __attribute__((target("avx2"))) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(load(first)), load(second), 1);
}
[[gnu::target("avx2")]] inline __m256i LoadTwo(const std::uint16_t* first, const std::uint16_t* second) {
    const auto load = [](const std::uint16_t* from) __attribute__((target("avx2"))) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(load(first)), load(second), 1);
}
[[gnu::target("avx2")]] inline __m256i LeftAndRight(__m256i pixels) {
    return _mm256_unpacklo_epi16(pixels, _mm256_srli_si256(pixels, 8));
}

// The channels of two pixels as 32-bit numbers. Upward first: (256 - f) * lower + f * upper within 16 bits.
[[gnu::target("avx2")]] inline __m256i ResampledPair(const std::uint8_t* first, std::ptrdiff_t rowStep,
                                                     const EightColours& pixels, int pair) {
    const __m256i zero = _mm256_setzero_si256();
    const std::uint8_t* const one = first + pixels.at[pair];
    const std::uint8_t* const other = first + pixels.at[pair + 1];
    const __m256i lower = LoadTwo(one, other);
    const __m256i upper = LoadTwo(one + rowStep, other + rowStep);
    const __m256i rise = _mm256_sub_epi16(_mm256_unpacklo_epi8(upper, zero), _mm256_unpacklo_epi8(lower, zero));
    const __m256i risen = _mm256_mullo_epi16(rise, EightColours::OfPair(pixels.up, pair));
    const __m256i columns = _mm256_add_epi16(_mm256_unpacklo_epi8(zero, lower), risen);
    const __m256i sums = WeighPairs(LeftAndRight(columns), EightColours::OfPair(pixels.across, pair));
    return _mm256_srli_epi32(sums, 16);
}
// Across first. Sums of words of all 16 bits stay below 2 to the 32.
[[gnu::target("avx2")]] inline __m256i ResampledPair(const std::uint16_t* first, std::ptrdiff_t rowStep,
                                                     const EightColours& pixels, int pair) {
    const std::uint16_t* const one = first + pixels.at[pair];
    const std::uint16_t* const other = first + pixels.at[pair + 1];
    const __m256i across = EightColours::OfPair(pixels.across, pair);
    const __m256i lower = WeighPairs(LeftAndRight(LoadTwo(one, other)), across);
    const __m256i upper = WeighPairs(LeftAndRight(LoadTwo(one + rowStep, other + rowStep)), across);
    const __m256i top = _mm256_srli_epi32(EightColours::OfPair(pixels.up, pair), 16);
    const __m256i risen = _mm256_mullo_epi32(_mm256_sub_epi32(upper, lower), top);  // wraps back
    const __m256i sums = _mm256_add_epi32(_mm256_slli_epi32(lower, 8), risen);
    // As FinishSum.
    const __m256i limited = _mm256_min_epu32(sums, _mm256_set1_epi32(PixelFormat14::fullScale << 16));
    const __m256i n = _mm256_add_epi32(limited, _mm256_set1_epi32(32767));
    const __m256i quotient = _mm256_add_epi32(_mm256_add_epi32(n, _mm256_set1_epi32(1)), _mm256_srli_epi32(n, 16));
    return _mm256_srli_epi32(quotient, 16);
}

// Four pixels from two pairs: in words 0 and 2, 1 and 3.
[[gnu::target("avx2")]] inline void StoreFour(__m256i pairs, std::uint8_t* target) {
    const __m256i bytes = _mm256_packus_epi16(pairs, pairs);
    const __m128i inOrder = _mm_unpacklo_epi32(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), inOrder);
}
[[gnu::target("avx2")]] inline void StoreFour(__m256i pairs, std::uint16_t* target) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), _mm256_permute4x64_epi64(pairs, 0xd8));
}

// Eight pixels of one channel, positions counted from the area's lower left pixel.
//
// Four bytes are fetched where two are wanted, without leaving the picture: in the lower row, which another row
// precedes in memory, from two before; in the upper row, which another row follows, to two behind.
[[gnu::target("avx2")]] inline __m128i ResampleEight(const std::uint8_t* first, __m256i rowStep, __m256i u, __m256i v) {
    const __m256i byte = _mm256_set1_epi32(255);
    const __m256i highByte = _mm256_set1_epi32(0xff0000);
    const __m256i x = _mm256_srai_epi32(u, 16);
    const __m256i lowerAt = _mm256_add_epi32(_mm256_mullo_epi32(_mm256_srai_epi32(v, 16), rowStep), x);
    const __m256i upperAt = _mm256_add_epi32(lowerAt, rowStep);
    const __m256i lower = _mm256_i32gather_epi32(reinterpret_cast<const int*>(first - 2), lowerAt, 1);
    const __m256i upper = _mm256_i32gather_epi32(reinterpret_cast<const int*>(first), upperAt, 1);
    const __m256i lowerPairs = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi32(lower, 16), byte),
                                               _mm256_and_si256(_mm256_srli_epi32(lower, 8), highByte));
    const __m256i upperPairs =
        _mm256_or_si256(_mm256_and_si256(upper, byte), _mm256_and_si256(_mm256_slli_epi32(upper, 8), highByte));
    const __m256i across = PairWeights(_mm256_and_si256(_mm256_srli_epi32(u, 8), byte));
    const __m256i rows = _mm256_or_si256(_mm256_madd_epi16(lowerPairs, across),
                                         _mm256_slli_epi32(_mm256_madd_epi16(upperPairs, across), 16));
    const __m256i sums = WeighPairs(rows, PairWeights(_mm256_and_si256(_mm256_srli_epi32(v, 8), byte)));
    const __m256i values = _mm256_srli_epi32(sums, 16);
    const __m128i words = _mm_packus_epi32(_mm256_castsi256_si128(values), _mm256_extracti128_si256(values, 1));
    return _mm_packus_epi16(words, words);
}

// Sixteen channels of a move.
struct MoveWeights {
    __m256i bottom;  // of words
    __m256i top;
    __m256i across;  // of pairs
};

[[gnu::target("avx2")]] inline __m256i LoadWords(const std::uint8_t* bytes) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
}

[[gnu::target("avx2")]] inline __m256i WeighRows(const std::uint8_t* lower, const std::uint8_t* upper,
                                                 const MoveWeights& weights) {
    return _mm256_add_epi16(_mm256_mullo_epi16(LoadWords(lower), weights.bottom),
                            _mm256_mullo_epi16(LoadWords(upper), weights.top));
}

template <int channels>
[[gnu::target("avx2")]] inline void MoveSixteen(const std::uint8_t* lower, const std::uint8_t* upper,
                                                std::uint8_t* target, const MoveWeights& weights) {
    const __m256i a = WeighRows(lower, upper, weights);
    const __m256i b = WeighRows(lower + channels, upper + channels, weights);
    const __m256i low = WeighPairs(_mm256_unpacklo_epi16(a, b), weights.across);
    const __m256i high = WeighPairs(_mm256_unpackhi_epi16(a, b), weights.across);
    const __m256i words = _mm256_packus_epi32(_mm256_srli_epi32(low, 16), _mm256_srli_epi32(high, 16));
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(words, words), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm256_castsi256_si128(bytes));
}

template <int channels>
[[gnu::target("avx2")]] void MoveChannels(const std::uint8_t* lower, const std::uint8_t* upper, std::uint8_t* target,
                                          std::ptrdiff_t count, const Fractions& f) {
    constexpr std::ptrdiff_t block = 16;
    if (count < block) return ResampleMoved<PixelFormat8, channels>(lower, upper, target, count, f);
    const MoveWeights weights{_mm256_set1_epi16(static_cast<short>(256 - f.y)),
                              _mm256_set1_epi16(static_cast<short>(f.y)),
                              PairWeights(_mm256_set1_epi32(static_cast<int>(f.x)))};
    for (std::ptrdiff_t i = 0; i + block <= count; i += block)
        MoveSixteen<channels>(lower + i, upper + i, target + i, weights);
    // The rest over what is done already: the same values again.
    const std::ptrdiff_t last = count - block;
    if (count % block != 0) MoveSixteen<channels>(lower + last, upper + last, target + last, weights);
}

// The low half suffices where positions fit it: steps wrap.
constexpr std::int32_t Low(std::int64_t value) { return static_cast<std::int32_t>(value); }

[[gnu::target("avx2")]] inline __m256i FirstEight(std::int64_t start, std::int64_t step) {
    const __m256i columns = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm256_add_epi32(_mm256_set1_epi32(Low(start)), _mm256_mullo_epi32(columns, _mm256_set1_epi32(Low(step))));
}

// True when all positions and offsets of the iterator fit 32 bits.
template <typename Channel>
bool IsSmall(const ResampleSource<Channel>& source, int channels) {
    const std::int64_t width = std::int64_t{source.area.x1} - source.area.x0 + 1;
    const std::int64_t height = std::int64_t{source.area.y1} - source.area.y0 + 1;
    return width < 32768 && height < 32768 &&
           height * std::abs(std::int64_t{source.rowStep}) + width * channels <
               std::numeric_limits<std::int32_t>::max();
}

template <typename F, typename Channel = typename F::Channel>
[[gnu::target("avx2")]] void AlongColour(const ResampleSource<Channel>& source, const ResampleIterator& iterator,
                                         Channel* target, std::ptrdiff_t count) {
    ResampleIterator at = iterator;
    if (IsSmall(source, 4)) {
        const Channel* const first = source.first;
        const std::ptrdiff_t rowStep = source.rowStep;
        const __m256i byte = _mm256_set1_epi32(255);
        const __m256i stepU = _mm256_set1_epi32(Low(iterator.stepU * 8));
        const __m256i stepV = _mm256_set1_epi32(Low(iterator.stepV * 8));
        __m256i u = FirstEight(iterator.u, iterator.stepU);
        __m256i v = FirstEight(iterator.v, iterator.stepV);
        for (; count >= 8; count -= 8, target += 32, at.u += 8 * at.stepU, at.v += 8 * at.stepV) {
            EightColours pixels;
            const __m256i rows = _mm256_mullo_epi32(_mm256_srai_epi32(v, 16), _mm256_set1_epi32(Low(rowStep)));
            const __m256i columns = _mm256_slli_epi32(_mm256_srai_epi32(u, 16), 2);
            _mm256_store_si256(reinterpret_cast<__m256i*>(pixels.at), _mm256_add_epi32(rows, columns));
            const __m256i up = _mm256_and_si256(_mm256_srli_epi32(v, 8), byte);
            pixels.across = PairWeights(_mm256_and_si256(_mm256_srli_epi32(u, 8), byte));
            pixels.up = _mm256_or_si256(up, _mm256_slli_epi32(up, 16));
            for (int pair = 0; pair < 8; pair += 4)
                StoreFour(_mm256_packus_epi32(ResampledPair(first, rowStep, pixels, pair),
                                              ResampledPair(first, rowStep, pixels, pair + 2)),
                          target + 4 * pair);
            u = _mm256_add_epi32(u, stepU);
            v = _mm256_add_epi32(v, stepV);
        }
    }
    ResampleAlong<F, 4>(source, at, target, count);
}

[[gnu::target("avx2")]] void AlongMask(const ResampleSource<std::uint8_t>& source, const ResampleIterator& iterator,
                                       std::uint8_t* target, std::ptrdiff_t count) {
    ResampleIterator at = iterator;
    if (IsSmall(source, 1)) {
        __m256i u = FirstEight(iterator.u, iterator.stepU);
        __m256i v = FirstEight(iterator.v, iterator.stepV);
        const __m256i stepU = _mm256_set1_epi32(Low(iterator.stepU * 8));
        const __m256i stepV = _mm256_set1_epi32(Low(iterator.stepV * 8));
        const __m256i rowStep = _mm256_set1_epi32(Low(source.rowStep));
        for (; count >= 8; count -= 8, target += 8, at.u += 8 * at.stepU, at.v += 8 * at.stepV) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(target), ResampleEight(source.first, rowStep, u, v));
            u = _mm256_add_epi32(u, stepU);
            v = _mm256_add_epi32(v, stepV);
        }
    }
    ResampleAlong<PixelFormat8, 1>(source, at, target, count);
}

// The compiler finds the vector form of a 14-bit move by itself.
template <int channels>
[[gnu::target("avx2")]] void MoveChannels(const std::uint16_t* lower, const std::uint16_t* upper, std::uint16_t* target,
                                          std::ptrdiff_t count, const Fractions& f) {
    ResampleMoved<PixelFormat14, channels>(lower, upper, target, count, f);
}

}  // namespace

template <typename F, int channels>
void Avx2Inner<F, channels>::Along(const ResampleSource<typename F::Channel>& source, const ResampleIterator& iterator,
                                   typename F::Channel* target, std::ptrdiff_t count) {
    if constexpr (channels == 4)
        AlongColour<F>(source, iterator, target, count);
    else if constexpr (F::bits == 8)
        AlongMask(source, iterator, target, count);
    else
        ResampleAlong<F, channels>(source, iterator, target,
                                   count);  // DIFFERS: a mask's moves alone have a vector form
}

template <typename F, int channels>
void Avx2Inner<F, channels>::Moved(const typename F::Channel* lower, const typename F::Channel* upper,
                                   typename F::Channel* target, std::ptrdiff_t count, const Fractions& f) {
    MoveChannels<channels>(lower, upper, target, count, f);
}

template struct Avx2Inner<PixelFormat8, 1>;
template struct Avx2Inner<PixelFormat8, 4>;
template struct Avx2Inner<PixelFormat14, 1>;
template struct Avx2Inner<PixelFormat14, 4>;

}  // namespace chalkpane

#endif
