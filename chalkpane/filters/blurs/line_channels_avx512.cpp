#include "chalkpane/filters/blurs/line_channels.h"

#if defined(__x86_64__)

#include <algorithm>

#include "chalkpane/base/avx512_intrinsics.h"
#include "chalkpane/image/pixel_format.h"

namespace chalkpane {
namespace {

constexpr std::size_t lanes = 16;

[[gnu::target("avx512bw,avx512vl")]] inline void StoreFloats(float* line, __m512i numbers) {
    _mm512_storeu_ps(line, _mm512_cvtepi32_ps(numbers));
}

// Rounded and limited; of NaN and 0 the greater is 0.
template <typename F>
[[gnu::target("avx512bw,avx512vl")]] inline __m512i Numbers(const float* line, __m512 gain) {
    const __m512 rounded = _mm512_add_ps(_mm512_div_ps(_mm512_loadu_ps(line), gain), _mm512_set1_ps(0.5F));
    const __m512 positive = _mm512_max_ps(rounded, _mm512_setzero_ps());
    return _mm512_cvttps_epi32(_mm512_min_ps(positive, _mm512_set1_ps(static_cast<float>(F::fullScale))));
}

// Sixteen channels in their own width.
[[gnu::target("avx512bw,avx512vl")]] inline __m512i Widened(__m128i bytes) { return _mm512_cvtepu8_epi32(bytes); }
[[gnu::target("avx512bw,avx512vl")]] inline __m512i Widened(__m256i words) { return _mm512_cvtepu16_epi32(words); }
template <typename F>
struct NarrowLanes;
template <>
struct NarrowLanes<PixelFormat8> {
    using Sixteen = __m128i;
    [[gnu::target("avx512bw,avx512vl")]] static __m128i Load(const std::uint8_t* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    }
    [[gnu::target("avx512bw,avx512vl")]] static void Store(std::uint8_t* at, __m128i bytes) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at), bytes);
    }
    [[gnu::target("avx512bw,avx512vl")]] static __m128i From(__m512i numbers) { return _mm512_cvtepi32_epi8(numbers); }
};
template <>
struct NarrowLanes<PixelFormat14> {
    using Sixteen = __m256i;
    [[gnu::target("avx512bw,avx512vl")]] static __m256i Load(const std::uint16_t* at) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    }
    [[gnu::target("avx512bw,avx512vl")]] static void Store(std::uint16_t* at, __m256i words) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), words);
    }
    [[gnu::target("avx512bw,avx512vl")]] static __m256i From(__m512i numbers) { return _mm512_cvtepi32_epi16(numbers); }
};

// Four pixels of each of four rows become four rows of four pixels: the first pixels of all, then the second ones.
[[gnu::target("avx512bw,avx512vl")]] inline void Transpose(__m128i (&four)[4]) {
    const __m128i firstLow = _mm_unpacklo_epi32(four[0], four[1]);
    const __m128i firstHigh = _mm_unpackhi_epi32(four[0], four[1]);
    const __m128i secondLow = _mm_unpacklo_epi32(four[2], four[3]);
    const __m128i secondHigh = _mm_unpackhi_epi32(four[2], four[3]);
    four[0] = _mm_unpacklo_epi64(firstLow, secondLow);
    four[1] = _mm_unpackhi_epi64(firstLow, secondLow);
    four[2] = _mm_unpacklo_epi64(firstHigh, secondHigh);
    four[3] = _mm_unpackhi_epi64(firstHigh, secondHigh);
}
[[gnu::target("avx512bw,avx512vl")]] inline void Transpose(__m256i (&four)[4]) {
    const __m256i firstEven = _mm256_unpacklo_epi64(four[0], four[1]);
    const __m256i firstOdd = _mm256_unpackhi_epi64(four[0], four[1]);
    const __m256i secondEven = _mm256_unpacklo_epi64(four[2], four[3]);
    const __m256i secondOdd = _mm256_unpackhi_epi64(four[2], four[3]);
    four[0] = _mm256_permute2x128_si256(firstEven, secondEven, 0x20);
    four[1] = _mm256_permute2x128_si256(firstOdd, secondOdd, 0x20);
    four[2] = _mm256_permute2x128_si256(firstEven, secondEven, 0x31);
    four[3] = _mm256_permute2x128_si256(firstOdd, secondOdd, 0x31);
}

// The first channels of `at`, of which there are fewer than sixteen, with zeros behind.
template <typename F>
[[gnu::target("avx512bw,avx512vl")]] inline typename NarrowLanes<F>::Sixteen LoadFirst(const typename F::Channel* at,
                                                                                       std::size_t count) {
    typename F::Channel piece[lanes] = {};
    std::copy_n(at, count, piece);
    return NarrowLanes<F>::Load(piece);
}
template <typename F>
[[gnu::target("avx512bw,avx512vl")]] inline void StoreFirst(typename F::Channel* at, std::size_t count,
                                                            typename NarrowLanes<F>::Sixteen values) {
    typename F::Channel piece[lanes];
    NarrowLanes<F>::Store(piece, values);
    std::copy_n(piece, count, at);
}

