#include "chalkpane/transform/resample_inner.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <cstring>
#include <limits>

namespace chalkpane {

namespace {

[[gnu::target("avx2")]] inline __m128i LoadEight(const std::uint8_t* bytes) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
}

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

// A 32-bit value for each half of the register.
[[gnu::target("avx2")]] inline __m256i Halves(int low, int high) {
    return _mm256_set_m128i(_mm_set1_epi32(high), _mm_set1_epi32(low));
}

// Two pixels of four channels, one in each half of the register.
struct TwoPixels {
    const std::uint8_t* lower[2];
    int x[2];
    int y[2];
};

[[gnu::target("avx2")]] inline void ResampleTwo(const TwoPixels& pixels, std::ptrdiff_t rowStep, std::uint8_t* target) {
    const __m256i lower =
        _mm256_cvtepu8_epi16(_mm_unpacklo_epi64(LoadEight(pixels.lower[0]), LoadEight(pixels.lower[1])));
    const __m256i upper = _mm256_cvtepu8_epi16(
        _mm_unpacklo_epi64(LoadEight(pixels.lower[0] + rowStep), LoadEight(pixels.lower[1] + rowStep)));
    const __m256i top = Halves(pixels.y[0] * 0x10001, pixels.y[1] * 0x10001);
    const __m256i bottom = _mm256_sub_epi16(_mm256_set1_epi16(256), top);
    const __m256i columns = _mm256_add_epi16(_mm256_mullo_epi16(lower, bottom), _mm256_mullo_epi16(upper, top));
    const __m256i pairs = _mm256_unpacklo_epi16(columns, _mm256_srli_si256(columns, 8));
    const __m256i sums = WeighPairs(pairs, PairWeights(Halves(pixels.x[0], pixels.x[1])));
    const __m256i words = _mm256_packus_epi32(_mm256_srli_epi32(sums, 16), _mm256_setzero_si256());
    const __m256i bytes = _mm256_packus_epi16(words, _mm256_setzero_si256());
    const int first = _mm256_extract_epi32(bytes, 0);
    const int second = _mm256_extract_epi32(bytes, 4);
    std::memcpy(target, &first, sizeof first);
    std::memcpy(target + 4, &second, sizeof second);
}

[[gnu::target("avx2")]] void AlongColour(const ResampleSource<std::uint8_t>& source, const ResampleIterator& iterator,
                                         std::uint8_t* target, std::ptrdiff_t count) {
    ResampleIterator at = iterator;
    std::ptrdiff_t x = 0;
    for (; x + 2 <= count; x += 2, target += 8) {
        TwoPixels pixels;
        for (int i = 0; i < 2; ++i, at.u += at.stepU, at.v += at.stepV) {
            pixels.lower[i] = source.first + (at.v >> 16) * source.rowStep + (at.u >> 16) * 4;
            pixels.x[i] = static_cast<int>(at.u >> 8) & 255;
            pixels.y[i] = static_cast<int>(at.v >> 8) & 255;
        }
        ResampleTwo(pixels, source.rowStep, target);
    }
    ResampleAlong<PixelFormat8, 4>(source, at, target, count - x);
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

// The low half suffices where positions fit it: steps wrap.
constexpr std::int32_t Low(std::int64_t value) { return static_cast<std::int32_t>(value); }

[[gnu::target("avx2")]] inline __m256i FirstEight(std::int64_t start, std::int64_t step) {
    const __m256i columns = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm256_add_epi32(_mm256_set1_epi32(Low(start)), _mm256_mullo_epi32(columns, _mm256_set1_epi32(Low(step))));
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

// True when all positions and offsets of the iterator fit 32 bits.
bool IsSmall(const ResampleSource<std::uint8_t>& source) {
    const std::int64_t width = std::int64_t{source.area.x1} - source.area.x0 + 1;
    const std::int64_t height = std::int64_t{source.area.y1} - source.area.y0 + 1;
    return width < 32768 && height < 32768 &&
           height * -source.rowStep + width < std::numeric_limits<std::int32_t>::max();
}

[[gnu::target("avx2")]] void AlongMask(const ResampleSource<std::uint8_t>& source, const ResampleIterator& iterator,
                                       std::uint8_t* target, std::ptrdiff_t count) {
    ResampleIterator at = iterator;
    if (IsSmall(source)) {
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
    if constexpr (F::bits == 14)
        ResampleAlong<F, channels>(source, iterator, target, count);  // DIFFERS: only moves have a vector form
    else if constexpr (channels == 1)
        AlongMask(source, iterator, target, count);
    else
        AlongColour(source, iterator, target, count);
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
