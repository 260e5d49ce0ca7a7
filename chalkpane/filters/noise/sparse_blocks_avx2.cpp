#include "chalkpane/filters/noise/sparse_blocks.h"

#if defined(__x86_64__)
#include <algorithm>

#include "chalkpane/filters/noise/sixteen_grains_avx2.h"

namespace chalkpane {
namespace {

struct Sixteen {
    __m256i lower, upper;
};

// Which of eight numbers have a remainder by 100 of at most the density.
//
// 65536 is 36 by 100, so 36 times the upper half plus the lower half has the number's remainder and is below 2^22.
// Times 42949673, which is 2^32 / 100 + 0.04, the lower 32 bits are the remainder times 2^32 / 100 plus at most 0.04 *
// 2^22: less than one remainder more would make. Halves are signed here, numbers compared as well, hence the turned
// bits.
class Passing {
public:
    [[gnu::target("avx2")]] explicit Passing(const SparseDraws& draws) {
        const auto passing = static_cast<std::uint64_t>(std::clamp(draws.density, -1, 98) + 1);
        const auto bound = static_cast<std::uint32_t>(((passing << 32) + 99) / 100);
        m_bound = _mm256_set1_epi32(static_cast<std::int32_t>(bound ^ 0x80000000u));
    }
    [[gnu::target("avx2")]] [[nodiscard]] __m256i Of(__m256i numbers) const {
        constexpr std::uint32_t hundredth = 42949673;
        constexpr std::uint32_t turned = 32768u * 37u * hundredth ^ 0x80000000u;
        const __m256i halves = _mm256_xor_si256(numbers, _mm256_set1_epi32(static_cast<std::int32_t>(0x80008000u)));
        const __m256i small = _mm256_madd_epi16(halves, _mm256_set1_epi32(0x240001));
        const __m256i scaled = _mm256_add_epi32(_mm256_mullo_epi32(small, _mm256_set1_epi32(hundredth)),
                                                _mm256_set1_epi32(static_cast<std::int32_t>(turned)));
        return _mm256_cmpgt_epi32(m_bound, scaled);
    }

private:
    __m256i m_bound;
};

[[gnu::target("avx2")]] inline void Store(const EightGrains& words, std::size_t at, SparseSection::Words& out) {
    const auto store = [at](auto& to, __m256i from) __attribute__((target("avx2"))) {
        _mm256_store_si256(reinterpret_cast<__m256i*>(&to[at]), from);
    };
    store(out.a, words.a);
    store(out.b, words.b);
    store(out.c, LowerHalfTurned(words.c));
}

// From the last number to the first: a pixel that begins here is one more than begin behind its draws.
[[gnu::target("avx2")]] void CountBackwards(Sixteen* numbers, std::size_t count, std::size_t more) {
    for (std::size_t i = 0; i <= more; ++i)
        numbers[count + i].lower = numbers[count + i].upper = _mm256_set1_epi32(static_cast<std::int32_t>(i));
    const __m256i one = _mm256_set1_epi32(SparseSection::countFactor);
    Sixteen next = numbers[count];
    for (std::size_t i = count; i-- > 0;) {
        const Sixteen& passes = numbers[i];
        const Sixteen& later = numbers[i + 1 + more];
        next.lower = _mm256_add_epi32(_mm256_blendv_epi8(next.lower, later.lower, passes.lower), one);
        next.upper = _mm256_add_epi32(_mm256_blendv_epi8(next.upper, later.upper, passes.upper), one);
        numbers[i] = next;
    }
}

}  // namespace

[[gnu::target("avx2")]] void CountSectionAvx2(const GrainRandom& start, const GrainStarts& starts,
                                              const SparseDraws& draws, std::size_t blockDraws,
                                              const SparseSection& section) {
    const Passing passing(draws);
    const std::size_t more = draws.more;
    auto [lower, upper] = SixteenGrains::Of(start, starts);
    // Where numbers pass, and then what is counted from each of them.
    Sixteen numbers[SparseSection::mostDraws + SparseDraws::mostMore + 1];
    for (std::size_t block = 0; block < SparseSection::blocks; ++block) {
        Store(lower, 0, section.words[block]);
        Store(upper, 8, section.words[block]);
        for (std::size_t i = 0; i < blockDraws; ++i) numbers[i] = {passing.Of(Next(lower)), passing.Of(Next(upper))};
        CountBackwards(numbers, blockDraws, more);
        for (std::size_t i = 0; i <= more; ++i) {
            // Packs within halves of registers, which puts the quarters of the two into the order 0, 2, 1, 3.
            const __m256i packed = _mm256_packus_epi32(numbers[i].lower, numbers[i].upper);
            auto* const to = reinterpret_cast<__m256i*>(section.counts[block * (more + 1) + i].ofStretch.data());
            _mm256_store_si256(to, _mm256_permute4x64_epi64(packed, 0xd8));
        }
    }
}

}  // namespace chalkpane

#endif
