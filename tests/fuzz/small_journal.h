#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "telestrator/journal/journal_record.h"

namespace fuzz {

// True: painting all of it takes no time. What large brushes and long journals cost is known, and bounded by the
// reader.
inline bool IsSmall(const std::vector<chalkpane::SharedStroke>& strokes) {
    constexpr std::size_t mostSteps = 64;
    constexpr std::int32_t largestRadius = 12;  // canvas pixels
    std::size_t steps = 0;
    for (const chalkpane::SharedStroke& stroke : strokes) {
        steps += stroke->steps.size() + stroke->hand.size();
        const auto isLarge = [](const chalkpane::InkBrush& brush) { return brush.radius > largestRadius; };
        const auto isLargeByHand = [](const chalkpane::HandSettings& hand) {
            return std::max(hand.settings.brushWidth, hand.settings.eraserWidth) > largestRadius;
        };
        if (std::ranges::any_of(stroke->brushes, isLarge) || std::ranges::any_of(stroke->settings, isLargeByHand))
            return false;
    }
    return steps <= mostSteps;
}

}  // namespace fuzz
