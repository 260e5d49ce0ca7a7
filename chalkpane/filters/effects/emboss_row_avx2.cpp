#include "chalkpane/filters/effects/emboss_row.h"

#if defined(__x86_64__)
#include "chalkpane/filters/eight_pixels_avx2.h"

namespace chalkpane {
namespace {

template <typename Channel>
constexpr std::int32_t fullScaleOf = sizeof(Channel) == 1 ? 255 : 16383;

[[gnu::target("avx2")]] inline __m256i Load(const std::int32_t* numbers) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(numbers));
}
[[gnu::target("avx2")]] inline __m256i Third(__m256i number) {
    return _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_set1_ps(0.33333F), _mm256_cvtepi32_ps(number)));
}

// What is taken from four columns: whole numbers, exact in doubles, and rounded once when they become floats.
struct Lit {
    __m128 light;   // falling onto the slope, times its length
    __m128 length;  // squared
};
[[gnu::target("avx2")]] inline Lit LitFour(__m128i slopesX, __m128i slopesY, const EmbossLight& light) {
    const __m256d nx = _mm256_cvtepi32_pd(slopesX);
    const __m256d ny = _mm256_cvtepi32_pd(slopesY);
    const __m256d x = _mm256_mul_pd(nx, _mm256_set1_pd(static_cast<double>(light.x)));
    const __m256d y = _mm256_mul_pd(ny, _mm256_set1_pd(static_cast<double>(light.y)));
    const __m256d z = _mm256_set1_pd(static_cast<double>(light.normalZ * light.z));
    const __m256d square = _mm256_add_pd(_mm256_mul_pd(nx, nx), _mm256_mul_pd(ny, ny));
    const __m256d up = _mm256_set1_pd(static_cast<double>(light.normalZ * light.normalZ));
    return {_mm256_cvtpd_ps(_mm256_add_pd(_mm256_add_pd(x, y), z)), _mm256_cvtpd_ps(_mm256_add_pd(square, up))};
}

[[gnu::target("avx2")]] inline __m256 Joined(__m128 low, __m128 high) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
}

// The shades of eight columns.
[[gnu::target("avx2")]] inline __m256i ShadesAt(const std::int32_t* sum, const std::int32_t* fall,
                                                const EmbossLight& light) {
    const __m256i nx = Third(_mm256_sub_epi32(Load(sum - 1), Load(sum + 1)));
    const __m256i ny = Third(_mm256_add_epi32(_mm256_add_epi32(Load(fall - 1), Load(fall)), Load(fall + 1)));
    const Lit low = LitFour(_mm256_castsi256_si128(nx), _mm256_castsi256_si128(ny), light);
    const Lit high = LitFour(_mm256_extracti128_si256(nx, 1), _mm256_extracti128_si256(ny, 1), light);
    const __m256 lit = _mm256_max_ps(Joined(low.light, high.light), _mm256_setzero_ps());
    const __m256 length = _mm256_sqrt_ps(Joined(low.length, high.length));
    const __m256i shade = _mm256_cvttps_epi32(_mm256_div_ps(lit, length));
    const __m256i level = _mm256_cmpeq_epi32(_mm256_or_si256(nx, ny), _mm256_setzero_si256());
    return _mm256_blendv_epi8(shade, _mm256_set1_epi32(static_cast<std::int32_t>(light.z)), level);
}

// shade * alpha / full scale, truncated: the quotient of whole numbers, which a division of doubles gives exactly.
[[gnu::target("avx2")]] inline __m128i ByAlpha(__m128i product, std::int32_t fullScale) {
    return _mm256_cvttpd_epi32(_mm256_div_pd(_mm256_cvtepi32_pd(product), _mm256_set1_pd(fullScale)));
}
[[gnu::target("avx2")]] inline __m256i ShadesByAlpha(__m256i shades, __m256i alpha, std::int32_t fullScale) {
    const __m256i product = _mm256_mullo_epi32(shades, alpha);
    const __m256i quotient =
        _mm256_inserti128_si256(_mm256_castsi128_si256(ByAlpha(_mm256_castsi256_si128(product), fullScale)),
                                ByAlpha(_mm256_extracti128_si256(product, 1), fullScale), 1);
    const __m256i isPart = _mm256_cmpgt_epi32(_mm256_set1_epi32(fullScale), alpha);
    return _mm256_blendv_epi8(shades, quotient, isPart);
}

template <typename Channel>
[[gnu::target("avx2")]] std::size_t Emboss(const EmbossStretch<Channel>& stretch, const EmbossLight& light,
                                           const EmbossTint& tint) {
    constexpr std::int32_t fullScale = fullScaleOf<Channel>;
    const __m256 mix = _mm256_set1_ps(tint.mix);
    std::size_t x = 0;
    for (; x + 8 <= stretch.pixels; x += 8) {
        const EightPixels from = LoadEightPixels(stretch.from + 4 * x);
        __m256i shade = ShadesAt(stretch.sum + x, stretch.fall + x, light);
        if (stretch.shadeByAlpha) shade = ShadesByAlpha(shade, from.alpha, fullScale);
        const __m256 bright = _mm256_div_ps(_mm256_cvtepi32_ps(shade), _mm256_set1_ps(fullScale));
        const __m256 limited = _mm256_min_ps(_mm256_max_ps(bright, _mm256_setzero_ps()), _mm256_set1_ps(1.0F));
        // Where there is no alpha, there is no colour.
        const __m256i empty = _mm256_cmpeq_epi32(from.alpha, _mm256_setzero_si256());
        const auto painted = [&](__m256i channel, float colour) __attribute__((target("avx2"))) {
            const __m256 mixed = _mm256_add_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(channel), mix), _mm256_set1_ps(colour));
            return _mm256_andnot_si256(empty, LimitedEight(_mm256_mul_ps(mixed, limited), fullScale));
        };
        StoreEightPixels({painted(from.blue, tint.colour[0]), painted(from.green, tint.colour[1]),
                          painted(from.red, tint.colour[2]), from.alpha},
                         stretch.to + 4 * x);
    }
    return x;
}

}  // namespace

std::size_t EmbossAvx2(const EmbossStretch<std::uint8_t>& stretch, const EmbossLight& light, const EmbossTint& tint) {
    return Emboss(stretch, light, tint);
}
std::size_t EmbossAvx2(const EmbossStretch<std::uint16_t>& stretch, const EmbossLight& light, const EmbossTint& tint) {
    return Emboss(stretch, light, tint);
}

}  // namespace chalkpane

#endif
