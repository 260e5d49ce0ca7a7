#pragma once

#include <array>
#include <cstdint>

namespace chalkpane {

// Gradient noise on a lattice of 256 x 256 that repeats: the pattern behind turbulence and marble. Coordinates,
// gradients and results are 32-bit floats. One table serves the process; the filters that use it rebuild it from the
// engine's random generator, on their own thread, before rows read it.
class NoiseLattice {
public:
    struct Pair {
        float x = 0.0F;
        float y = 0.0F;
    };

    [[nodiscard]] static NoiseLattice& Shared();

    // Draws 256 gradient angles and 255 swaps from `Random`.
    void Build();

    // About -1 .. 1, and 0 on every lattice point. Any float is safe; what is not finite has no noise of use.
    [[nodiscard]] float Noise2(float x, float y) const;
    // Two decorrelated sums of three octaves each, not normalised.
    [[nodiscard]] Pair TurbulencePair(float x, float y) const;

private:
    static constexpr std::size_t size = 256;

    [[nodiscard]] float Corner(std::int32_t column, std::int32_t row, float dx, float dy) const;

    std::array<std::int32_t, size + 258> m_permutation{};  // 0 .. 255, and the first 258 entries once more
    std::array<Pair, size> m_gradient{};
};

}  // namespace chalkpane
