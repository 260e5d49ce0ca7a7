#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chalkpane/filters/noise/grain_random.h"

namespace chalkpane {

// Where sixteen generators start that draw side by side, each for a stretch of its own: jumps from the first start.
struct GrainStarts {
    static constexpr std::size_t count = 16;

    GrainStarts() = default;
    // For stretches of so many draws.
    explicit GrainStarts(std::uint64_t draws) {
        const GrainJump stretch = GrainJump::Of(draws);
        GrainJump jump;
        for (std::size_t i = 0; i < count; ++i) {
            before[i] = jump.before;
            at[i] = jump.at;
            factors[i] = jump.factor;
            jump = jump.Then(stretch);
        }
    }

    // The parts of the jumps.
    alignas(32) std::array<std::uint32_t, count> before{};
    alignas(32) std::array<std::uint32_t, count> at{};
    std::array<std::uint32_t, count> factors{};
};

}  // namespace chalkpane
