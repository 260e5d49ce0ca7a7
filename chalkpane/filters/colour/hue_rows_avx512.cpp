#include "chalkpane/filters/colour/hue_rows.h"

#if defined(__x86_64__)

#include <algorithm>
#include <array>

#include "chalkpane/base/avx512_intrinsics.h"

namespace chalkpane {
namespace {

// Sixteen pixels, as words.
struct Sixteen {
    __m512i blue, green, red;
};

// What a rotated pixel is made of: its largest component, which stays as it is, its smallest, the one between, and the
// sextant, 0 .. 6, which says which is which.
struct Rotated {
    __m512i largest, smallest, between, sextant;
};

[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512 All(float number) { return _mm512_set1_ps(number); }
[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512 Unit(__m512i word) {
    return _mm512_mul_ps(_mm512_cvtepi32_ps(word), All(6.103888e-05F));
}

// Before it is rotated; NaN where the pixel is grey.
[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512 HueOf(__m512 red, __m512 green, __m512 blue, __m512 value,
                                                                  __m512 delta) {
    const __mmask16 isRed = _mm512_cmp_ps_mask(value, red, _CMP_EQ_OQ);
    const __mmask16 isGreen = _mm512_cmp_ps_mask(value, green, _CMP_EQ_OQ);
    const __m512 k = _mm512_div_ps(All(1.0F), delta);
    __m512 distance = _mm512_sub_ps(red, green);
    distance = _mm512_mask_sub_ps(distance, isGreen, blue, red);
    distance = _mm512_mask_sub_ps(distance, isRed, green, blue);
    const __m512 start = _mm512_mask_blend_ps(isGreen, All(4.0F), All(2.0F));
    __m512 hue = _mm512_mul_ps(_mm512_add_ps(_mm512_mul_ps(distance, k), start), All(0.16666667F));
    hue = _mm512_mask_mul_ps(hue, isRed, _mm512_mul_ps(distance, All(0.16666667F)), k);
    // From green and blue it is not below 0.
    const __mmask16 isBelow = _mm512_cmp_ps_mask(hue, _mm512_setzero_ps(), _CMP_LT_OQ);
    return _mm512_mask_add_ps(hue, isBelow, hue, All(1.0F));
}

// A component of 0 .. 1 in steps of 14 bits less `shift`: what a product rounds to is the same, divided by a power of
// two.
template <int shift>
[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512i Word(__m512 component) {
    constexpr auto part = static_cast<float>(1 << shift);
    return _mm512_cvttps_epi32(_mm512_add_ps(_mm512_mul_ps(component, All(16383.0F / part)), All(0.5F / part)));
}

// Of black the saturation is NaN, and its components are what NaN is converted to, whose lower half is 0. The largest
// component is as wide as the words.
template <int shift>
[[gnu::target("avx512bw,avx512dq,avx512vl"), gnu::always_inline]] inline Rotated RotatedSixteen(const Sixteen& words,
                                                                                                float turn,
                                                                                                const float* byValue) {
    constexpr std::int32_t fullScale = 16383 >> shift;
    const __m512i largest = _mm512_max_epi32(_mm512_max_epi32(words.red, words.green), words.blue);
    const __m512 red = Unit(words.red);
    const __m512 green = Unit(words.green);
    const __m512 blue = Unit(words.blue);
    const __m512 value = _mm512_max_ps(_mm512_max_ps(red, green), blue);
    const __m512 delta = _mm512_sub_ps(value, _mm512_min_ps(_mm512_min_ps(red, green), blue));
    const __m512 saturation = _mm512_div_ps(delta, value);
    __m512 hue = _mm512_add_ps(HueOf(red, green, blue, value, delta), All(turn));
    if (byValue != nullptr) {
        const __m512i index = _mm512_cvttps_epi32(_mm512_mul_ps(value, All(static_cast<float>(fullScale))));
        const __m512i limited = _mm512_min_epi32(index, _mm512_set1_epi32(fullScale));
        hue = _mm512_add_ps(hue, _mm512_i32gather_ps(limited, byValue, sizeof(float)));
    }
    const __m512 floor = _mm512_roundscale_ps(hue, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
    // The greater of NaN and 0 is 0.
    const __m512 wrapped = _mm512_max_ps(_mm512_sub_ps(hue, floor), _mm512_setzero_ps());
    const __m512 position = _mm512_mul_ps(wrapped, All(6.0F));
    const __m512i sextant = _mm512_cvttps_epi32(position);
    const __m512 f = _mm512_sub_ps(position, _mm512_cvtepi32_ps(sextant));
    const __mmask16 rises = _mm512_testn_epi32_mask(sextant, _mm512_set1_epi32(1));
    const __m512 share = _mm512_mask_sub_ps(f, rises, All(1.0F), f);
    const __m512 between = _mm512_mul_ps(_mm512_sub_ps(All(1.0F), _mm512_mul_ps(share, saturation)), value);
    const __m512 smallest = _mm512_mul_ps(_mm512_sub_ps(All(1.0F), saturation), value);
    return {largest, Word<shift>(smallest), Word<shift>(between), sextant};
}

// For each sextant where blue, green and red come from: 0 the largest component, 1 the smallest, 2 the one between.
// Alpha is 3.
constexpr std::array blueFrom{1, 1, 2, 0, 0, 2, 1, 1};
constexpr std::array greenFrom{2, 0, 0, 2, 1, 1, 2, 2};
constexpr std::array redFrom{0, 2, 1, 1, 2, 0, 0, 0};

// By sextant the order of a pixel's channels, each with the numbers of its bytes.
template <typename Pixel, int channelBytes>
struct Orders {
    alignas(64) std::array<Pixel, 64 / sizeof(Pixel)> bySextant{};

    constexpr Orders() {
        for (std::size_t i = 0; i < blueFrom.size(); ++i) {
            Pixel order = 0;
            for (const int from : {3, redFrom[i], greenFrom[i], blueFrom[i]})
                for (int byte = channelBytes; byte-- > 0;)
                    order = static_cast<Pixel>(order << 8 | static_cast<Pixel>(from * channelBytes + byte));
            bySextant[i] = order;
        }
    }
};
constexpr Orders<std::uint32_t, 1> byteOrders;
constexpr Orders<std::uint64_t, 2> wordOrders;

[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512i SameInEachFour(int a, int b, int c, int d) {
    return _mm512_set4_epi32(d, c, b, a);
}

// b * 64 + b / 4 is b * 257 / 4, and b * 257 is b twice. `byte` of each pixel.
template <int byte>
[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512i WideByte(__m512i pixels) {
    constexpr int twice = static_cast<int>(0x80800000U) + byte * 257;
    constexpr int next = 4 * 257;
    const __m512i order = SameInEachFour(twice, twice + next, twice + 2 * next, twice + 3 * next);
    return _mm512_srli_epi32(_mm512_shuffle_epi8(pixels, order), 2);
}

[[gnu::target("avx512bw,avx512dq,avx512vl"), gnu::always_inline]] inline __m512i TurnedPixels(__m512i pixels,
                                                                                              float turn,
                                                                                              const float* byValue) {
    const Sixteen words{WideByte<0>(pixels), WideByte<1>(pixels), WideByte<2>(pixels)};
    const Rotated rotated = RotatedSixteen<6>(words, turn, byValue);
    // The lowest bytes of the others move beside that of the largest, below alpha.
    constexpr int next = 0x04040404;
    const __m512i first = SameInEachFour(0, next, 2 * next, 3 * next);
    __m512i parts = _mm512_mask_blend_epi8(0x8888888888888888U, _mm512_srli_epi32(rotated.largest, 6), pixels);
    parts = _mm512_mask_shuffle_epi8(parts, 0x2222222222222222U, rotated.smallest, first);
    parts = _mm512_mask_shuffle_epi8(parts, 0x4444444444444444U, rotated.between, first);
    const __m512i orders = _mm512_load_si512(byteOrders.bySextant.data());
    return _mm512_shuffle_epi8(parts, _mm512_or_si512(_mm512_permutexvar_epi32(rotated.sextant, orders), first));
}

// Of words: eight pixels and eight more.
struct TwoEights {
    __m512i first, second;
};

// `parts`: the largest component, the smallest, the one between, and alpha. sextants: of each pixel, below what does
// not count.
[[gnu::target("avx512bw,avx512dq,avx512vl")]] inline __m512i InOrder(__m512i parts, __m512i sextants) {
    constexpr int second = 0x08080808;
    const __m512i orders = _mm512_load_si512(wordOrders.bySextant.data());
    const __m512i order = _mm512_permutexvar_epi64(sextants, orders);
    return _mm512_shuffle_epi8(parts, _mm512_or_si512(order, SameInEachFour(0, 0, second, second)));
}

[[gnu::target("avx512bw,avx512dq,avx512vl"), gnu::always_inline]] inline TwoEights TurnedPixels(const TwoEights& pixels,
                                                                                                float turn,
                                                                                                const float* byValue) {
    const __m512i lower = _mm512_set1_epi32(0xffff);
    const __m512 first = _mm512_castsi512_ps(pixels.first);
    const __m512 second = _mm512_castsi512_ps(pixels.second);
    // Blue and green of sixteen pixels, red and alpha of the same in the same order.
    const __m512i low = _mm512_castps_si512(_mm512_shuffle_ps(first, second, 0x88));
    const __m512i high = _mm512_castps_si512(_mm512_shuffle_ps(first, second, 0xdd));
    const Sixteen words{_mm512_and_si512(low, lower), _mm512_srli_epi32(low, 16), _mm512_and_si512(high, lower)};
    const Rotated rotated = RotatedSixteen<0>(words, turn, byValue);
    const __m512i newLow = _mm512_or_si512(rotated.largest, _mm512_slli_epi32(rotated.smallest, 16));
    const __m512i newHigh = _mm512_mask_blend_epi16(0xaaaaaaaaU, rotated.between, high);
    return {InOrder(_mm512_unpacklo_epi32(newLow, newHigh), _mm512_unpacklo_epi32(rotated.sextant, rotated.sextant)),
            InOrder(_mm512_unpackhi_epi32(newLow, newHigh), _mm512_unpackhi_epi32(rotated.sextant, rotated.sextant))};
}

// The first of eight lanes.
constexpr __mmask8 FirstLanes(std::size_t count) {
    return static_cast<__mmask8>((1U << std::min<std::size_t>(count, 8)) - 1U);
}

}  // namespace

[[gnu::target("avx512bw,avx512dq,avx512vl")]] void TurnHuesAvx512(std::span<std::uint8_t> pixels, float turn,
                                                                  const float* byValue) {
    std::size_t i = 0;
    for (; i + 64 <= pixels.size(); i += 64) {
        const __m512i turned = TurnedPixels(_mm512_loadu_si512(pixels.data() + i), turn, byValue);
        _mm512_storeu_si512(pixels.data() + i, turned);
    }
    const std::size_t left = (pixels.size() - i) / 4;
    if (left == 0) return;
    const auto lanes = static_cast<__mmask16>((1U << left) - 1U);
    const __m512i turned = TurnedPixels(_mm512_maskz_loadu_epi32(lanes, pixels.data() + i), turn, byValue);
    _mm512_mask_storeu_epi32(pixels.data() + i, lanes, turned);
}

[[gnu::target("avx512bw,avx512dq,avx512vl")]] void TurnHuesAvx512(std::span<std::uint16_t> pixels, float turn,
                                                                  const float* byValue) {
    std::uint16_t* at = pixels.data();
    std::size_t left = pixels.size() / 4;
    for (; left >= 16; left -= 16, at += 64) {
        const TwoEights turned = TurnedPixels({_mm512_loadu_si512(at), _mm512_loadu_si512(at + 32)}, turn, byValue);
        _mm512_storeu_si512(at, turned.first);
        _mm512_storeu_si512(at + 32, turned.second);
    }
    if (left == 0) return;
    const __mmask8 first = FirstLanes(left);
    const __mmask8 second = FirstLanes(left > 8 ? left - 8 : 0);
    const TwoEights turned =
        TurnedPixels({_mm512_maskz_loadu_epi64(first, at), _mm512_maskz_loadu_epi64(second, at + 32)}, turn, byValue);
    _mm512_mask_storeu_epi64(at, first, turned.first);
    _mm512_mask_storeu_epi64(at + 32, second, turned.second);
}

}  // namespace chalkpane

#endif
