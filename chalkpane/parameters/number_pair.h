#pragma once

#include <cmath>
#include <cstdint>

namespace chalkpane {

// Two numbers that are set, read and compared together. Equal when both are.
template <typename Number>
struct NumberPair {
    Number x = 0;
    Number y = 0;

    friend constexpr bool operator==(const NumberPair&, const NumberPair&) = default;
};

using DoublePair = NumberPair<double>;
using IntegerPair = NumberPair<std::int32_t>;

inline double distance(const DoublePair& a, const DoublePair& b) {
    return std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
}

}  // namespace chalkpane
