#pragma once

#include "chalkpane/composite/mix_pixels_avx2.h"
#include "chalkpane/composite/small_dab.h"

#if defined(__x86_64__)

namespace chalkpane {

// One colour over blocks of pixels, at one opacity.
class SmallColourAvx2 {
public:
    [[gnu::target("avx2")]] SmallColourAvx2(const SmallDabTarget& target, std::int32_t opacity)
        : source_(_mm256_cvtepu8_epi16(_mm_set1_epi32(static_cast<int>(target.pixel)))),
          opacity_(_mm256_set1_epi16(static_cast<short>(opacity))) {}

    // first: the pixel under the first of the mask's top row.
    [[gnu::target("avx2")]] void Over(std::uint8_t* first, std::ptrdiff_t rowBytes, const SmallMask8& mask) const {
        static_assert(SmallMask8::side == 4);
        for (std::size_t y = 0; y < mask.rows.size(); y += 2) {
            std::uint8_t* const next = first + rowBytes;
            const __m256i both = _mm256_packus_epi16(Mixed(first, mask.rows[y]), Mixed(next, mask.rows[y + 1]));
            const __m256i inOrder = _mm256_permute4x64_epi64(both, _MM_SHUFFLE(3, 1, 2, 0));
            StoreFours(first, next, inOrder);
            first = next + rowBytes;
        }
    }

private:
    // The channels of four pixels.
    [[nodiscard, gnu::target("avx2")]] __m256i Mixed(const std::uint8_t* pixels, const SmallMask8::Row& weights) const {
        const __m256i m = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(weights.data()));
        const __m256i w = _mm256_mullo_epi16(m, opacity_);
        const __m256i target = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)));
        return Mix(source_, target, w, _mm256_srai_epi16(w, 15));
    }

    __m256i source_;
    __m256i opacity_;
};

}  // namespace chalkpane

#endif
