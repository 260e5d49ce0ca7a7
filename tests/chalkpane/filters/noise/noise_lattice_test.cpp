#include "chalkpane/filters/noise/noise_lattice.h"

#include <doctest/doctest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "chalkpane/base/random.h"

using namespace chalkpane;

TEST_CASE("Building the lattice draws 256 angles and 255 swaps") {
    SeedRandom(77);
    for (int i = 0; i < 511; ++i) static_cast<void>(Random());
    const std::int32_t next = Random();
    SeedRandom(77);
    NoiseLattice lattice;
    lattice.Build();
    CHECK_EQ(Random(), next);
}

TEST_CASE("Noise is 0 on lattice points, and repeats every 256") {
    SeedRandom(1);
    NoiseLattice lattice;
    lattice.Build();
    float largest = 0.0F;
    for (int i = -300; i < 300; i += 7) {
        CHECK_EQ(lattice.Noise2(static_cast<float>(i), static_cast<float>(3 * i)), 0.0F);
        const float x = static_cast<float>(i) + 0.25F;
        const float here = lattice.Noise2(x, 0.5F);
        CHECK_EQ(lattice.Noise2(x + 256.0F, 0.5F - 256.0F), here);
        largest = std::fmax(largest, std::fabs(here));
    }
    CHECK(largest > 0.1F);  // it is noise, after all
    CHECK(largest <= 1.0F);
}

// At fy = 0 only the gradients of the row count; between two points of one row the blend is (3 - 2 fx) fx fx. Gradients
// span half a circle, sin is never negative, so straight above a lattice point noise is never negative.
TEST_CASE("Gradients never point down") {
    SeedRandom(9);
    NoiseLattice lattice;
    lattice.Build();
    for (int i = 0; i < 256; ++i) CHECK(lattice.Noise2(static_cast<float>(i), 1e-3F) >= 0.0F);
}

TEST_CASE("Noise survives what is no place") {
    NoiseLattice lattice;
    lattice.Build();
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                            -std::numeric_limits<float>::infinity(), 3e38F, -3e38F}) {
        static_cast<void>(lattice.TurbulencePair(bad, 1.0F));
        CHECK_FALSE(std::isfinite(lattice.Noise2(bad, 1.5F)));
    }
}

TEST_CASE("Noise in rows is the noise of each place, bit by bit") {
    SeedRandom(4);
    NoiseLattice lattice;
    lattice.Build();
    std::mt19937 random(17);
    constexpr float infinite = std::numeric_limits<float>::infinity();
    std::vector<float> x{0.0F, -0.0F, 1.0F, -1.0F, 255.999F, 2147483648.0F, -2147483648.0F, 3e38F, 1e-40F, infinite};
    for (int i = 0; i < 1001; ++i)
        x.push_back((static_cast<float>(random()) / 4294967296.0F - 0.5F) * std::exp2(static_cast<float>(i % 30)));
    std::vector<float> noise(x.size());
    std::vector<float> sumX(x.size());
    std::vector<float> sumY(x.size());
    const auto same = [](float a, float b) {
        return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) || (std::isnan(a) && std::isnan(b));
    };
    for (const float y : {0.0F, 0.7F, -33.25F, 123456.8F, -4e9F, infinite}) {
        lattice.NoiseRow(x, y, noise);
        lattice.TurbulenceRow(x, y, sumX, sumY);
        for (std::size_t i = 0; i < x.size(); ++i) {
            CAPTURE(x[i]);
            CAPTURE(y);
            CHECK(same(noise[i], lattice.Noise2(x[i], y)));
            const auto sum = lattice.TurbulencePair(x[i], y);
            CHECK(same(sumX[i], sum.x));
            CHECK(same(sumY[i], sum.y));
        }
    }
}
