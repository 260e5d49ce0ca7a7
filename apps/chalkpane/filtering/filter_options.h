#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/filtering/picture_look.h"
#include "cli/memory_budget.h"

namespace chalkpane::app {

// What the command line says of a run of filters, but for the files that it runs over.
struct FilterOptions {
    std::vector<std::string> apply;
    std::string preset;
    std::int32_t bits = 0;  // a channel; 0: as the picture
    std::string region;
    std::string mask;
    std::int32_t frame = 0;
    bool expand = false;
    bool fast = false;
    double rate = FrameRateClock::usualRate;
    std::uint64_t memory = cli::MemoryBudget::HalfOfTheMachine();  // bytes
    PictureLook look;
};

}  // namespace chalkpane::app
