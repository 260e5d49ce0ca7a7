#pragma once

#include <doctest/doctest.h>

#include <algorithm>

#include "chalkpane/brush/dab_stretch.h"

namespace chalkpane {

inline void RequireSame(const DabProgress& a, const DabProgress& b) {
    REQUIRE_EQ(std::min(a.step, SplineIterator::steps), std::min(b.step, SplineIterator::steps));
    REQUIRE_EQ(a.lastX, b.lastX);
    REQUIRE_EQ(a.lastY, b.lastY);
    REQUIRE_EQ(a.lastStep, b.lastStep);
    REQUIRE_EQ(a.dabs, b.dabs);
    REQUIRE_EQ(a.changed, b.changed);
}

}  // namespace chalkpane
