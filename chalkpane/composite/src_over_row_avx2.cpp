#include "chalkpane/composite/mix_pixels_avx2.h"
#include "chalkpane/composite/src_over_row.h"

#if defined(__x86_64__)

#include <algorithm>
#include <array>

namespace chalkpane {

namespace {

struct Opacity {
    __m256i of32Bits;
    __m256i of16Bits;

    [[gnu::target("avx2")]] explicit Opacity(std::int32_t opacity)
        : of32Bits(_mm256_set1_epi32(opacity)), of16Bits(_mm256_set1_epi16(static_cast<short>(opacity))) {}
};

struct Sixteen {
    __m256i first;
    __m256i second;
};

// A row of pixels of any alpha.
class PixelSource {
public:
    explicit PixelSource(const std::uint8_t* row) : row_(row) {}

    // Pixels from x on.
    [[nodiscard, gnu::target("avx2")]] __m256i OverEight(__m256i target, std::ptrdiff_t x, __m128i mask,
                                                         const Opacity& opacity) const {
        return OverEight(target, LoadPixels(row_ + 4 * x), mask, opacity);
    }
    // Four from x on and four from y on.
    [[nodiscard, gnu::target("avx2")]] __m256i OverFours(__m256i target, std::ptrdiff_t x, std::ptrdiff_t y,
                                                         __m128i mask, const Opacity& opacity) const {
        return OverEight(target, LoadFours(row_ + 4 * x, row_ + 4 * y), mask, opacity);
    }
    // Eight from x on and eight from y on.
    [[nodiscard, gnu::target("avx2")]] Sixteen OverEights(const Sixteen& target, std::ptrdiff_t x, std::ptrdiff_t y,
                                                          __m128i mask, const Opacity& opacity) const {
        const __m256i alphas = _mm256_set1_epi32(static_cast<int>(0xff000000U));
        const Sixteen source{LoadPixels(row_ + 4 * x), LoadPixels(row_ + 4 * y)};
        if (_mm256_testc_si256(_mm256_and_si256(source.first, source.second), alphas) != 0) {
            const SixteenWeights w = OpaqueWeightsOfSixteen(mask, opacity.of16Bits);
            return {MixEight(target.first, Split(source.first), w.first),
                    MixEight(target.second, Split(source.second), w.second)};
        }
        return {OverEight(target.first, source.first, mask, opacity),
                OverEight(target.second, source.second, _mm_srli_si128(mask, 8), opacity)};
    }

private:
    // In 32-bit lanes with an empty upper half, so madd is a plain product of the lower halves.
    [[nodiscard, gnu::target("avx2")]] static __m256i OverEight(__m256i target, __m256i source, __m128i mask,
                                                                const Opacity& opacity) {
        const __m256i alpha = _mm256_srli_epi32(source, 24);
        const __m256i m = _mm256_cvtepu8_epi32(mask);
        const __m256i coverage = _mm256_madd_epi16(_mm256_add_epi32(m, _mm256_srli_epi32(m, 7)),
                                                   _mm256_add_epi32(alpha, _mm256_srli_epi32(alpha, 7)));
        const __m256i w = _mm256_madd_epi16(_mm256_srli_epi32(coverage, 8), opacity.of32Bits);
        return MixEight(target, SplitAsOpaque(source), _mm256_or_si256(w, _mm256_slli_epi32(w, 16)));
    }

    const std::uint8_t* row_;
};

// One opaque colour everywhere.
class ColourSource {
public:
    [[gnu::target("avx2")]] explicit ColourSource(std::uint32_t pixel)
        : colour_(SplitAsOpaque(_mm256_set1_epi32(static_cast<int>(pixel)))) {}