template <typename F>
[[gnu::target("avx512bw,avx512vl")]] void LoadColumns(const typename F::Channel* channels, std::size_t rowChannels,
                                                      std::size_t count, float* line) {
    for (std::size_t i = 0; i < count; ++i, channels += rowChannels, line += lanes)
        StoreFloats(line, Widened(NarrowLanes<F>::Load(channels)));
}

template <typename F>
[[gnu::target("avx512bw,avx512vl")]] void StoreColumns(const float* line, float gain, std::size_t count,
                                                       typename F::Channel* channels, std::size_t rowChannels) {
    const __m512 divisor = _mm512_set1_ps(gain);
    for (std::size_t i = 0; i < count; ++i, channels += rowChannels, line += lanes)
        NarrowLanes<F>::Store(channels, NarrowLanes<F>::From(Numbers<F>(line, divisor)));
}

template <typename F>
[[gnu::target("avx512bw,avx512vl")]] void LoadFourRows(const typename F::Channel* const* rows, std::size_t count,
                                                       float* line) {
    typename NarrowLanes<F>::Sixteen four[4];
    std::size_t x = 0;
    for (; x + 4 <= count; x += 4, line += 4 * lanes) {
        for (std::size_t row = 0; row < 4; ++row) four[row] = NarrowLanes<F>::Load(rows[row] + 4 * x);
        Transpose(four);
        for (std::size_t i = 0; i < 4; ++i) StoreFloats(line + i * lanes, Widened(four[i]));
    }
    if (x == count) return;
    for (std::size_t row = 0; row < 4; ++row) four[row] = LoadFirst<F>(rows[row] + 4 * x, 4 * (count - x));
    Transpose(four);
    for (std::size_t i = 0; x + i < count; ++i) StoreFloats(line + i * lanes, Widened(four[i]));
}

template <typename F>
[[gnu::target("avx512bw,avx512vl")]] void StoreFourRows(const float* line, float gain, std::size_t count,
                                                        typename F::Channel* const* rows) {
    const __m512 divisor = _mm512_set1_ps(gain);
    typename NarrowLanes<F>::Sixteen four[4];
    std::size_t x = 0;
    for (; x + 4 <= count; x += 4, line += 4 * lanes) {
        for (std::size_t i = 0; i < 4; ++i) four[i] = NarrowLanes<F>::From(Numbers<F>(line + i * lanes, divisor));
        Transpose(four);
        for (std::size_t row = 0; row < 4; ++row) NarrowLanes<F>::Store(rows[row] + 4 * x, four[row]);
    }
    if (x == count) return;
    for (std::size_t i = 0; i < 4; ++i)
        four[i] = NarrowLanes<F>::From(Numbers<F>(line + (x + i < count ? i : 0) * lanes, divisor));
    Transpose(four);
    for (std::size_t row = 0; row < 4; ++row) StoreFirst<F>(rows[row] + 4 * x, 4 * (count - x), four[row]);
}

}  // namespace

[[gnu::target("avx512bw,avx512vl")]] void LoadColumnsAvx512(const std::uint8_t* channels, std::size_t rowChannels,
                                                            std::size_t count, float* line) {
    LoadColumns<PixelFormat8>(channels, rowChannels, count, line);
}
[[gnu::target("avx512bw,avx512vl")]] void LoadColumnsAvx512(const std::uint16_t* channels, std::size_t rowChannels,
                                                            std::size_t count, float* line) {
    LoadColumns<PixelFormat14>(channels, rowChannels, count, line);
}

[[gnu::target("avx512bw,avx512vl")]] void StoreColumnsAvx512(const float* line, float gain, std::size_t count,
                                                             std::uint8_t* channels, std::size_t rowChannels) {
    StoreColumns<PixelFormat8>(line, gain, count, channels, rowChannels);
}
[[gnu::target("avx512bw,avx512vl")]] void StoreColumnsAvx512(const float* line, float gain, std::size_t count,
                                                             std::uint16_t* channels, std::size_t rowChannels) {
    StoreColumns<PixelFormat14>(line, gain, count, channels, rowChannels);
}

[[gnu::target("avx512bw,avx512vl")]] void LoadFourRowsAvx512(const std::uint8_t* const* rows, std::size_t count,
                                                             float* line) {
    LoadFourRows<PixelFormat8>(rows, count, line);
}
[[gnu::target("avx512bw,avx512vl")]] void LoadFourRowsAvx512(const std::uint16_t* const* rows, std::size_t count,
                                                             float* line) {
    LoadFourRows<PixelFormat14>(rows, count, line);
}

[[gnu::target("avx512bw,avx512vl")]] void StoreFourRowsAvx512(const float* line, float gain, std::size_t count,
                                                              std::uint8_t* const* rows) {
    StoreFourRows<PixelFormat8>(line, gain, count, rows);
}
[[gnu::target("avx512bw,avx512vl")]] void StoreFourRowsAvx512(const float* line, float gain, std::size_t count,
                                                              std::uint16_t* const* rows) {
    StoreFourRows<PixelFormat14>(line, gain, count, rows);
}

}  // namespace chalkpane

#endif
