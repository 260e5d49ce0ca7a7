#include "chalkpane/composite/blend_kernels.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace chalkpane::blend {

[[gnu::target("avx2")]] std::int32_t AddRowAvx2(const std::uint8_t* source, const std::uint8_t* destination,
                                                std::uint8_t* output, std::int32_t count) {
    constexpr std::int32_t block = 16;
    const __m256i alphas = _mm256_set1_epi32(static_cast<std::int32_t>(0xff000000u));
    std::int32_t done = 0;
    for (; done + block <= count; done += block, source += 4 * block, destination += 4 * block, output += 4 * block) {
        const auto* const s = reinterpret_cast<const __m256i*>(source);
        const auto* const d = reinterpret_cast<const __m256i*>(destination);
        // To the source's alpha nothing is added.
        const __m256i first = _mm256_andnot_si256(alphas, _mm256_loadu_si256(d));
        const __m256i second = _mm256_andnot_si256(alphas, _mm256_loadu_si256(d + 1));
        auto* const out = reinterpret_cast<__m256i*>(output);
        _mm256_storeu_si256(out, _mm256_adds_epu8(_mm256_loadu_si256(s), first));
        _mm256_storeu_si256(out + 1, _mm256_adds_epu8(_mm256_loadu_si256(s + 1), second));
    }
    return done;
}

}  // namespace chalkpane::blend

#endif
