#include "chalkpane/composite/mix_pixels_avx2.h"
#include "chalkpane/composite/small_dab.h"

#if defined(__x86_64__)

namespace chalkpane {

// Dabs lie a pixel or less apart. What a dab reads was written a moment before by the last one, and a processor hands
// that on at once only where both are of the same 16 bytes: so four pixels that begin at a multiple of 16 bytes are
// read and written together, and the mask is moved instead.
[[gnu::target("avx2")]] void SmallColourOver8Avx2(const SmallDabTarget& target, const SmallMask8& mask,
                                                  std::int32_t left, std::int32_t top, std::int32_t opacity) {
    const SplitPixels source = SplitAsOpaque(_mm256_set1_epi32(static_cast<int>(target.pixel)));
    const __m256i p = _mm256_set1_epi16(static_cast<short>(opacity));
    std::uint8_t* const first = target.At(left, top);
    const std::size_t aside = reinterpret_cast<std::uintptr_t>(first) / 4 % 4;
    std::uint8_t* row = first - 4 * aside;
    for (const SmallMask8::Row& weights : mask.rows) {
        const __m256i w =
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(weights.data() + (SmallMask8::lead - aside)));
        StoreFours(row, row + 16, MixEight(LoadFours(row, row + 16), source, _mm256_mullo_epi16(w, p)));
        row += target.rowBytes;
    }
}

}  // namespace chalkpane

#endif
