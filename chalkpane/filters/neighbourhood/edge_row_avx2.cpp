#include "chalkpane/filters/neighbourhood/edge_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <algorithm>

namespace chalkpane {
namespace {

[[gnu::target("avx2")]] inline __m256i LoadWide(const std::uint8_t* channels) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(channels)));
}
[[gnu::target("avx2")]] inline __m256i LoadWide(const std::uint16_t* channels) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(channels)));
}

// Numbers of twice the channels' width.
template <typename Channel>
struct Wide;
template <>
struct Wide<std::uint8_t> {
    static constexpr std::size_t count = 16;  // in a register
    [[gnu::target("avx2")]] static __m256i Add(__m256i a, __m256i b) { return _mm256_add_epi16(a, b); }
    [[gnu::target("avx2")]] static __m256i Subtract(__m256i a, __m256i b) { return _mm256_sub_epi16(a, b); }
    [[gnu::target("avx2")]] static __m256i Larger(__m256i a, __m256i b) {
        return _mm256_max_epi16(a, _mm256_abs_epi16(b));
    }
};
template <>
struct Wide<std::uint16_t> {
    static constexpr std::size_t count = 8;
    [[gnu::target("avx2")]] static __m256i Add(__m256i a, __m256i b) { return _mm256_add_epi32(a, b); }
    [[gnu::target("avx2")]] static __m256i Subtract(__m256i a, __m256i b) { return _mm256_sub_epi32(a, b); }
    // Words above full scale make slopes that wrap.
    [[gnu::target("avx2")]] static __m256i Larger(__m256i a, __m256i b) {
        return _mm256_and_si256(_mm256_max_epi32(a, _mm256_abs_epi32(b)), _mm256_set1_epi32(0xffff));
    }
};

// The larger slope, where one to the right counts only if it falls, since the other one is not negative.
template <typename Channel>
[[gnu::target("avx2")]] inline __m256i SlopesAt(const EdgeStretch<Channel>& stretch, std::size_t i) {
    using W = Wide<Channel>;
    const std::size_t step = stretch.channels;
    const __m256i upperLeft = LoadWide(stretch.upper + i - step);
    const __m256i upperRight = LoadWide(stretch.upper + i + step);
    const __m256i lowerLeft = LoadWide(stretch.lower + i - step);
    const __m256i lowerRight = LoadWide(stretch.lower + i + step);
    const __m256i across = W::Subtract(LoadWide(stretch.here + i - step), LoadWide(stretch.here + i + step));
    const __m256i down = W::Subtract(LoadWide(stretch.upper + i), LoadWide(stretch.lower + i));
    const __m256i falling = W::Subtract(upperLeft, lowerRight);
    const __m256i rising = W::Subtract(lowerLeft, upperRight);
    return W::Larger(W::Add(W::Add(falling, rising), W::Add(across, across)),
                     W::Add(W::Subtract(falling, rising), W::Add(down, down)));
}

// Four slopes times the factor, limited and truncated; NaN is 0.
[[gnu::target("avx2")]] inline __m128i Brightened(__m128i slopes, __m256d factor, __m256d fullScale) {
    const __m256d bright = _mm256_max_pd(_mm256_mul_pd(_mm256_cvtepi32_pd(slopes), factor), _mm256_setzero_pd());
    return _mm256_cvttpd_epi32(_mm256_min_pd(bright, fullScale));
}
// Eight, as words.
[[gnu::target("avx2")]] inline __m128i Brightened(__m256i slopes, __m256d factor, __m256d fullScale) {
    return _mm_packus_epi32(Brightened(_mm256_castsi256_si128(slopes), factor, fullScale),
                            Brightened(_mm256_extracti128_si256(slopes, 1), factor, fullScale));
}

[[gnu::target("avx2")]] inline __m128i EdgesAt(const EdgeStretch<std::uint8_t>& stretch, std::size_t i) {
    const __m256d factor = _mm256_set1_pd(stretch.factor);
    const __m256d fullScale = _mm256_set1_pd(255.0);
    const __m256i slopes = SlopesAt(stretch, i);
    const __m128i low = Brightened(_mm256_cvtepi16_epi32(_mm256_castsi256_si128(slopes)), factor, fullScale);
    const __m128i high = Brightened(_mm256_cvtepi16_epi32(_mm256_extracti128_si256(slopes, 1)), factor, fullScale);
    return _mm_packus_epi16(low, high);
}
[[gnu::target("avx2")]] inline __m128i EdgesAt(const EdgeStretch<std::uint16_t>& stretch, std::size_t i) {
    return Brightened(SlopesAt(stretch, i), _mm256_set1_pd(stretch.factor), _mm256_set1_pd(16383.0));
}

[[gnu::target("avx2")]] inline __m128i LimitedTo(__m128i edges, __m128i pixels, std::uint8_t /*channel*/) {
    const __m128i alphas =
        _mm_shuffle_epi8(pixels, _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15));
    return _mm_min_epu8(edges, alphas);
}
[[gnu::target("avx2")]] inline __m128i LimitedTo(__m128i edges, __m128i pixels, std::uint16_t /*channel*/) {
    return _mm_min_epu16(edges, _mm_shufflehi_epi16(_mm_shufflelo_epi16(pixels, 0xff), 0xff));
}
[[gnu::target("avx2")]] inline __m128i AlphaLanes(std::uint8_t /*channel*/) {
    return _mm_set1_epi32(static_cast<std::int32_t>(0xff000000u));
}
[[gnu::target("avx2")]] inline __m128i AlphaLanes(std::uint16_t /*channel*/) {
    return _mm_set1_epi64x(static_cast<std::int64_t>(0xffff000000000000u));
}

template <typename Channel>
[[gnu::target("avx2")]] void Edges(const EdgeStretch<Channel>& stretch) {
    constexpr std::size_t block = Wide<Channel>::count;
    for (std::size_t done = 0; done < stretch.count; done += block) {
        const std::size_t i = std::min(done, stretch.count - block);  // the last ones may have been done in part
        __m128i edges = EdgesAt(stretch, i);
        if (stretch.channels == 4) {
            const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(stretch.here + i));
            if (stretch.limitToAlpha) edges = LimitedTo(edges, pixels, Channel{});
            edges = _mm_blendv_epi8(edges, pixels, AlphaLanes(Channel{}));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(stretch.out + i), edges);
    }
}

}  // namespace

void EdgesAvx2(const EdgeStretch<std::uint8_t>& stretch) { Edges(stretch); }
void EdgesAvx2(const EdgeStretch<std::uint16_t>& stretch) { Edges(stretch); }

}  // namespace chalkpane

#endif
