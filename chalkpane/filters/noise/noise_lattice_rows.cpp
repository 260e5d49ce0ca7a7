#include "chalkpane/base/cpu_features.h"
#include "chalkpane/filters/noise/noise_lattice.h"

namespace chalkpane {

void NoiseLattice::NoiseRow(std::span<const float> x, float y, std::span<float> noise) const {
    std::size_t i = 0;
    if constexpr (builtWithAvx2)
        if (HasAvx2()) i = NoiseRowAvx2(x, y, noise);
    for (; i < x.size(); ++i) noise[i] = Noise2(x[i], y);
}

void NoiseLattice::TurbulenceRow(std::span<const float> x, float y, std::span<float> sumX,
                                 std::span<float> sumY) const {
    std::size_t i = 0;
    if constexpr (builtWithAvx2)
        if (HasAvx2()) i = TurbulenceRowAvx2(x, y, sumX, sumY);
    for (; i < x.size(); ++i) {
        const Pair sum = TurbulencePair(x[i], y);
        sumX[i] = sum.x;
        sumY[i] = sum.y;
    }
}

}  // namespace chalkpane
