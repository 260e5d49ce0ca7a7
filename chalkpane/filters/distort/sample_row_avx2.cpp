#include "chalkpane/filters/distort/sample_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>

#include "chalkpane/image/sampling.h"

namespace chalkpane {
namespace {

// Where four samples are to be taken: the pixel below and to the left of each, and 16.16 shares of it, of the ones to
// its right, above it, and above to the right.
struct FourPlaces {
    alignas(16) std::array<std::int32_t, 4> x;
    alignas(16) std::array<std::int32_t, 4> y;
    alignas(16) std::array<std::array<std::int32_t, 4>, 4> shares;  // per sample
    int inner;  // one bit a sample: all four pixels are in the image, and it is not one of them alone that counts
};

struct Axis {
    __m256d whole, fraction;
};
[[gnu::target("avx2")]] inline Axis Split(__m256d place) {
    const __m256d whole = _mm256_floor_pd(place);
    return {whole, _mm256_sub_pd(place, whole)};
}
// Truncated 16.16 fixed point.
[[gnu::target("avx2")]] inline __m128i Share(__m256d a, __m256d b) {
    return _mm256_cvttpd_epi32(_mm256_mul_pd(_mm256_mul_pd(a, b), _mm256_set1_pd(65536.0)));
}
[[gnu::target("avx2")]] inline __m256d Within(__m256d place, std::int32_t first, std::int32_t last) {
    return _mm256_and_pd(_mm256_cmp_pd(place, _mm256_set1_pd(first), _CMP_GE_OQ),
                         _mm256_cmp_pd(place, _mm256_set1_pd(last), _CMP_LT_OQ));
}

[[gnu::target("avx2")]] inline FourPlaces Find(const Image& image, const float* x, const float* y) {
    const __m256d placesX = _mm256_cvtps_pd(_mm_loadu_ps(x));
    const __m256d placesY = _mm256_cvtps_pd(_mm_loadu_ps(y));
    const Axis column = Split(placesX);
    const Axis line = Split(placesY);
    const __m256d one = _mm256_set1_pd(1.0);
    const __m256d fx = column.fraction;
    const __m256d fy = line.fraction;
    const __m256d gx = _mm256_sub_pd(one, fx);
    const __m256d gy = _mm256_sub_pd(one, fy);
    const __m256d between = _mm256_cmp_pd(_mm256_add_pd(fx, fy), _mm256_set1_pd(1e-5), _CMP_GE_OQ);
    const __m256d inside = _mm256_and_pd(Within(placesX, image.x0, image.x1), Within(placesY, image.y0, image.y1));
    FourPlaces places;
    places.inner = _mm256_movemask_pd(_mm256_and_pd(between, inside));
    _mm_store_si128(reinterpret_cast<__m128i*>(places.x.data()), _mm256_cvttpd_epi32(column.whole));
    _mm_store_si128(reinterpret_cast<__m128i*>(places.y.data()), _mm256_cvttpd_epi32(line.whole));
    const __m128i here = Share(gx, gy);
    const __m128i right = Share(fx, gy);
    const __m128i above = Share(gx, fy);
    const __m128i corner = Share(fx, fy);
    const __m128i low01 = _mm_unpacklo_epi32(here, right);
    const __m128i low23 = _mm_unpacklo_epi32(above, corner);
    const __m128i high01 = _mm_unpackhi_epi32(here, right);
    const __m128i high23 = _mm_unpackhi_epi32(above, corner);
    auto* const shares = reinterpret_cast<__m128i*>(places.shares.data());
    _mm_store_si128(shares, _mm_unpacklo_epi64(low01, low23));
    _mm_store_si128(shares + 1, _mm_unpackhi_epi64(low01, low23));
    _mm_store_si128(shares + 2, _mm_unpacklo_epi64(high01, high23));
    _mm_store_si128(shares + 3, _mm_unpackhi_epi64(high01, high23));
    return places;
}

// Two neighbouring pixels, eight channels.
[[gnu::target("avx2")]] inline __m256i LoadTwo(const std::byte* at, Pixel8 /*kind*/) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)));
}
[[gnu::target("avx2")]] inline __m256i LoadTwo(const std::byte* at, Pixel14 /*kind*/) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
}
[[gnu::target("avx2")]] inline void StoreOne(__m128i channels, Pixel8& pixel) {
    const __m128i words = _mm_packus_epi32(channels, channels);
    _mm_storeu_si32(&pixel, _mm_packus_epi16(words, words));
}
[[gnu::target("avx2")]] inline void StoreOne(__m128i channels, Pixel14& pixel) {
    _mm_storeu_si64(&pixel, _mm_packus_epi32(channels, channels));
}

template <typename Pixel>
[[gnu::target("avx2")]] inline void Mix(const Image& image, const FourPlaces& places, std::size_t i, Pixel& pixel) {
    const std::byte* const here = image.Address(places.x[i], places.y[i]);
    const std::byte* const above = here - image.rowBytes;
    const __m256i shares =
        _mm256_castsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(places.shares[i].data())));
    const __m256i lower = _mm256_permutevar8x32_epi32(shares, _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
    const __m256i upper = _mm256_permutevar8x32_epi32(shares, _mm256_setr_epi32(2, 2, 2, 2, 3, 3, 3, 3));
    const __m256i sum = _mm256_add_epi32(_mm256_mullo_epi32(lower, LoadTwo(here, Pixel())),
                                         _mm256_mullo_epi32(upper, LoadTwo(above, Pixel())));
    const __m128i channels = _mm_add_epi32(_mm_add_epi32(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1)),
                                           _mm_set1_epi32(0x8000));
    StoreOne(_mm_srli_epi32(channels, 16), pixel);
}

// Samples as many pixels as come in fours and returns how many those were.
template <typename Pixel, Pixel (*sample)(const Image&, double, double, std::int32_t)>
[[gnu::target("avx2")]] std::size_t SampleFours(const Image& image, std::span<const float> x, std::span<const float> y,
                                                std::int32_t edgeMode, std::span<Pixel> pixels) {
    std::size_t i = 0;
    for (; i + 4 <= pixels.size(); i += 4) {
        const FourPlaces places = Find(image, x.data() + i, y.data() + i);
        for (std::size_t k = 0; k < 4; ++k) {
            if ((places.inner >> k & 1) != 0)
                Mix(image, places, k, pixels[i + k]);
            else
                pixels[i + k] = sample(image, x[i + k], y[i + k], edgeMode);
        }
    }
    return i;
}

}  // namespace

std::size_t SampleRow8Avx2(const Image& image, std::span<const float> x, std::span<const float> y,
                           std::int32_t edgeMode, std::span<Pixel8> pixels) {
    return SampleFours<Pixel8, SampleBilinear8>(image, x, y, edgeMode, pixels);
}
std::size_t SampleRow14Avx2(const Image& image, std::span<const float> x, std::span<const float> y,
                            std::int32_t edgeMode, std::span<Pixel14> pixels) {
    return SampleFours<Pixel14, SampleBilinear14>(image, x, y, edgeMode, pixels);
}

}  // namespace chalkpane

#endif
