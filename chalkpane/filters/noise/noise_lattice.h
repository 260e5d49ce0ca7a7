#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

namespace chalkpane {

// Gradient noise on a lattice of 256 x 256 that repeats: the pattern behind turbulence and marble. Coordinates,
// gradients and results are 32-bit floats. One table serves the process; the filters that use it build it from the
// engine's random generator and hold it while their rows read it.
class NoiseLattice {
public:
    struct Pair {
        float x = 0.0F;
        float y = 0.0F;
    };

    // The process's table as it is now, which stays whole for whoever holds it; all zeros before the first BuildShared.
    [[nodiscard]] static std::shared_ptr<const NoiseLattice> Shared();
    // Puts a fresh table in its place.
    static void BuildShared();

    // Draws 256 gradient angles and 255 swaps from `Random`.
    void Build();

    // About -1 .. 1, and 0 on every lattice point. Any float is safe; what is not finite has no noise of use.
    [[nodiscard]] float Noise2(float x, float y) const;
    // Two decorrelated sums of three octaves each, not normalised.
    [[nodiscard]] Pair TurbulencePair(float x, float y) const;
    // The same, bit by bit, for many places on one line; all spans are as long as `x`.
    void NoiseRow(std::span<const float> x, float y, std::span<float> noise) const;
    void TurbulenceRow(std::span<const float> x, float y, std::span<float> sumX, std::span<float> sumY) const;

private:
    static constexpr std::size_t size = 256;
    static constexpr std::size_t entries = size + 258;

    // How an octave turns and stretches the plane towards the next.
    struct Turns {
        float s1, c1, s2, c2;
        Turns();
    };
    // Need AVX2, and are there where `builtWithAvx2`. They return how many places, from the left, they did: eights.
    struct Eight;
    [[nodiscard]] std::size_t NoiseRowAvx2(std::span<const float> x, float y, std::span<float> noise) const;
    [[nodiscard]] std::size_t TurbulenceRowAvx2(std::span<const float> x, float y, std::span<float> sumX,
                                                std::span<float> sumY) const;

    [[nodiscard]] float Corner(std::int32_t column, std::int32_t row, float dx, float dy) const;

    std::array<std::int32_t, entries> m_permutation{};  // 0 .. 255, and the first 258 entries once more
    std::array<Pair, size> m_gradient{};

    // What lies side by side in the lattice, side by side here: an entry of the permutation and the next one above it;
    // the gradient of an entry, x and y, and that of the next one.
    std::array<std::int32_t, size> m_pairs{};
    alignas(16) std::array<float[4], entries - 1> m_corners{};
};

}  // namespace chalkpane
