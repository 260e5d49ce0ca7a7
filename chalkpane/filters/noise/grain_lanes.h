#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/filters/noise/grain_starts.h"

namespace chalkpane {

// What is drawn for a pixel: one number that is not kept, then for each of its noises the sum of some of 15 bits.
struct GrainDraws {
    std::size_t noises;  // 1, or 3
    std::size_t sums;    // numbers in a noise

    // Of a pixel that gets noise.
    [[nodiscard]] constexpr std::size_t PerPixel() const { return 1 + noises * sums; }
};

// The numbers of a run of pixels by sixteen generators at once, each of which draws for a stretch of its own.
class GrainLanes {
public:
    static constexpr std::size_t lanes = GrainStarts::count;
    static constexpr std::size_t longestStretch = 128;
    static constexpr std::size_t mostPixels = lanes * longestStretch;
    static constexpr std::size_t mostNoises = 3;
    // The noises of each kind, pixel by pixel; those behind the last pixel asked for are of no use.
    using Numbers = std::array<std::array<std::int32_t, mostPixels>, mostNoises>;

    GrainLanes() = default;
    // For runs of so many pixels, at most mostPixels.
    GrainLanes(std::size_t pixels, const GrainDraws& draws);

    // Draws the numbers of a run that begins at `start`. Needs AVX2, and is there where `builtWithAvx2`.
    void DrawAvx2(const GrainRandom& start, Numbers& numbers) const;

private:
    GrainDraws m_draws{1, 1};
    std::size_t m_stretch = 0;  // pixels of a generator, a multiple of 8
    GrainStarts m_starts;       // of the stretches
};

}  // namespace chalkpane
