#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "chalkpane/filters/noise/sparse_blocks.h"

namespace chalkpane {

// Where the numbers of each row begin in the sequence when only a share of the pixels gets noise, so that rows can be
// painted in any order. A pixel that gets none draws fewer numbers, so all that is before a row has to be counted: by
// the workers, in sections of the sequence that know nothing of each other and are put together afterwards.
class SparseRows {
public:
    // Finds them for rows of so many pixels, the first of which begins at `first`. Throws std::bad_alloc. Needs AVX2,
    // and is there where `builtWithAvx2`.
    void FindAvx2(const GrainRandom& first, std::int64_t pixelsPerRow, std::int64_t rows, const SparseDraws& draws);
    // Forgets them and frees their memory.
    void Clear() { m_starts = {}; }

    [[nodiscard]] bool IsEmpty() const { return m_starts.empty(); }
    // The generator as that row begins, the first being 0. There is such a row.
    [[nodiscard]] GrainRandom StartOf(std::size_t row) const;

private:
    struct Start {
        GrainRandom block;     // as the block begins in which the row does
        std::uint16_t skips;   // numbers before the block's first pixel
        std::uint16_t pixels;  // and pixels from there
    };

    std::vector<Start> m_starts;
    SparseDraws m_draws{0, 1};
};

}  // namespace chalkpane
