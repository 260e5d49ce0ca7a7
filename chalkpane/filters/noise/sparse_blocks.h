#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "chalkpane/filters/noise/grain_starts.h"

namespace chalkpane {

// What pixels draw of which only a share gets noise: each one number, and some more where the remainder of that number
// by 100 is at most the density.
struct SparseDraws {
    static constexpr std::uint32_t mostMore = 18;

    std::int32_t density;
    std::uint32_t more;  // 1 .. mostMore

    [[nodiscard]] bool Passes(std::uint32_t number) const {
        return static_cast<std::int32_t>(number % 100u) <= density;
    }
};

// A section of the sequence of random numbers: sixteen stretches, one behind the other, of sixteen blocks each.
//
// A pixel may begin on any number. Within a block its first pixel begins on one of the first `more` + 1 numbers, the
// last pixel of the block before draws those ahead of it, so for each of them it is counted how many pixels begin in
// the block, and how far their draws stick out into the next. That is known without knowing anything of what is before.
struct SparseSection {
    static constexpr std::size_t stretches = GrainStarts::count;
    static constexpr std::size_t blocks = 16;  // of a stretch
    static constexpr std::size_t fewestDraws = 64;
    static constexpr std::size_t mostDraws = 256;  // of a block

    // The generators before the block of that place in all stretches.
    struct Words {
        alignas(32) std::array<std::uint32_t, stretches> a, b, c;
    };
    // For a first number in those blocks: pixels times 32 plus the numbers that the next block begins with.
    struct Counts {
        alignas(32) std::array<std::uint16_t, stretches> ofStretch;
    };
    static constexpr std::uint32_t countFactor = 32;

    std::span<Words> words;    // `blocks`
    std::span<Counts> counts;  // `blocks` times more + 1, the first numbers of a block side by side
};

// Counts a section that begins at `start`.
//
//   starts      those of the stretches
//   blockDraws  fewestDraws .. mostDraws
//
// Needs AVX2, and is there where `builtWithAvx2`.
void CountSectionAvx2(const GrainRandom& start, const GrainStarts& starts, const SparseDraws& draws,
                      std::size_t blockDraws, const SparseSection& section);

}  // namespace chalkpane