    [[nodiscard, gnu::target("avx2")]] __m256i OverEight(__m256i target, std::ptrdiff_t /*x*/, __m128i mask,
                                                         const Opacity& opacity) const {
        return MixEight(target, colour_, OpaqueWeights(mask, opacity.of32Bits));
    }
    [[nodiscard, gnu::target("avx2")]] __m256i OverFours(__m256i target, std::ptrdiff_t /*x*/, std::ptrdiff_t /*y*/,
                                                         __m128i mask, const Opacity& opacity) const {
        return MixEight(target, colour_, OpaqueWeights(mask, opacity.of32Bits));
    }
    [[nodiscard, gnu::target("avx2")]] Sixteen OverEights(const Sixteen& target, std::ptrdiff_t /*x*/,
                                                          std::ptrdiff_t /*y*/, __m128i mask,
                                                          const Opacity& opacity) const {
        const SixteenWeights w = OpaqueWeightsOfSixteen(mask, opacity.of16Bits);
        return {MixEight(target.first, colour_, w.first), MixEight(target.second, colour_, w.second)};
    }

private:
    SplitPixels colour_;
};

template <typename Source>
[[gnu::target("avx2")]] inline Sixteen OverEights(const std::uint8_t* target, const Source& source,
                                                  const std::uint8_t* mask, std::ptrdiff_t x, std::ptrdiff_t y,
                                                  const Opacity& p) {
    return source.OverEights({LoadPixels(target + 4 * x), LoadPixels(target + 4 * y)}, x, y,
                             LoadMaskEights(mask + x, mask + y), p);
}
[[gnu::target("avx2")]] inline void StoreEights(std::uint8_t* target, std::ptrdiff_t x, std::ptrdiff_t y,
                                                const Sixteen& pixels) {
    StorePixels(target + 4 * x, pixels.first);
    StorePixels(target + 4 * y, pixels.second);
}

template <typename Source>
[[gnu::target("avx2")]] inline void OverWideRow(std::uint8_t* target, const Source& source, const std::uint8_t* mask,
                                                std::ptrdiff_t count, const Opacity& p) {
    const std::ptrdiff_t left = count % 16;
    Sixteen end{};
    if (left > 8)
        end = OverEights(target, source, mask, count - 16, count - 8, p);
    else if (left > 0)
        end.second = source.OverEight(LoadPixels(target + 4 * (count - 8)), count - 8,
                                      _mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask + (count - 8))), p);
    for (std::ptrdiff_t x = 0; x < count - left; x += 16) {
        const __m128i m = _mm_loadu_si128(reinterpret_cast<const __m128i*>(mask + x));
        if (_mm_testz_si128(m, m) != 0) continue;
        StoreEights(target, x, x + 8, OverEights(target, source, mask, x, x + 8, p));
    }
    if (left > 8) StorePixels(target + 4 * (count - 16), end.first);
    if (left > 0) StorePixels(target + 4 * (count - 8), end.second);
}

// From 4 pixels on. What is left over at the end of a row goes together with pixels before it, as a whole register. All
// of these are read before any is written, so those that are computed twice come out the same.
template <typename Source>
[[gnu::target("avx2")]] inline void OverRow(std::uint8_t* target, const Source& source, const std::uint8_t* mask,
                                            std::ptrdiff_t count, const Opacity& p) {
    if (count >= 16) return OverWideRow(target, source, mask, count, p);
    if (count >= 8) return StoreEights(target, 0, count - 8, OverEights(target, source, mask, 0, count - 8, p));
    const std::ptrdiff_t last = count - 4;
    const __m256i pixels =
        source.OverFours(LoadFours(target, target + 4 * last), 0, last, LoadMaskFours(mask, mask + last), p);
    StoreFours(target, target + 4 * last, pixels);
}

std::uint32_t FirstBytes(const std::uint8_t* bytes, std::ptrdiff_t count) {
    std::uint32_t value = 0;
    if (count == 4) {
        std::memcpy(&value, bytes, 4);
    } else {
        for (std::ptrdiff_t i = 0; i < count; ++i) value |= std::uint32_t{bytes[i]} << (8 * i);
    }
    return value;
}

// Up to 4 pixels wide: two rows in a register. An odd row at the end stands for both.
[[gnu::target("avx2")]] void ColourOverNarrowBlock(const ColourBlock8& block, const ColourSource& source,
                                                   const Opacity& p) {
    constexpr std::array<std::int32_t, 8> firstLanes{-1, -1, -1, -1, 0, 0, 0, 0};
    const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(firstLanes.data() + (4 - block.width)));
    const auto row = [&](std::ptrdiff_t y) { return reinterpret_cast<int*>(block.target + y * block.targetStep); };
    const auto coverage = [&](std::ptrdiff_t y) {
        return std::uint64_t{FirstBytes(block.mask + y * block.maskStep, block.width)};
    };
    for (std::ptrdiff_t y = 0; y < block.height; y += 2) {
        const std::ptrdiff_t next = std::min(y + 1, block.height - 1);
        const __m256i target = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_maskload_epi32(row(y), lanes)),
                                                       _mm_maskload_epi32(row(next), lanes), 1);
        const __m128i mask = _mm_cvtsi64_si128(static_cast<long long>(coverage(next) << 32 | coverage(y)));
        const __m256i pixels = source.OverEight(target, 0, mask, p);
        _mm_maskstore_epi32(row(next), lanes, _mm256_extracti128_si256(pixels, 1));
        _mm_maskstore_epi32(row(y), lanes, _mm256_castsi256_si128(pixels));
    }
}

}  // namespace

[[gnu::target("avx2")]] void SrcOverRow8Avx2(std::uint8_t* target, const std::uint8_t* source, const std::uint8_t* mask,
                                             std::ptrdiff_t count, std::int32_t opacity) {
    if (count < 4) return SrcOverRow8Plain(target, source, mask, 1, count, opacity);
    OverRow(target, PixelSource(source), mask, count, Opacity(opacity));
}

[[gnu::target("avx2")]] void ColourOverBlock8Avx2(const ColourBlock8& block) {
    const ColourSource source(block.pixel);
    const Opacity p(block.opacity);
    if (block.width <= 4) return ColourOverNarrowBlock(block, source, p);
    for (std::ptrdiff_t y = 0; y < block.height; ++y)
        OverRow(block.target + y * block.targetStep, source, block.mask + y * block.maskStep, block.width, p);
}

}  // namespace chalkpane

#endif
