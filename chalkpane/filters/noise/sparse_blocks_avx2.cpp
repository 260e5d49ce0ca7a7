#include "chalkpane/filters/noise/sparse_blocks.h"

#if defined(__x86_64__)
#include <algorithm>

#include "chalkpane/filters/noise/sixteen_grains_avx2.h"

namespace chalkpane {
namespace {

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

// A block of all stretches, sixteen bits a stretch: where numbers pass, and then what is counted from each of them.
using Block = __m256i[SparseSection::mostDraws + SparseDraws::mostMore + 1];

[[gnu::target("avx2")]] inline __m256i PassingOfSixteen(const Passing& passing, SixteenGrains& grains) {
    const __m256i lower = passing.Of(Next(grains.lower));
    return _mm256_packs_epi32(lower, passing.Of(Next(grains.upper)));
}

// Draws the numbers of one block, counts another that is drawn already, or does both step by step: what waits for the
// products of one goes on with the other.
template <bool draws, bool counts>
[[gnu::target("avx2")]] void DrawAndCount(const Passing& passing, SixteenGrains& grains, __m256i* drawn,
                                          __m256i* counted, std::size_t blockDraws, std::size_t more) {
    SixteenGrains at = grains;
    for (std::size_t i = 0; i <= more && counts; ++i)
        counted[blockDraws + i] = _mm256_set1_epi16(static_cast<std::int16_t>(i));
    const __m256i one = _mm256_set1_epi16(SparseSection::countFactor);
    __m256i next = _mm256_setzero_si256();  // what `counted` holds behind the last number
    for (std::size_t i = 0; i < blockDraws; ++i) {
        if constexpr (draws) drawn[i] = PassingOfSixteen(passing, at);
        if constexpr (counts) {
            // From the last number to the first: a pixel that begins here is one more than begin behind its draws.
            __m256i& here = counted[blockDraws - 1 - i];
            const __m256i later = counted[blockDraws - i + more];
            next = _mm256_add_epi16(_mm256_blendv_epi8(next, later, here), one);
            here = next;
        }
    }
    grains = at;
}

// The quarters of the sixteen bits are in the order 0, 2, 1, 3 of the stretches, as two registers are packed.
[[gnu::target("avx2")]] void StoreCounts(const __m256i* counted, std::span<SparseSection::Counts> counts) {
    for (std::size_t i = 0; i < counts.size(); ++i) {
        auto* const to = reinterpret_cast<__m256i*>(counts[i].ofStretch.data());
        _mm256_store_si256(to, _mm256_permute4x64_epi64(counted[i], 0xd8));
    }
}

}  // namespace

[[gnu::target("avx2")]] void CountSectionAvx2(const GrainRandom& start, const GrainStarts& starts,
                                              const SparseDraws& draws, std::size_t blockDraws,
                                              const SparseSection& section) {
    const Passing passing(draws);
    const std::size_t more = draws.more;
    SixteenGrains grains = SixteenGrains::Of(start, starts);
    Block blocks[2];
    for (std::size_t block = 0; block <= SparseSection::blocks; ++block) {
        __m256i* const drawn = blocks[block % 2];
        __m256i* const counted = blocks[(block + 1) % 2];
        if (block < SparseSection::blocks) {
            Store(grains.lower, 0, section.words[block]);
            Store(grains.upper, 8, section.words[block]);
        }
        const auto run = block == 0                      ? DrawAndCount<true, false>
                         : block < SparseSection::blocks ? DrawAndCount<true, true>
                                                         : DrawAndCount<false, true>;
        run(passing, grains, drawn, counted, blockDraws, more);
        if (block > 0) StoreCounts(counted, section.counts.subspan((block - 1) * (more + 1), more + 1));
    }
}

}  // namespace chalkpane

#endif
